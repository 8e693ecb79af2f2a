// What a save and a delete send, in which order, and what they leave behind where a command fails.

#include "tests/workbench/RecordedTab.h"
#include "tests/workbench/TableHands.h"

#include <QTest>

namespace tarn::test {
namespace {

const std::string listRows = "*2\r\n$3\r\none\r\n$3\r\ntwo\r\n";
const std::string setRows = "*2\r\n$1\r\n0\r\n" + listRows;
const std::string pairs = "*4\r\n$1\r\nf\r\n$1\r\nv\r\n$1\r\ng\r\n$1\r\nw\r\n";
const std::string hashRows = "*2\r\n$1\r\n0\r\n" + pairs;
const std::string scoredRows = "*4\r\n$1\r\nm\r\n$3\r\ninf\r\n$1\r\nn\r\n$5\r\n1e+20\r\n";
constexpr int moves = 1000;
constexpr int keepsOld = 1001;
constexpr int cancels = 1002;

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

  Texts keys() { return texts(outlets().tableKeys, 0); }
};

TEST_F(SavingRequestsTest, AStringIsSetWithoutADelete) {
  open("string", "$5\r\nvalue\r\n");
  EXPECT_EQ(save(), (Texts{"persist b", "set b value"}));
  EXPECT_EQ(alerts.messages(), Texts{"Saved."});
  typeInto(outlets().txtTTL, "60");
  EXPECT_EQ(save(), (Texts{"set b value EX 60"}));
  EXPECT_EQ(outlets().labDataSize.stringValue(), "Data Size: 5byte(s)");
}

TEST_F(SavingRequestsTest, RowsAreDeletedAndWrittenInOneCommand) {
  struct Case {
    const char* type;
    std::string value;
    std::string write;
    const char* size;
  };
  const std::vector<Case> cases{{"list", listRows, "rpush b one two", "Data Size: 6byte(s)"},
                                {"set", setRows, "sadd b one two", "Data Size: 6byte(s)"},
                                {"hash", hashRows, "hmset b f v g w", "Data Size: 4byte(s)"},
                                {"zset", scoredRows, "zadd b inf m 1e+20 n", "Data Size: 10byte(s)"}};
  openKeys();
  for (const Case& each : cases) {
    peer.hold(each.type, each.value);
    outlets().tableKeys.deselectAll();
    selectKey("b");
    peer.sent();
    EXPECT_EQ(save(), (Texts{"del b", each.write}));
    EXPECT_EQ(alerts.messages(), Texts{"Saved."});
    EXPECT_EQ(outlets().labDataSize.stringValue(), each.size);
    typeInto(outlets().txtTTL, "60");
    EXPECT_EQ(save(), (Texts{"del b", each.write, "expire b 60"}));
  }
}

TEST_F(SavingRequestsTest, ARenamedKeyStaysGetsABrotherOrMoves) {
  open("list", listRows);
  typeInto(outlets().txtKey, "new");
  alerts.answerNext(cancels);
  EXPECT_EQ(save(), Texts{});
  EXPECT_EQ(alerts.messages(), Texts{"Are you sure to Move old key 'b' to key 'new'?"});
  EXPECT_EQ(alerts.shown().front().buttons, (Texts{"Sure To Move", "Not Move But New", "Cancel"}));
  EXPECT_EQ(outlets().txtKey.stringValue(), "new");

  alerts.answerNext(keepsOld);
  EXPECT_EQ(save(), (Texts{"del new", "rpush new one two"}));
  EXPECT_EQ(alerts.messages().back(), "Saved.");
  EXPECT_EQ(keys(), (Texts{"a", "new", "b", "c"}));

  // The form's old key is the one that was loaded.
  typeInto(outlets().txtKey, "moved");
  alerts.answerNext(moves);
  EXPECT_EQ(save(), (Texts{"del b", "del moved", "rpush moved one two"}));
  EXPECT_EQ(keys(), (Texts{"a", "new", "moved", "c"}));
  EXPECT_EQ(outlets().tableKeys.selectedRow(), 2);
}

TEST_F(SavingRequestsTest, ANewKeyIsWrittenUnaskedAndReadBack) {
  open("list", listRows);
  tab->newKeyTypeChosen("String");
  EXPECT_EQ(outlets().labType.stringValue(), "Type: String (New)");
  EXPECT_EQ(outlets().txtTTL.stringValue(), "-1");
  EXPECT_EQ(outlets().tableKeys.selectedRow(), -1);
  EXPECT_FALSE(outlets().chkTranslate.state());
  typeInto(outlets().txtKey, "new");
  outlets().valueDataStringTxtView.becomeFirstResponder();
  type("v");
  peer.hold("string", "$1\r\nv\r\n");
  Texts sent = save();
  EXPECT_EQ(Texts(sent.begin(), sent.begin() + 2), (Texts{"persist new", "set new v"}));
  EXPECT_EQ(alerts.messages(), Texts{"Saved."});
  EXPECT_EQ(keys().front(), "new");
  EXPECT_EQ(outlets().tableKeys.selectedRow(), 0);
  EXPECT_EQ(outlets().labType.stringValue(), "Type: String");
  EXPECT_EQ(save(), (Texts{"persist new", "set new v"}));
  EXPECT_EQ(alerts.messages(), Texts{"Saved."});
}

TEST_F(SavingRequestsTest, EndsAtTheFirstCommandThatFails) {
  open("list", listRows);
  typeInto(outlets().txtTTL, "60");
  const std::vector<std::pair<const char*, Texts>> cases{{"del", {"del b"}},
                                                         {"rpush", {"del b", "rpush b one two"}},
                                                         {"expire", {"del b", "rpush b one two", "expire b 60"}}};
  for (const auto& [command, sent] : cases) {
    peer.refuse(command);
    EXPECT_EQ(save(), sent);
    EXPECT_EQ(alerts.shown().size(), 1U);
    EXPECT_EQ(texts(outlets().valueDataSetTable, 0), (Texts{"one", "two"}));
    peer.allow();
  }
  EXPECT_EQ(save(), (Texts{"del b", "rpush b one two", "expire b 60"}));
  EXPECT_EQ(alerts.messages(), Texts{"Saved."});

  peer.refuse("del");
  alerts.clear();
  click(*outlets().btnDelete.widget());
  waitUntilIdle();
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

TEST_F(SavingRequestsTest, SelectsTheDatabaseThatTheTabShows) {
  open("list", listRows);
  tab->selectDatabase(2);
  EXPECT_EQ(save(), (Texts{"select 2", "del b", "rpush b one two"}));
  EXPECT_EQ(save(), (Texts{"del b", "rpush b one two"}));
  tab->selectDatabase(3);
  peer.refuse("select");
  EXPECT_EQ(save(), Texts{"select 3"});
  EXPECT_EQ(alerts.shown().size(), 1U);
  click(*outlets().btnDelete.widget());
  waitUntilIdle();
  EXPECT_EQ(peer.sent(), Texts{"select 3"});
}

// Each time the connection ends with the command, and a new one goes on where the tab is.
TEST_F(SavingRequestsTest, AConnectionLostAtAnyStepLeavesTheFormToSaveAgain) {
  open("hash", hashRows);
  tab->selectDatabase(1);
  typeInto(outlets().txtTTL, "60");
  for (const char* step : {"select", "del", "hmset", "expire"}) {
    peer.closeAt(step);
    save();
    EXPECT_EQ(alerts.shown().size(), 1U) << step;
    EXPECT_EQ(texts(outlets().valueDataHashTable, 1), (Texts{"v", "w"}));
    EXPECT_EQ(outlets().txtKey.stringValue(), "b");
    peer.allow();
    ASSERT_TRUE(server->connectToServer().ok);
    EXPECT_EQ(save(), (Texts{"select 1", "del b", "hmset b f v g w", "expire b 60"})) << step;
    EXPECT_EQ(alerts.messages(), Texts{"Saved."});
    server->closeConnection();
    ASSERT_TRUE(server->connectToServer().ok);
  }
}

TEST_F(SavingRequestsTest, WhatArrivesBehindAQuestionChangesNothingOfWhatIsWritten) {
  open("list", listRows);
  typeInto(outlets().txtKey, "new");
  alerts.whileNextIsUp([&] {
    peer.hold("set", "*2\r\n$1\r\n0\r\n*1\r\n$5\r\nother\r\n");
    outlets().tableKeys.selectRow(2);
    waitUntil([&] { return outlets().labType.stringValue() == "Type: Set"; });
    waitUntil([&] { return outlets().txtKey.stringValue() == "c"; });
    waitUntilIdle();
    tab->selectDatabase(3);
    peer.sent();
  });
  alerts.answerNext(moves);
  EXPECT_EQ(save(), (Texts{"del b", "del new", "rpush new one two"}));
  EXPECT_EQ(outlets().txtKey.stringValue(), "c");
  EXPECT_EQ(texts(outlets().valueDataSetTable, 0), Texts{"other"});
  EXPECT_EQ(keys(), (Texts{"a", "b", "c"}));
}

TEST_F(SavingRequestsTest, ADeleteTakesTheKeyOfTheFormAsItWasAsked) {
  open("hash", hashRows);
  alerts.answerNext(1001);
  click(*outlets().btnDelete.widget());
  waitUntilIdle();
  EXPECT_EQ(peer.sent(), Texts{});
  alerts.clear();

  alerts.whileNextIsUp([&] {
    outlets().tableKeys.selectRow(2);
    waitUntil([&] { return outlets().txtKey.stringValue() == "c"; });
    waitUntilIdle();
    peer.sent();
  });
  click(*outlets().btnDelete.widget());
  waitUntilIdle();
  EXPECT_EQ(alerts.messages(), Texts{"Are you sure to Delete the kev-value with key:'b'?"});
  EXPECT_EQ(alerts.shown().front().buttons, (Texts{"Confirm", "Cancel"}));
  EXPECT_EQ(peer.sent(), Texts{"del b"});
  EXPECT_EQ(keys(), (Texts{"a", "c"}));
  EXPECT_EQ(outlets().tableKeys.selectedRow(), -1);
  EXPECT_EQ(outlets().txtKey.stringValue(), "");
  EXPECT_EQ(outlets().labType.stringValue(), "Type: ");
  EXPECT_EQ(outlets().labKeySize.stringValue(), "Key Size: 0byte(s)");
  EXPECT_FALSE(outlets().valueDataStringScrollView.isHidden());

  // Without a key there is nothing to ask; the rows are still there to be saved under a name.
  click(*outlets().btnDelete.widget());
  EXPECT_EQ(alerts.shown().size(), 1U);
  outlets().txtTTL.setStringValue("-1");
  typeInto(outlets().txtKey, "again");
  alerts.answerNext(keepsOld);
  EXPECT_EQ(save(), (Texts{"del again", "hmset again f v g w"}));
}

TEST_F(SavingRequestsTest, TellsWhatIsMissingOneThingAtATime) {
  openTab(peer.port());
  const auto refusal = [&] {
    EXPECT_EQ(save(), Texts{});
    return alerts.shown().size() == 1 ? alerts.messages().front() : std::string();
  };
  EXPECT_EQ(refusal(), "To Create a Key-Value Data, you need click 'New' and Choose A Value Type First.");
  tab->newKeyTypeChosen("SortedSet");
  struct Case {
    NSTextField& field;
    const char* text;
    const char* told;
  };
  for (const auto& [field, text, told] :
       {Case{outlets().txtTTL, "", "Please Enter the Key."}, Case{outlets().txtKey, "k", "Please Enter the TTL."},
        Case{outlets().txtTTL, "-0",
             "TTL must be -1 or >0. -1 is eternal, >0 is the specified expire time in seconds."},
        Case{outlets().txtTTL, "5",
             "SortedSet Can Not be Empty. If you want to remove this sortedSet click 'Delete'."}}) {
    field.setStringValue(text);
    EXPECT_EQ(refusal(), told);
  }
  click(*outlets().btnAddRow.widget());
  type("m");
  EXPECT_EQ(refusal(), "All 'SortedSet Value Score' must be set.");
  outlets().sortedSetScoreTextField.becomeFirstResponder();
  type("17");
  EXPECT_EQ(save().front(), "del k");
  EXPECT_EQ(alerts.messages(), Texts{"Saved."});
}

}  // namespace
}  // namespace tarn::test
