// What a save and a delete send, in which order, and what they leave behind where a command fails.

#include "tests/workbench/TabFixture.h"

#include <QTest>

namespace tarn::test {
namespace {

const std::string listRows = "*2\r\n$3\r\none\r\n$3\r\ntwo\r\n";
const std::string setRows = "*2\r\n$1\r\n0\r\n" + listRows;
const std::string hashRows = "*2\r\n$1\r\n0\r\n*4\r\n$1\r\nf\r\n$1\r\nv\r\n$1\r\ng\r\n$1\r\nw\r\n";
const std::string scoredRows = "*4\r\n$1\r\nm\r\n$3\r\ninf\r\n$1\r\nn\r\n$5\r\n1e+20\r\n";
constexpr int keepsOld = 1001;

class SavingRequestsTest : public RecordedTab {
protected:
  // What the click sends by itself; when it has ended, and shows what it has to show.
  Texts clickOn(const NSButton& button) {
    alerts.clear();
    peer.sent();
    QTest::mouseClick(button.widget(), Qt::LeftButton);
    Texts sent = peer.sent();
    waitUntilIdle();
    return sent;
  }
  Texts save() { return clickOn(outlets().btnSave); }
  std::string head() {
    const OperationTabLayout& shown = outlets();
    return shown.txtKey.stringValue() + ' ' + shown.labType.stringValue() + ' ' + shown.labKeySize.stringValue() + ' ' +
           shown.labDataSize.stringValue();
  }
  // All that it sends.
  Texts clickDelete() {
    Texts sent = clickOn(outlets().btnDelete);
    std::ranges::copy(peer.sent(), std::back_inserter(sent));
    return sent;
  }
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
    selectKey("b");
    EXPECT_EQ(save(), forEver);
    EXPECT_EQ(outlets().labType.stringValue(), "Type: " + outlets().popType.titleOfSelectedItem());
    EXPECT_EQ(alerts.messages(), Texts{"Saved."});
    EXPECT_EQ(outlets().labDataSize.stringValue(), size);
    typeInto(outlets().txtTTL, "60");
    EXPECT_EQ(save(), forAMinute);
  }
}

// Refused, or cut off with the connection, on which a new one goes on where the tab is.
// Refused, or cut off with the connection, on which a new one goes on where the tab is.
TEST_F(SavingRequestsTest, EndsAtTheFirstCommandThatFailsAndLeavesTheFormToSaveAgain) {
  open("hash", hashRows);
  typeInto(outlets().txtTTL, "60");
  const auto connectAgain = [&] {
    peer.allow();
    server->closeConnection();
    ASSERT_TRUE(server->connectToServer().ok);
    tab->selectDatabase(1);
  };
  const Texts all{"select 1", "del b", "hmset b f v g w", "expire b 60"};
  for (const std::string& step : all) {
    for (const char* reply : {"-ERR refused\r\n", ""}) {
      SCOPED_TRACE(step + reply);
      connectAgain();
      peer.reply(step.substr(0, step.find(' ')), reply);
      const Texts sent = save();
      EXPECT_TRUE(*reply == '\0' || sent.back() == step);
      EXPECT_EQ(alerts.shown().size(), 1U);
      EXPECT_EQ(texts(outlets().valueDataHashTable, 1), (Texts{"v", "w"}));
      EXPECT_EQ(outlets().txtKey.stringValue(), "b");
      connectAgain();
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
  EXPECT_EQ(clickDelete(), Texts{"select 3"});
  EXPECT_EQ(alerts.shown().size(), 2U);
  tab->selectDatabase(0);
  peer.refuse("del");
  EXPECT_EQ(clickDelete(), Texts{"del b"});
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
  EXPECT_EQ(save(), (Texts{"del b", "del new", "rpush new one two"}));
  EXPECT_EQ(head(), "c Type: List Key Size: 3byte(s) Data Size: 6byte(s)");
  EXPECT_EQ(texts(outlets().valueDataSetTable), Texts{"other"});
  EXPECT_EQ(keys(), (Texts{"a", "b", "c"}));
}

// The value stays, to be saved under a name.
TEST_F(SavingRequestsTest, ADeleteTakesTheKeyOfTheFormAsItWasAsked) {
  open("hash", hashRows);
  alerts.whileNextIsUp([&] {
    selectKey("c");
    peer.sent();
  });
  EXPECT_EQ(clickDelete(), Texts{"del b"});
  EXPECT_EQ(alerts.messages(), Texts{"Are you sure to Delete the kev-value with key:'b'?"});
  EXPECT_EQ(keys(), (Texts{"a", "c"}));
  EXPECT_EQ(outlets().tableKeys.selectedRow(), -1);
  EXPECT_EQ(head(), " Type:  Key Size: 0byte(s) Data Size: 0byte(s)");
  EXPECT_FALSE(outlets().valueDataStringScrollView.isHidden() || outlets().btnAddRow.isHidden());
  EXPECT_EQ(clickDelete(), Texts{});
  EXPECT_EQ(alerts.messages(), Texts{});
  outlets().txtTTL.setStringValue("-1");
  typeInto(outlets().txtKey, "again");
  alerts.answerNext(keepsOld);
  EXPECT_EQ(save(), (Texts{"del again", "hmset again f v g w"}));
  EXPECT_EQ(keys(), (Texts{"a", "again", "c"}));
  EXPECT_EQ(outlets().tableKeys.selectedRow(), 1);
}

TEST_F(SavingRequestsTest, TellsWhatIsMissingOneThingAtATime) {
  const std::string noTtl = "Please Enter the TTL.";
  const std::string badTtl = "TTL must be -1 or >0. -1 is eternal, >0 is the specified expire time in seconds.";
  openKeys();
  save();
  EXPECT_EQ(alerts.messages(),
            Texts{"To Create a Key-Value Data, you need click 'New' and Choose A Value Type First."});
  tab->newKeyTypeChosen("String");
  EXPECT_EQ(outlets().labType.stringValue(), "Type: String (New)");
  EXPECT_EQ(outlets().txtTTL.stringValue() + outlets().txtTTL.toolTip(), "-1(Persist)");
  // clang-format off
  // Key, TTL; the alert.
  const std::vector<std::array<std::string, 3>> cases{
      {"", "", "Please Enter the Key."}, {"k", "", noTtl}, {"k", "-", noTtl}, {"k", "0", badTtl}, {"k", "-0", badTtl}, {"k", "-2", badTtl},
      {"k", "1.5", badTtl}, {"k", "x", badTtl}, {"k", "9223372036854775808", badTtl}};
  // clang-format on
  for (const auto& [key, ttl, alert] : cases) {
    outlets().txtKey.setStringValue(key);
    outlets().txtTTL.setStringValue(ttl);
    EXPECT_EQ(save(), Texts{});
    EXPECT_EQ(alerts.messages(), Texts{alert}) << ttl;
  }
  outlets().txtTTL.setStringValue("9223372036854775807");
  EXPECT_EQ(save(), Texts{"set k  EX 9223372036854775807"});
  EXPECT_EQ(keys(), (Texts{"k", "a", "b", "c"}));
}

}  // namespace
}  // namespace tarn::test
