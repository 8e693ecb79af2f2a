#include "favourites/ConnectionTabs.h"
#include "tests/support/RedisServer.h"
#include "tests/support/program/ProgramTest.h"

namespace tarn::test {

namespace {

class ConnectionTabsTest : public ProgramTest {
protected:
  std::string selectedLabel() {
    const auto item = window().mainTab.selectedTabViewItem();
    return item ? item->label() : std::string();
  }
};

}  // namespace

TEST_F(ConnectionTabsTest, ASelectedServerGetsOneTabThatNamesItAndConnectsNothing) {
  store("local", 6379);
  store("other", 6380);
  openWindow();
  clickRow("local");
  EXPECT_EQ(tab().labServerName.stringValue(), "Name:local Server:127.0.0.1 Port:6379");
  clickRow("other");
  EXPECT_EQ(selectedLabel(), "other");
  clickRow("local");
  EXPECT_EQ(selectedLabel(), "local");
  EXPECT_EQ(tabLabels(), (Texts{"local", "other"}));
  const auto item = window().mainTab.selectedTabViewItem();
  EXPECT_EQ(item->toolTip(), "local");
  EXPECT_EQ(item->sizeOfLabel(true), 0.0);
  EXPECT_GT(item->sizeOfLabel(false), 0.0);
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::notConnected);
}

TEST_F(ConnectionTabsTest, ADatabaseRowShowsAndSelectsItsDatabase) {
  const RedisServer redis({"--databases", "3"});
  redis.command({"set", "zero", "1"}, 0);
  redis.command({"mset", "a", "1", "b", "2"}, 1);
  store("local", redis.port());
  openWindow();
  connect();

  // The first click makes the tab.
  clickRow("db1(");
  waitForKeys({"a", "b"});
  waitForText(tab().labStatus, "Status:Connected");
  EXPECT_EQ(tabOf()->shownDatabase(), 1);
  EXPECT_EQ(server()->currentDbIdx(), 1);

  // The same one again lists its keys anew; another one starts with an empty search.
  tab().txtSearchKey.setStringValue("zer");
  redis.command({"set", "zebra-zero", "3"}, 1);
  clickRow("db1(");
  waitForKeys({"zebra-zero"});
  clickRow("db0(");
  waitForKeys({"zero"});
  EXPECT_EQ(tab().txtSearchKey.stringValue(), "");
  EXPECT_EQ(tabOf()->shownDatabase(), 0);
}

TEST_F(ConnectionTabsTest, ClosingATabSelectsTheOneInItsPlaceAndItsRow) {
  for (const char* name : {"a", "b", "c"})
    store(name, 1);
  openWindow();
  for (const char* name : {"a", "c", "b"})
    clickRow(name);
  struct Step {
    std::size_t closed;
    Texts labels;
    std::string selected;
    int row;
  };
  clickRow("c");
  for (const Step& step : {Step{2, {"a", "b"}, "b", 2}, Step{1, {"a"}, "a", 1}, Step{0, {}, "", 1}}) {
    const std::weak_ptr<OperationTabViewController> closed = tabOf(step.closed);
    click(tab(step.closed).btnClose);
    EXPECT_TRUE(closed.expired());
    EXPECT_EQ(tabLabels(), step.labels);
    EXPECT_EQ(selectedLabel(), step.selected);
    EXPECT_EQ(window().serverSelection.selectedRowIndexes(), std::vector<int>{step.row});
  }
  // Without a tab nothing is closed.
  content().closeSelectedTab();
  EXPECT_EQ(rows(), (Texts{"My Favourite", "a", "b", "c"}));
}

}  // namespace tarn::test
