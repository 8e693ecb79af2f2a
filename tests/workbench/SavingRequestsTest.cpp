// What a save and a delete send, in which order, and what they leave behind where a command fails.

#include "tests/workbench/TabFixture.h"

#include <QTest>

namespace tarn::test {
namespace {

const std::string listRows = "*2\r\n$3\r\none\r\n$3\r\ntwo\r\n";
const std::string setRows = "*2\r\n$1\r\n0\r\n" + listRows;
const std::string hashRows = "*2\r\n$1\r\n0\r\n*4\r\n$1\r\nf\r\n$1\r\nv\r\n$1\r\ng\r\n$1\r\nw\r\n";
const std::string scoredRows = "*4\r\n$1\r\nm\r\n$3\r\ninf\r\n$1\r\nn\r\n$5\r\n1e+20\r\n";
constexpr int moves = 1000;
constexpr int keepsOld = 1001;

class SavingRequestsTest : public RecordedTab {
protected:
  static void typeInto(NSTextField& field, std::string_view text) {
    field.becomeFirstResponder();
    replaceText(text);
  }

  // What the save sends; it has ended, and what it shows is shown.
  Texts save() {
    alerts.clear();
    peer.sent();
    // All of it is sent in the click; what the closing step loads comes later.
    QTest::mouseClick(outlets().btnSave.widget(), Qt::LeftButton);
    Texts sent = peer.sent();
    waitUntilIdle();
    return sent;
  }
  void clickDelete() {
    alerts.clear();
    peer.sent();
    click(*outlets().btnDelete.widget());
    waitUntilIdle();
  }
  // What stands in the way of a save that sends nothing.
  std::string refusal() {
    EXPECT_EQ(save(), Texts{});
    return alerts.shown().size() == 1 ? alerts.messages().front() : std::string();
  }

  Texts keys() { return texts(outlets().tableKeys, 0); }
};

TEST_F(SavingRequestsTest, AStringIsSetAndRowsAreDeletedAndWrittenInOneCommand) {
  // clang-format off
  // Type, value; what a save for ever sends, and one for a minute; the size on show.
  const std::vector<std::tuple<const char*, std::string, Texts, Texts, const char*>> cases{
      {"string", "$5\r\nvalue\r\n", {"persist b", "set b value"}, {"set b value EX 60"}, "Data Size: 5byte(s)"},
      {"list", listRows, {"del b", "rpush b one two"}, {"del b", "rpush b one two", "expire b 60"}, "Data Size: 6byte(s)"},
      {"set", setRows, {"del b", "sadd b one two"}, {"del b", "sadd b one two", "expire b 60"}, "Data Size: 6byte(s)"},
      {"hash", hashRows, {"del b", "hmset b f v g w"}, {"del b", "hmset b f v g w", "expire b 60"}, "Data Size: 4byte(s)"},
      {"zset", scoredRows, {"del b", "zadd b inf m 1e+20 n"}, {"del b", "zadd b inf m 1e+20 n", "expire b 60"}, "Data Size: 10byte(s)"}};
  // clang-format on
  openKeys();
  for (const auto& [type, value, forEver, forAMinute, size] : cases) {
    peer.hold(type, value);
    outlets().tableKeys.deselectAll();
    selectKey("b");
    EXPECT_TRUE(outlets().labDataSize.stringValue().starts_with(size));
    EXPECT_EQ(save(), forEver);
    EXPECT_EQ(outlets().labType.stringValue(), "Type: " + outlets().popType.titleOfSelectedItem());
    EXPECT_EQ(alerts.messages(), Texts{"Saved."});
    EXPECT_EQ(outlets().labDataSize.stringValue(), size);
    typeInto(outlets().txtTTL, "60");
    EXPECT_EQ(save(), forAMinute);
  }
}

// Refused, or cut off with the connection, on which a new one goes on where the tab is.
TEST_F(SavingRequestsTest, EndsAtTheFirstCommandThatFailsAndLeavesTheFormToSaveAgain) {
  open("hash", hashRows);
  typeInto(outlets().txtTTL, "60");
  const Texts all{"select 1", "del b", "hmset b f v g w", "expire b 60"};
  for (std::size_t step = 0; step < all.size(); ++step) {
    const std::string command = all[step].substr(0, all[step].find(' '));
    for (const bool isCutOff : {false, true}) {
      SCOPED_TRACE(command + (isCutOff ? " cut off" : " refused"));
      server->closeConnection();
      ASSERT_TRUE(server->connectToServer().ok);
      tab->selectDatabase(1);
      isCutOff ? peer.closeAt(command) : peer.refuse(command);
      const Texts sent = save();
      EXPECT_EQ(isCutOff ? all[step] : sent.back(), all[step]);
      EXPECT_EQ(alerts.shown().size(), 1U);
      EXPECT_EQ(texts(outlets().valueDataHashTable, 1), (Texts{"v", "w"}));
      EXPECT_EQ(outlets().txtKey.stringValue(), "b");
      peer.allow();
      server->closeConnection();
      ASSERT_TRUE(server->connectToServer().ok);
      EXPECT_EQ(save(), all);
      EXPECT_EQ(alerts.messages(), Texts{"Saved."});
      EXPECT_EQ(save(), Texts(all.begin() + 1, all.end()));
    }
  }
}

TEST_F(SavingRequestsTest, AMoveOrDeleteThatFailsKeepsWhatIsStillThere) {
  open("list", listRows);
  tab->selectDatabase(3);
  peer.refuse("select");
  clickDelete();
  EXPECT_EQ(peer.sent(), Texts{"select 3"});
  tab->selectDatabase(0);
  peer.refuse("del");
  clickDelete();
  EXPECT_EQ(alerts.shown().size(), 2U);
  EXPECT_EQ(outlets().txtKey.stringValue(), "b");
  typeInto(outlets().txtKey, "new");
  EXPECT_EQ(save(), Texts{"del b"});
  EXPECT_EQ(keys(), (Texts{"a", "b", "c"}));
  peer.allow();
  peer.refuse("rpush");
  EXPECT_EQ(save(), (Texts{"del b", "del new", "rpush new one two"}));
  EXPECT_EQ(keys(), (Texts{"a", "c"}));
}

TEST_F(SavingRequestsTest, WhatArrivesBehindAQuestionChangesNothingOfWhatIsWritten) {
  open("list", listRows);
  typeInto(outlets().txtKey, "new");
  alerts.whileNextIsUp([&] {
    peer.hold("set", "*2\r\n$1\r\n0\r\n*1\r\n$5\r\nother\r\n");
    selectKey("c");
    EXPECT_EQ(outlets().labType.stringValue(), "Type: Set");
    tab->selectDatabase(3);
    peer.sent();
  });
  alerts.answerNext(moves);
  EXPECT_EQ(save(), (Texts{"del b", "del new", "rpush new one two"}));
  EXPECT_EQ(outlets().txtKey.stringValue(), "c");
  EXPECT_EQ(texts(outlets().valueDataSetTable, 0), Texts{"other"});
  EXPECT_EQ(keys(), (Texts{"a", "b", "c"}));
}

// The value stays, to be saved under a name.
TEST_F(SavingRequestsTest, ADeleteTakesTheKeyOfTheFormAsItWasAsked) {
  open("hash", hashRows);
  alerts.whileNextIsUp([&] {
    selectKey("c");
    peer.sent();
  });
  clickDelete();
  EXPECT_EQ(alerts.messages(), Texts{"Are you sure to Delete the kev-value with key:'b'?"});
  EXPECT_EQ(peer.sent(), Texts{"del b"});
  EXPECT_EQ(keys(), (Texts{"a", "c"}));
  EXPECT_EQ(outlets().tableKeys.selectedRow(), -1);
  EXPECT_EQ(outlets().txtKey.stringValue() + outlets().labType.stringValue(), "Type: ");
  EXPECT_EQ(outlets().labKeySize.stringValue(), "Key Size: 0byte(s)");
  EXPECT_FALSE(outlets().valueDataStringScrollView.isHidden() || outlets().btnAddRow.isHidden());
  clickDelete();
  EXPECT_EQ(alerts.messages(), Texts{});
  outlets().txtTTL.setStringValue("-1");
  typeInto(outlets().txtKey, "again");
  alerts.answerNext(keepsOld);
  EXPECT_EQ(save(), (Texts{"del again", "hmset again f v g w"}));
  EXPECT_EQ(keys(), (Texts{"a", "again", "c"}));
  EXPECT_EQ(outlets().tableKeys.selectedRow(), 1);
}

TEST_F(SavingRequestsTest, TellsWhatIsMissingOneThingAtATime) {
  openTab(peer.port());
  EXPECT_EQ(refusal(), "To Create a Key-Value Data, you need click 'New' and Choose A Value Type First.");
  tab->newKeyTypeChosen("SortedSet");
  EXPECT_EQ(outlets().labType.stringValue(), "Type: SortedSet (New)");
  EXPECT_EQ(outlets().txtTTL.stringValue() + outlets().txtTTL.toolTip(), "-1(Persist)");
  outlets().txtTTL.setStringValue("");
  EXPECT_EQ(refusal(), "Please Enter the Key.");
  outlets().txtKey.setStringValue("k");
  for (const char* ttl : {"", "-"}) {
    outlets().txtTTL.setStringValue(ttl);
    EXPECT_EQ(refusal(), "Please Enter the TTL.");
  }
  for (const char* ttl : {"0", "-0", "-2", "1.5", "x", "9223372036854775808"}) {
    outlets().txtTTL.setStringValue(ttl);
    EXPECT_EQ(refusal(), "TTL must be -1 or >0. -1 is eternal, >0 is the specified expire time in seconds.") << ttl;
  }
  outlets().txtTTL.setStringValue("9223372036854775807");
  for (const std::string type : {"List", "Set", "Hash", "SortedSet"}) {
    tab->newKeyTypeChosen(type);
    outlets().txtKey.setStringValue("k");
    EXPECT_TRUE(refusal().starts_with(type + " Can Not be Empty."));
  }
  click(*outlets().btnAddRow.widget());
  type("m");
  EXPECT_EQ(refusal(), "All 'SortedSet Value Score' must be set.");
  outlets().sortedSetScoreTextField.becomeFirstResponder();
  type("17");
  outlets().txtTTL.setStringValue("9223372036854775807");
  EXPECT_EQ(save(), (Texts{"del k", "zadd k 17 m", "expire k 9223372036854775807"}));
  EXPECT_EQ(alerts.messages(), Texts{"Saved."});
  EXPECT_EQ(keys(), Texts{"k"});
}

}  // namespace
}  // namespace tarn::test
