#include "favourites/ServerItemModel.h"
#include "platform/coredata/NSPersistentContainer.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <future>

namespace tarn::test {
namespace {

namespace fs = std::filesystem;
using Store = std::unique_ptr<NSPersistentContainer>;
using Pipe = std::unique_ptr<FILE, int (*)(FILE*)>;

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
    object->setValueForKey("connectionName", name);
    object->setValueForKey("serverIp", "localhost");
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
    EXPECT_FALSE(store->viewContext().save() || store->viewContext().hasChanges());
  }

  std::string file() const { return home_.storeFile().string(); }

  std::string sql(const std::string& statements) const {
    const Pipe pipe(popen(("sqlite3 '" + file() + "' \"" + statements + "\" 2>&1").c_str(), "r"), pclose);
    std::string answer;
    for (int c = fgetc(pipe.get()); c != EOF; c = fgetc(pipe.get()))
      answer += static_cast<char>(c);
    return answer.substr(0, answer.find_last_not_of('\n') + 1);
  }

  TemporaryDataHome home_;
};

TEST_F(PersistentContainer, KeepsRecordsBesideAnotherRunningProgramAndBetweenRuns) {
  const Store store = openStore();
  const auto first = insert(store, "first 中\"'");
  const auto second = insert(store, "second");
  insert(store, "third");
  EXPECT_TRUE(store->viewContext().hasChanges());
  expectSaves(store);
  second->setValueForKey("connectionName", "changed");
  store->viewContext().deleteObject(*insert(store, "never stored"));
  store->viewContext().deleteObject(*records(store)[2]);
  insert(store, "fourth");
  EXPECT_EQ(namesOf(store), "first 中\"' changed fourth ");
  EXPECT_EQ(sql("SELECT group_concat(connectionName) FROM ServerItemStorage"), "first 中\"',second,third");

  // A column that only the other one changed stays so, and a change wins against a removal.
  sql("UPDATE ServerItemStorage SET serverIp = 'other'; DELETE FROM ServerItemStorage WHERE rowid = 1");
  first->setValueForKey("serverPort", std::int64_t{1});
  expectSaves(store);
  EXPECT_EQ(sql("SELECT connectionName, serverIp, serverPort, typeof(defaultCharset) FROM ServerItemStorage"),
            "changed|other|6379|null\nfirst 中\"'|localhost|1|null\nfourth|localhost|6379|null");
  const Store next = openStore();
  EXPECT_EQ(records(next)[1]->stringForKey("auth"), std::string("a\0b", 3));
  EXPECT_EQ(records(next)[1]->integerForKey("serverPort"), 1);
  EXPECT_EQ(records(next)[1]->stringForKey("defaultCharset"), std::nullopt);

  next->viewContext().deleteObject(*records(next)[1]);
  expectSaves(next);
  EXPECT_EQ(namesOf(store), "changed fourth ");
  records(store)[1]->setValueForKey("connectionName", "fourth");
  EXPECT_FALSE(store->viewContext().hasChanges());
}

TEST_F(PersistentContainer, LeavesFieldsOfAnotherTypeAsTheyAre) {
  const Store store = openStore();
  const std::string fields = "SELECT quote(serverId), quote(serverIp), serverPort FROM ServerItemStorage";
  const std::string uuid = "'0123abcd-ef01-2345-6789-abcdef012345'";
  const std::tuple<std::string, std::string, std::string> rows[] = {{"'no uuid'", "'n', 'h', 1", "serverId"},
                                                                    {uuid, "'n', x'00FF', 1", "serverIp"},
                                                                    {uuid, "'n', 'h', 'no port'", "serverPort"},
                                                                    {uuid, "'n', 'h', 5000000000", "serverPort"},
                                                                    {uuid, "'n', 'h', 1", "none"}};
  for (const auto& [id, values, missing] : rows) {
    sql("DELETE FROM ServerItemStorage; INSERT INTO ServerItemStorage VALUES (" + id + "," + values + ", '', 'GBK')");
    const std::string before = sql(fields);
    EXPECT_EQ(records(store).at(0)->missingRequiredKey().value_or("none"), missing);
    records(store)[0]->setValueForKey("defaultCharset", "utf8");
    expectSaves(store);
    EXPECT_EQ(sql(fields), before);
  }
}

TEST_F(PersistentContainer, SurvivesAKillAtAnyMoment) {
  const Store first = openStore();
  for (int i = 0; i < 8; ++i)
    insert(first, std::string(2000, 'x'));
  expectSaves(first);
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
    for (int saves = 0, saved = 0; saves <= round % 3; ++saves)
      ASSERT_EQ(read(ends[0], &saved, 1), 1);
    kill(saver, SIGKILL);
    int status = 0;
    waitpid(saver, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    for (const int end : ends)
      close(end);
    const auto found = records(openStore());
    ASSERT_EQ(found.size(), 8U);
    for (const auto& object : found)
      EXPECT_EQ(object->integerForKey("serverPort"), found[0]->integerForKey("serverPort"));
  }
}

TEST_F(PersistentContainer, WaitsForAnotherProgramThatHoldsTheFileAndThenReportsIt) {
  const Store store = openStore();
  insert(store, "new");
  const Pipe other(popen(("sqlite3 '" + file() + "'").c_str(), "w"), pclose);
  const auto run = [&other](const char* statement) {
    fputs(statement, other.get());
    fflush(other.get());
  };
  // It asks again where the reader below is at it.
  run(".timeout 60000\nBEGIN EXCLUSIVE;\n");
  while (sql("SELECT count(*) FROM UseCounter") == "0") {
  }
  auto opening = std::async([] { openStore("database is locked"); });
  EXPECT_EQ(store->viewContext().save()->description(), file() + ": database is locked");
  opening.get();
  EXPECT_TRUE(store->viewContext().hasChanges());
  run("ROLLBACK;\n");
  expectSaves(store);
  EXPECT_EQ(namesOf(openStore()), "new ");
}

TEST_F(PersistentContainer, LetsOnlyTheUserReadAStoreAndKeepsToItsFolder) {
  const std::string folder = home_.storeFile().parent_path();
  const auto maskBefore = umask(0);
  for (int start = 0; start < 2; ++start) {
    openStore();
    EXPECT_EQ(fs::status(file()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
    chmod(file().c_str(), 0664);
    chmod(folder.c_str(), 0755);
  }
  umask(maskBefore);
  fs::remove(file());
  fs::create_directory(file());
  const Store refused = openStore("it is no file");
  insert(refused, "new");
  EXPECT_EQ(refused->viewContext().save()->reason, "it isn't open");

  const std::string homeBefore = getenv("HOME") ? getenv("HOME") : "";
  setenv("XDG_DATA_HOME", "relative/ignored", 1);
  setenv("HOME", home_.folder().c_str(), 1);
  openStore();
  EXPECT_TRUE(fs::exists(home_.folder() / ".local/share/Tarn/ServerItemModel.sqlite"));
  setenv("HOME", homeBefore.c_str(), 1);
}

}  // namespace
}  // namespace tarn::test
