#include "platform/coredata/NSPersistentContainer.h"

#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "tests/coredata/StoreFixture.h"

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
    const std::string before = contents();
    const auto container = makeContainer();
    const auto error = container->loadPersistentStores();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->file, storeFile());
    EXPECT_NE(error->reason.find(reason), std::string::npos) << error->reason;
    NSManagedObjectContext& context = container->viewContext();
    EXPECT_FALSE(context.executeFetchRequest(favouritesRequest(context)));
    insertFavourite(context, "new");
    EXPECT_TRUE(context.save());
    EXPECT_EQ(contents(), before);
  }

  void makeStoreWithOneRecord() const {
    const auto store = openStore();
    insertFavourite(store->viewContext(), "old");
    ASSERT_FALSE(store->viewContext().save());
  }
};

TEST_F(PersistentContainer, MakesAStoreThatOnlyTheUserMayRead) {
  const auto maskBefore = umask(0);
  makeStoreWithOneRecord();
  umask(maskBefore);
  EXPECT_EQ(modeOf(storeFile()), 0600U);
  EXPECT_EQ(modeOf(home_.storeFile().parent_path()), 0700U);
  EXPECT_EQ(sql("PRAGMA user_version"), "1");
}

TEST_F(PersistentContainer, TakesAnOpenStoreAwayFromOthers) {
  makeStoreWithOneRecord();
  chmod(storeFile().c_str(), 0664);
  chmod(home_.storeFile().parent_path().c_str(), 0755);
  EXPECT_EQ(namesOf(openStore()->viewContext()), "old ");
  EXPECT_EQ(modeOf(storeFile()), 0600U);
  EXPECT_EQ(modeOf(home_.storeFile().parent_path()), 0700U);
}

TEST_F(PersistentContainer, TakesAnEmptyFileForAFirstStart) {
  write("");
  EXPECT_EQ(namesOf(openStore()->viewContext()), "");
  makeStoreWithOneRecord();
  EXPECT_EQ(namesOf(openStore()->viewContext()), "old ");
}

TEST_F(PersistentContainer, RefusesAFileThatIsNoStore) {
  write("These are somebody's notes, and no database at all.\n" + std::string(2000, 'x'));
  expectRefused("not a database");
}

TEST_F(PersistentContainer, RefusesADamagedStore) {
  {
    const auto store = openStore();
    for (int i = 0; i < 50; ++i)
      insertFavourite(store->viewContext(), std::string(500, 'x'));
    ASSERT_FALSE(store->viewContext().save());
  }
  std::string damaged = contents();
  ASSERT_GT(damaged.size(), 5 * 4096U);
  for (std::size_t i = 4 * 4096; i < 5 * 4096; ++i)
    damaged[i] = static_cast<char>(i * 7);
  write(damaged);
  expectRefused("damaged");
  write(damaged.substr(0, 3 * 4096 + 100));
  expectRefused("malformed");
}

TEST_F(PersistentContainer, RefusesAStoreOfANewerVersion) {
  makeStoreWithOneRecord();
  sql("PRAGMA user_version = 2");
  expectRefused("newer version");
}

TEST_F(PersistentContainer, RefusesADatabaseWithOtherTables) {
  makeStoreWithOneRecord();
  sql("ALTER TABLE ServerItemStorage DROP COLUMN auth");
  expectRefused("no ServerItemStorage.auth");
}

TEST_F(PersistentContainer, RefusesAStoreThatMayNotBeWritten) {
  makeStoreWithOneRecord();
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
  const std::string path = (home_.folder() / "model").string();
  const auto read = [&](const std::string& text) {
    std::ofstream(path) << text;
    return NSManagedObjectModel::initWithContentsOfFile(path);
  };
  ASSERT_TRUE(model());
  EXPECT_EQ(model()->entities().size(), 2U);
  EXPECT_TRUE(read("# comment\n\nentity E\n  key string optional"));
  for (const char* text : {"", "entity E", "key string optional", "entity E\nkey text optional", "entity E F\n",
                           "entity E\nkey string", "entity E\nk'y string required"}) {
    EXPECT_FALSE(read(text)) << text;
  }
  EXPECT_FALSE(NSManagedObjectModel::initWithContentsOfFile(path + ".missing"));
  EXPECT_FALSE(NSManagedObjectModel::initWithContentsOfFile(home_.folder().string()));
}

}  // namespace
}  // namespace tarn::test
