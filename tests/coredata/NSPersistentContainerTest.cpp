#include "platform/coredata/NSPersistentContainer.h"
#include "tests/coredata/StoreFixture.h"

#include <sys/stat.h>

#include <filesystem>
#include <string>

namespace tarn::test {
namespace {

class PersistentContainer : public StoreFixture {
protected:
  static unsigned modeOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(stat(path.c_str(), &info), 0) << path;
    return info.st_mode & 0777U;
  }

  void write(const std::string& text) const {
    std::filesystem::create_directories(home_.storeFile().parent_path());
    std::ofstream(storeFile(), std::ios::binary) << text;
  }

  // The store is refused with this reason, holds nothing, takes nothing, and its file stays as it is.
  void expectRefused(const std::string& reason) const {
    const std::string before = contentsOf(storeFile());
    const auto container = makeContainer();
    const auto error = container->loadPersistentStores();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->file, storeFile());
    EXPECT_NE(error->reason.find(reason), std::string::npos) << error->reason;
    NSManagedObjectContext& context = container->viewContext();
    EXPECT_FALSE(context.executeFetchRequest(favouritesRequest(context)));
    insertFavourite(context, "new");
    EXPECT_TRUE(context.save());
    EXPECT_EQ(contentsOf(storeFile()), before);
  }
};

TEST_F(PersistentContainer, LetsOnlyTheUserReadAStoreNewOrOld) {
  const std::string folder = home_.storeFile().parent_path();
  const auto maskBefore = umask(0);
  makeStore({"old"});
  umask(maskBefore);
  const auto expectPrivate = [&] {
    EXPECT_EQ(modeOf(storeFile()), 0600U);
    EXPECT_EQ(modeOf(folder), 0700U);
  };
  expectPrivate();
  chmod(storeFile().c_str(), 0664);
  chmod(folder.c_str(), 0755);
  EXPECT_EQ(namesOf(openStore()->viewContext()), "old ");
  expectPrivate();
}

TEST_F(PersistentContainer, TakesAnEmptyFileForAFirstStart) {
  write("");
  makeStore({"old"});
  EXPECT_EQ(namesOf(openStore()->viewContext()), "old ");
}

TEST_F(PersistentContainer, RefusesADamagedStore) {
  makeStore(std::vector<std::string>(50, std::string(500, 'x')));
  std::string damaged = contentsOf(storeFile());
  ASSERT_GT(damaged.size(), 5 * 4096U);
  for (std::size_t i = 4 * 4096; i < 5 * 4096; ++i)
    damaged[i] = static_cast<char>(i * 7);
  write(damaged);
  expectRefused("damaged");
  write(damaged.substr(0, 3 * 4096 + 100));
  expectRefused("malformed");
  write("These are somebody's notes, and no database at all.\n" + std::string(2000, 'x'));
  expectRefused("not a database");
}

TEST_F(PersistentContainer, RefusesAStoreOfANewerVersionOrOfOtherTables) {
  makeStore({"old"});
  sql("PRAGMA user_version = 2");
  expectRefused("newer version");
  sql("PRAGMA user_version = 1; ALTER TABLE ServerItemStorage DROP COLUMN auth");
  expectRefused("no ServerItemStorage.auth");
}

TEST_F(PersistentContainer, RefusesAStoreThatMayNotBeWritten) {
  makeStore({"old"});
  chmod(storeFile().c_str(), 0400);
  expectRefused("can't be written");
  EXPECT_EQ(modeOf(storeFile()), 0400U);
}

TEST_F(PersistentContainer, RefusesAPlaceWhereNoFileCanBe) {
  std::filesystem::create_directories(home_.storeFile());
  expectRefused("no file");
  std::filesystem::remove_all(home_.storeFile().parent_path());
  std::ofstream(home_.storeFile().parent_path()) << "in the way";
  expectRefused("Not a directory");
}

TEST_F(PersistentContainer, FallsBackToTheHomeFolder) {
  const std::string home = home_.folder().string();
  const std::string homeBefore = getenv("HOME") == nullptr ? "" : getenv("HOME");
  setenv("XDG_DATA_HOME", "relative/ignored", 1);
  setenv("HOME", home.c_str(), 1);
  EXPECT_EQ(openStore()->file(), home + "/.local/share/Tarn/ServerItemModel.sqlite");
  setenv("HOME", homeBefore.c_str(), 1);
}

TEST_F(PersistentContainer, NeedsAModelThatCanBeRead) {
  const auto read = NSManagedObjectModel::initWithContents;
  ASSERT_TRUE(model());
  EXPECT_EQ(model()->entities().size(), 2U);
  EXPECT_TRUE(read("# comment\n\nentity E\n  key string optional"));
  for (const char* text : {"", "entity E", "key string optional", "entity E\nkey text optional", "entity E F\n",
                           "entity E\nkey string", "entity E\nk'y string required"}) {
    EXPECT_FALSE(read(text)) << text;
  }
}

}  // namespace
}  // namespace tarn::test
