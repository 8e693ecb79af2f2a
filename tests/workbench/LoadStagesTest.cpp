// What a tab sends, in which order, while keys and values are loaded, and what a failure or an older load leaves.

#include "tests/workbench/RecordedTab.h"

#include <algorithm>

namespace tarn::test {
namespace {

const std::string scan = "scan 0 MATCH * COUNT 1000";

class LoadStages : public RecordedTab {};

TEST_F(LoadStages, AskForTypeTtlAndValueInThisOrder) {
  openKeys();
  outlets().tableKeys.selectRow(1);
  waitUntilIdle();
  EXPECT_EQ(peer.sent(), (Texts{"type b", "ttl b", "get b"}));
}

TEST_F(LoadStages, SelectTheShownDatabaseWhereTheWireIsElsewhereOrEndThere) {
  openKeys();
  tab->selectDatabase(2);
  search("");
  search("");
  EXPECT_EQ(peer.sent(), (Texts{"select 2", scan, scan}));
  tab->selectDatabase(3);
  peer.refuse("select");
  outlets().tableKeys.selectRow(0);
  waitUntilIdle();
  EXPECT_EQ(peer.sent(), Texts{"select 3"});
  EXPECT_EQ(alerts.shown().size(), 1U);
  EXPECT_EQ(outlets().labType.stringValue(), "Type:");
}

TEST_F(LoadStages, ListNoKeysOfADatabaseThatWasLeft) {
  openKeys();
  EXPECT_EQ(outlets().tableKeys.numberOfRows(), 3);
  peer.holdScans();
  tab->search();
  EXPECT_FALSE(outlets().activityBar.isAnimating());
  ASSERT_TRUE(waitUntil([&] { return peer.sent() == Texts{scan}; }));
  EXPECT_TRUE(waitUntil([&] { return outlets().activityBar.isAnimating(); }));
  peer.refuse("select");
  choose(*outlets().popDatabase.widget(), 1);
  peer.releaseScans();
  waitUntilIdle();
  EXPECT_EQ(peer.sent(), Texts{"select 1"});
  EXPECT_EQ(outlets().tableKeys.numberOfRows(), 0);
  EXPECT_TRUE(waitUntil([&] { return !outlets().activityBar.isAnimating(); }));
}

TEST_F(LoadStages, OfAnOlderLoadRunOnButFillNothing) {
  openKeys();
  outlets().tableKeys.selectRow(0);
  outlets().tableKeys.selectRow(1);
  waitUntilIdle();
  EXPECT_EQ(outlets().txtKey.stringValue(), "b");
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "b");
  Texts requests = peer.sent();
  std::sort(requests.begin(), requests.end());
  EXPECT_EQ(requests, (Texts{"get a", "get b", "ttl a", "ttl b", "type a", "type b"}));

  outlets().tableKeys.selectRow(0);
  tab->resetWorkbenchView();
  waitUntilIdle();
  EXPECT_EQ(outlets().txtKey.stringValue(), "");
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "");
}

TEST_F(LoadStages, OfAClosedTabLapse) {
  openKeys();
  for (int i = 0; i < 20; ++i) {
    outlets().tableKeys.selectRow(0);
    tab->search();
    tab.reset();
    ASSERT_TRUE(waitUntil([&] { return idle(); }));
    showTab();
    search("");
  }
  EXPECT_EQ(alerts.messages(), Texts{});
}

TEST_F(LoadStages, ShowAKeyThatGoesBehindItsTypeAsDeleted) {
  peer.reply("ttl", ":-2\r\n");
  open("hash", "*2\r\n$1\r\n0\r\n*0\r\n");
  EXPECT_EQ(outlets().txtTTL.stringValue(), "-2");
  EXPECT_EQ(outlets().txtTTL.toolTip(), "(Deleted)");
  EXPECT_EQ(outlets().labDataSize.stringValue(), "Data Size: 0byte(s) Data Count:0");
  EXPECT_EQ(outlets().tableKeys.numberOfRows(), 3);
  EXPECT_EQ(alerts.messages(), Texts{});
}

TEST_F(LoadStages, BlankTheFormWhereTheTtlCanNotBeRead) {
  peer.refuse("ttl");
  open("hash", "");
  EXPECT_EQ(outlets().labType.stringValue(), "Type:");
  EXPECT_EQ(outlets().txtKey.stringValue(), "");
  EXPECT_EQ(outlets().txtTTL.toolTip(), "(DisConnected)");
  EXPECT_TRUE(outlets().valueDataHashScrollView.isHidden());
  EXPECT_EQ(alerts.shown().size(), 1U);
}

TEST_F(LoadStages, TellOfAValueThatCanNotBeRead) {
  peer.refuse("get");
  open("string", "");
  EXPECT_EQ(outlets().labType.stringValue(), "Type: String");
  EXPECT_EQ(outlets().labDataSize.stringValue(), "Data Size: ");
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "");
  EXPECT_EQ(alerts.shown().size(), 1U);
  alerts.clear();

  peer.hold("zset", "*4\r\n$1\r\na\r\n$1\r\n1\r\n$1\r\nb\r\n$1\r\n\xFF\r\n");
  selectKey("c");
  EXPECT_EQ(alerts.messages(), Texts{"The return of 'zrange' is not correct(2199)"});
  EXPECT_EQ(outlets().txtKey.stringValue(), "c");
  EXPECT_EQ(outlets().valueDataSortedSetTable.numberOfRows(), 0);
}

}  // namespace
}  // namespace tarn::test
