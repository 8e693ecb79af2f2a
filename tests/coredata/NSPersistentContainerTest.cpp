#include "favourites/ServerItemModel.h"
#include "platform/coredata/NSPersistentContainer.h"
#include "tests/support/TemporaryDataHome.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <future>
#include <sstream>

namespace tarn::test {
namespace {

using Store = std::unique_ptr<NSPersistentContainer>;

// The favourites' store in a data folder of the test's own. The sqlite3 tool is another reader and writer than ours.
class PersistentContainer : public testing::Test {
protected:
  // Opens it, or is refused with a reason that begins like this one.
  static Store openStore(const std::string& refusal = "") {
    auto store = std::make_unique<NSPersistentContainer>("ServerItemModel", serverItemModel);
    const auto error = store->loadPersistentStores();
    EXPECT_EQ(error.has_value(), !refusal.empty()) << refusal;
    EXPECT_EQ(error ? error->reason.substr(0, refusal.size()) : "", refusal);
    return store;
  }

  static std::shared_ptr<NSManagedObject> insert(const Store& store, const std::string& name) {
    const auto object = store->viewContext().insertNewObjectForEntityForName("ServerItemStorage");
    object->setValueForKey("serverId", NSUUID().uuidString());
    object->setValueForKey("connectionName", name);
    object->setValueForKey("serverIp", "127.0.0.1");
    object->setValueForKey("serverPort", std::int64_t{6379});
    object->setValueForKey("auth", std::string("a\0b", 3));
    return object;
  }

  static NSManagedObjectContext::Objects records(const Store& store) {
    return store->viewContext().executeFetchRequest("ServerItemStorage").value();
  }

  static std::string namesOf(const Store& store) {
    std::string names;
    for (const auto& object : records(store))
      names += object->stringForKey("connectionName").value_or("?") + ' ';
    return names;
  }

  static void expectSaves(const Store& store) {
    const auto error = store->viewContext().save();
    EXPECT_FALSE(error) << error->description();
    EXPECT_FALSE(store->viewContext().hasChanges());
  }

  std::string file() const { return home_.storeFile().string(); }

  std::string sql(const std::string& statements) const {
    const std::string command = "sqlite3 '" + file() + "' \"" + statements + "\" 2>&1";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string answer;
    for (int c = fgetc(pipe.get()); c != EOF; c = fgetc(pipe.get()))
      answer += static_cast<char>(c);
    return answer.substr(0, answer.find_last_not_of('\n') + 1);
  }

  std::string contents() const {
    std::ostringstream all;
    all << std::ifstream(file(), std::ios::binary).rdbuf();
    return all.str();
  }

  static unsigned modeOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(stat(path.c_str(), &info), 0) << path;
    return info.st_mode & 0777U;
  }

  // The store holds nothing, takes nothing, and its file stays as it is.
  void expectRefused(const std::string& reason) const {
    const std::string before = contents();
    const Store store = openStore(reason);
    EXPECT_FALSE(store->viewContext().executeFetchRequest("ServerItemStorage"));
    insert(store, "new");
    EXPECT_EQ(store->viewContext().save()->description(), file() + ": it isn't open");
    EXPECT_EQ(contents(), before);
  }

  TemporaryDataHome home_;
};

TEST_F(PersistentContainer, KeepsRecordsBetweenRuns) {
  const auto expectStored = [](const Store& store) {
    ASSERT_EQ(namesOf(store), "first 中\"' ");
    EXPECT_EQ(records(store)[0]->stringForKey("auth"), std::string("a\0b", 3));
    EXPECT_EQ(records(store)[0]->integerForKey("serverPort"), 6379);
    EXPECT_EQ(records(store)[0]->stringForKey("defaultCharset"), std::nullopt);
    EXPECT_FALSE(store->viewContext().hasChanges());
  };
  {
    const Store store = openStore();
    insert(store, "first 中\"'");
    EXPECT_TRUE(store->viewContext().hasChanges());
    expectSaves(store);
    expectStored(store);
    EXPECT_EQ(sql("SELECT serverId, serverPort, typeof(defaultCharset) FROM ServerItemStorage"),
              records(store)[0]->uuidForKey("serverId")->uuidString() + "|6379|null");
    EXPECT_EQ(sql("SELECT count(counter) FROM UseCounter"), "0");
  }
  expectStored(openStore());
}

TEST_F(PersistentContainer, ReadsAndWritesBesideAnotherRunningProgram) {
  const Store store = openStore();
  const auto first = insert(store, "first");
  const auto second = insert(store, "second");
  insert(store, "third");
  expectSaves(store);
  second->setValueForKey("connectionName", "changed");
  store->viewContext().deleteObject(*insert(store, "never stored"));
  store->viewContext().deleteObject(*records(store)[2]);
  insert(store, "fourth");
  EXPECT_EQ(namesOf(store), "first changed fourth ");
  EXPECT_EQ(sql("SELECT group_concat(connectionName) FROM ServerItemStorage"), "first,second,third");
  // Columns that we didn't change are kept, a change wins against a removal, and what we know not stays.
  sql("UPDATE ServerItemStorage SET serverIp = 'other'; DELETE FROM ServerItemStorage WHERE rowid = 1");
  first->setValueForKey("serverPort", std::int64_t{1});
  expectSaves(store);
  EXPECT_EQ(sql("SELECT connectionName, serverIp, serverPort FROM ServerItemStorage"),
            "changed|other|6379\nfirst|127.0.0.1|1\nfourth|127.0.0.1|6379");
  sql("DELETE FROM ServerItemStorage WHERE connectionName = 'first'");
  EXPECT_EQ(namesOf(store), "changed fourth ");
  EXPECT_EQ(records(store)[0], second);
  first->setValueForKey("connectionName", "fourth");
  records(store)[1]->setValueForKey("connectionName", "fourth");
  EXPECT_FALSE(store->viewContext().hasChanges());
}

TEST_F(PersistentContainer, LeavesRecordsWithWrongOrMissingFieldsAsTheyAre) {
  const Store store = openStore();
  const std::string uuid = "'0123abcd-ef01-2345-6789-abcdef012345', ";
  const std::string uuidNameHost = uuid + "'n', 'h', ";
  const std::array<std::array<std::string, 2>, 7> rows = {{{"'no uuid', 'n', 'h', 1, ''", "serverId"},
                                                           {uuid + "NULL, 'h', 1, ''", "connectionName"},
                                                           {uuid + "'n', x'00FF', 1, ''", "serverIp"},
                                                           {uuidNameHost + "'no port', ''", "serverPort"},
                                                           {uuidNameHost + "5000000000, ''", "serverPort"},
                                                           {uuidNameHost + "1, NULL", "auth"},
                                                           {uuidNameHost + "1, ''", "nothing"}}};
  for (const auto& [values, missing] : rows) {
    sql("DELETE FROM ServerItemStorage; INSERT INTO ServerItemStorage VALUES (" + values + ", 'GBK')");
    const std::string before = sql("SELECT quote(serverId), quote(serverIp), serverPort FROM ServerItemStorage");
    const auto found = records(store);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0]->missingRequiredKey().value_or("nothing"), missing);
    found[0]->setValueForKey("defaultCharset", "utf8");
    expectSaves(store);
    EXPECT_EQ(sql("SELECT quote(serverId), quote(serverIp), serverPort FROM ServerItemStorage"), before);
  }
}

TEST_F(PersistentContainer, KeepsTheOldRecordsAtAFullDisk) {
  const Store store = openStore();
  const auto object = insert(store, "old");
  expectSaves(store);
  object->setValueForKey("connectionName", "new");
  insert(store, std::string(100000, 'x'));
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handlerBefore = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit full = {40000, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &full);
  const auto error = store->viewContext().save();
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handlerBefore);
  ASSERT_TRUE(error);
  EXPECT_TRUE(store->viewContext().hasChanges());
  EXPECT_EQ(sql("SELECT connectionName FROM ServerItemStorage"), "old");
  expectSaves(store);
  EXPECT_EQ(sql("SELECT length(connectionName) FROM ServerItemStorage"), "3\n100000");
}

TEST_F(PersistentContainer, SurvivesAKillAtAnyMoment) {
  {
    const Store store = openStore();
    for (int i = 0; i < 8; ++i)
      insert(store, std::string(2000, 'x'));
    expectSaves(store);
  }
  for (int round = 0; round < 15; ++round) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const pid_t saver = fork();
    if (saver == 0) {
      const Store store = openStore();
      for (std::int64_t port = 0;; ++port) {
        for (const auto& object : records(store))
          object->setValueForKey("serverPort", port);
        if (store->viewContext().save() || write(ends[1], "", 1) != 1) _exit(1);
      }
    }
    // In the middle of the next save.
    std::array<char, 1> saves;
    for (int seen = 0; seen <= round % 3;)
      seen += static_cast<int>(read(ends[0], saves.data(), 1));
    kill(saver, SIGKILL);
    int status = 0;
    waitpid(saver, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    close(ends[0]);
    close(ends[1]);
    const auto found = records(openStore());
    ASSERT_EQ(found.size(), 8U);
    for (const auto& object : found)
      EXPECT_EQ(object->integerForKey("serverPort"), found[0]->integerForKey("serverPort"));
  }
}

TEST_F(PersistentContainer, WaitsForAnotherProgramThatHoldsTheFileAndThenSaysSo) {
  const Store store = openStore();
  insert(store, "new");
  const std::unique_ptr<FILE, int (*)(FILE*)> other(popen(("sqlite3 '" + file() + "'").c_str(), "w"), pclose);
  fputs("BEGIN EXCLUSIVE;\n", other.get());
  fflush(other.get());
  while (sql("SELECT count(*) FROM UseCounter") == "0") {
  }
  auto opening = std::async([] { openStore("database is locked"); });
  EXPECT_EQ(store->viewContext().save()->reason, "database is locked");
  opening.get();
  fputs("ROLLBACK;\n", other.get());
  fflush(other.get());
  expectSaves(store);
  EXPECT_EQ(namesOf(openStore()), "new ");
}

TEST_F(PersistentContainer, RefusesWhatIsNoStoreOfThisVersionAndLeavesIt) {
  const auto write = [this](const std::string& text) { std::ofstream(file(), std::ios::binary) << text; };
  const Store old = openStore();
  for (int i = 0; i < 50; ++i)
    insert(old, std::string(500, 'x'));
  expectSaves(old);
  const std::string whole = contents();
  ASSERT_GT(whole.size(), 5 * 4096U);
  std::string damaged = whole;
  for (std::size_t i = 4 * 4096; i < 5 * 4096; ++i)
    damaged[i] = static_cast<char>(i * 7);
  write(damaged);
  expectRefused("the file is damaged: ");
  write(damaged.substr(0, 3 * 4096 + 100));
  expectRefused("database disk image is malformed");
  write("These are somebody's notes, and no database at all.\n" + std::string(2000, 'x'));
  expectRefused("file is not a database");
  write(whole);
  sql("PRAGMA user_version = 2");
  expectRefused("the file is from a newer version");
  sql("PRAGMA user_version = 1; ALTER TABLE ServerItemStorage DROP COLUMN auth");
  expectRefused("the file has no ServerItemStorage.auth");
  write(whole);
  chmod(file().c_str(), 0400);
  expectRefused("the file can't be written");
  EXPECT_EQ(modeOf(file()), 0400U);
  std::filesystem::remove(file());
  std::filesystem::create_directory(file());
  expectRefused("it is no file");
  std::filesystem::remove_all(home_.storeFile().parent_path());
  std::ofstream(home_.storeFile().parent_path()) << "in the way";
  expectRefused("Not a directory");
}

TEST_F(PersistentContainer, LetsOnlyTheUserReadAStoreNewEmptyOrOldAndFallsBackToTheHomeFolder) {
  const std::string folder = home_.storeFile().parent_path();
  const auto maskBefore = umask(0);
  const auto expectPrivate = [&] {
    expectSaves(openStore());
    EXPECT_EQ(modeOf(file()), 0600U);
    EXPECT_EQ(modeOf(folder), 0700U);
  };
  expectPrivate();
  chmod(file().c_str(), 0664);
  chmod(folder.c_str(), 0755);
  expectPrivate();
  std::ofstream(file()) << "";
  expectPrivate();
  umask(maskBefore);

  const std::string homeBefore = getenv("HOME") ? getenv("HOME") : "";
  setenv("XDG_DATA_HOME", "relative/ignored", 1);
  setenv("HOME", home_.folder().c_str(), 1);
  openStore();
  EXPECT_TRUE(std::filesystem::exists(home_.folder() / ".local/share/Tarn/ServerItemModel.sqlite"));
  setenv("HOME", homeBefore.c_str(), 1);
}

}  // namespace
}  // namespace tarn::test
