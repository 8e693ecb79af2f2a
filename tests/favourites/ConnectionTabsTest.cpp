#include "favourites/ConnectionTabs.h"
#include "tests/favourites/FavouritesFixture.h"
#include "tests/support/RedisServer.h"
#include "tests/support/widgets/Hand.h"

namespace tarn::test {

using ConnectionTabsTest = FavouritesTest;
using Texts = std::vector<std::string>;

TEST_F(ConnectionTabsTest, ASelectedServerGetsOneTabThatNamesIt) {
  store("local", 6379);
  store("other", 6380);
  openWindow();
  EXPECT_EQ(tabLabels(), Texts());
  clickRow(1);
  ASSERT_TRUE(tabOf());
  EXPECT_EQ(tabOf()->outlets().labServerName.stringValue(), "Name:local Server:127.0.0.1 Port:6379");
  clickRow(2);
  EXPECT_EQ(selectedTabLabel(), "other");
  clickRow(1);
  EXPECT_EQ(selectedTabLabel(), "local");
  EXPECT_EQ(tabLabels(), (Texts{"local", "other"}));
  EXPECT_EQ(window().outlets().mainTab.tabViewItems()[0]->toolTip(), "local");
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::notConnected);
}

TEST_F(ConnectionTabsTest, ALabelMayBeCutDownToNothing) {
  NSTabViewItemExtension item;
  item.setLabel("a name");
  EXPECT_EQ(item.sizeOfLabel(true), 0.0);
  EXPECT_GT(item.sizeOfLabel(false), 0.0);
}

TEST_F(ConnectionTabsTest, ADatabaseRowShowsAndSelectsItsDatabase) {
  const RedisServer redis({"--databases", "3"});
  redis.command({"set", "zero", "1"}, 0);
  redis.command({"mset", "a", "1", "b", "2"}, 1);
  store("local", redis.port());
  openWindow();
  connect();

  // The first click makes the tab.
  clickRow(3);
  ASSERT_TRUE(tabOf());
  EXPECT_TRUE(waitForKeys(2));
  EXPECT_EQ(tabOf()->outlets().labStatus.stringValue(), "Status:Connected");
  EXPECT_EQ(tabOf()->shownDatabase(), 1);
  EXPECT_EQ(server()->currentDbIdx(), 1);

  // The same one again lists its keys anew; another one starts with an empty search.
  tabOf()->outlets().txtSearchKey.setStringValue("zer");
  redis.command({"set", "zebra-zero", "3"}, 1);
  clickRow(3);
  EXPECT_TRUE(waitForKeys(1));
  redis.command({"mset", "x", "1", "y", "2", "z", "3"}, 0);
  clickRow(2);
  EXPECT_TRUE(waitForKeys(4));
  EXPECT_EQ(tabOf()->outlets().txtSearchKey.stringValue(), "");
  EXPECT_EQ(tabOf()->shownDatabase(), 0);
}

TEST_F(ConnectionTabsTest, ClosingATabSelectsTheOneInItsPlaceAndItsRow) {
  for (const char* name : {"a", "b", "c"})
    store(name, 1);
  openWindow();
  for (const int row : {1, 2, 3})
    clickRow(row);
  const std::weak_ptr<OperationTabViewController> closed = tabOf(1);

  clickRow(2);
  click(*tabOf(1)->outlets().btnClose.widget());
  EXPECT_TRUE(closed.expired());
  EXPECT_EQ(tabLabels(), (Texts{"a", "c"}));
  EXPECT_EQ(selectedTabLabel(), "c");
  EXPECT_EQ(selectedRows(), std::vector<int>{3});

  click(*tabOf(2)->outlets().btnClose.widget());
  EXPECT_EQ(selectedTabLabel(), "a");
  EXPECT_EQ(selectedRows(), std::vector<int>{1});
  window().closeSelectedTab();
  EXPECT_EQ(tabLabels(), Texts());
  EXPECT_EQ(selectedRows(), std::vector<int>{1});
  window().closeSelectedTab();
  EXPECT_EQ(rows(), (Texts{"My Favourite", "a", "b", "c"}));
}

TEST_F(ConnectionTabsTest, ClosingATabClosesItsConnectionAlsoWhileItWorks) {
  const RedisServer redis({"--enable-debug-command", "yes"});
  redis.command({"debug", "populate", "200000"});
  store("local", redis.port());
  openWindow();
  connect();
  for (int round = 0; round < 20; ++round) {
    clickRow(2 + round % 3);
    tabOf()->search();
    window().closeSelectedTab();
    EXPECT_FALSE(tabOf());
    EXPECT_NE(server()->connectionStatus(), ConnectionStatus::connected);
    connect();
  }
  EXPECT_EQ(tabLabels(), Texts());
}

}  // namespace tarn::test
