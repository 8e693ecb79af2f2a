#include "favourites/FavouritesStore.h"
#include "favourites/MainViewController.h"
#include "platform/foundation/NSOperationQueue.h"
#include "resources/Resources.h"
#include "shell/AppDelegate.h"
#include "tests/support/AlertRecorder.h"
#include "tests/support/TemporaryDataHome.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <string>

namespace tarn::test {

namespace {

std::string contents(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// Ends every write to a file, as a full disk does.
class FullDisk final {
public:
  FullDisk() {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit none{0, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &none);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before_); }

private:
  rlimit before_{};
};

class AppDelegateTest : public testing::Test {
protected:
  AppDelegateTest() {
    std::signal(SIGXFSZ, SIG_IGN);
    EXPECT_TRUE(loadResources());
  }

  void writeStoreFile(const std::string& bytes) {
    std::filesystem::create_directories(dataHome.storeFile().parent_path());
    std::ofstream(dataHome.storeFile(), std::ios::binary) << bytes;
  }

  static void storeFavourite(const std::string& name) {
    ServerItem server;
    server.setConnectionName(name);
    FavouritesStore favourites;
    favourites.insertRecord(server);
    favourites.saveIfChanged();
    NSOperationQueue::mainQueue().drain();
  }

  static std::vector<std::string> favouritesOfANewStart() {
    AppDelegate delegate;
    MainViewController window;
    NSOperationQueue::mainQueue().drain();
    std::vector<std::string> names;
    for (const auto& server : window.myFavourite()->servers)
      names.push_back(server->connectionName());
    return names;
  }

  TemporaryDataHome dataHome;
  AlertRecorder alerts;
};

using Names = std::vector<std::string>;

}  // namespace

TEST_F(AppDelegateTest, AMissingOrEmptyStoreIsAFirstStart) {
  EXPECT_EQ(favouritesOfANewStart(), Names());
  writeStoreFile("");
  EXPECT_EQ(favouritesOfANewStart(), Names());
  EXPECT_EQ(alerts.messages(), Names());

  {
    AppDelegate delegate;
    storeFavourite("local");
  }
  EXPECT_EQ(favouritesOfANewStart(), Names{"local"});
  EXPECT_EQ(alerts.messages(), Names());
}

TEST_F(AppDelegateTest, ADamagedStoreIsToldOnceAndNeverOverwritten) {
  const std::string garbage(20'000, '#');
  writeStoreFile(garbage);
  AppDelegate delegate;
  testing::internal::CaptureStdout();
  MainViewController window;
  const std::string log = testing::internal::GetCapturedStdout();
  EXPECT_EQ(log.find("Unresolved error "), 0U) << log;
  EXPECT_TRUE(window.myFavourite()->servers.empty());
  // Behind the start, so that it stands over the window.
  EXPECT_EQ(alerts.shown().size(), 0U);
  NSOperationQueue::mainQueue().drain();
  ASSERT_EQ(alerts.shown().size(), 1U);
  EXPECT_NE(alerts.messages()[0].find(dataHome.storeFile().string()), std::string::npos) << alerts.messages()[0];

  alerts.clear();
  testing::internal::CaptureStdout();
  storeFavourite("lost");
  EXPECT_EQ(testing::internal::GetCapturedStdout().find("Failure to save context: "), 0U);
  EXPECT_EQ(alerts.shown().size(), 1U);
  EXPECT_EQ(contents(dataHome.storeFile()), garbage);
}

TEST_F(AppDelegateTest, AStoreThatMayNotBeReadOrWrittenIsToldOnce) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read and write everything";
  {
    AppDelegate delegate;
    storeFavourite("local");
  }
  for (const mode_t mode : {0400U, 0000U}) {
    alerts.clear();
    ASSERT_EQ(chmod(dataHome.storeFile().c_str(), mode), 0);
    favouritesOfANewStart();
    EXPECT_EQ(alerts.shown().size(), 1U);
  }
  ASSERT_EQ(chmod(dataHome.storeFile().c_str(), 0600), 0);
  EXPECT_EQ(favouritesOfANewStart(), Names{"local"});
}

TEST_F(AppDelegateTest, ADiskThatIsFullIsToldAndLeavesTheOldRecordWhole) {
  AppDelegate delegate;
  storeFavourite("local");
  const std::string before = contents(dataHome.storeFile());
  {
    const FullDisk full;
    const auto servers = FavouritesStore().loadFavourites();
    servers.at(0)->setConnectionName(std::string(50'000, 'x'));
    FavouritesStore().changeRecord(*servers[0]);
    FavouritesStore().saveIfChanged();
    NSOperationQueue::mainQueue().drain();
  }
  ASSERT_EQ(alerts.shown().size(), 1U);
  EXPECT_EQ(contents(dataHome.storeFile()), before);

  // The change is still there, and the next save takes it along.
  delegate.saveContext();
  EXPECT_EQ(alerts.shown().size(), 1U);
  EXPECT_EQ(FavouritesStore().loadFavourites().at(0)->connectionName().size(), 50'000U);
}

}  // namespace tarn::test
