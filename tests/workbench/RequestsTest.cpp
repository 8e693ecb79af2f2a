// What a load, a save and a delete send, in which order, and what they leave behind where something fails.

#include "tests/support/ScriptedServer.h"
#include "tests/workbench/TabFixture.h"

#include <QAbstractEventDispatcher>
#include <QTimerEvent>

#include <map>
#include <mutex>
#include <set>
#include <utility>

namespace tarn::test {
namespace {

// A server of four databases that takes everything, also in transactions, lists the keys "a", "b" and "c", which are
// strings of their names or of one type and value, and remembers each request of a tab's own as one line of words.
class RecordingServer final {
public:
  int port() const { return peer_.port(); }

  // What TYPE says of the keys that there are, and the reply to the command that reads its value.
  void hold(const std::string& type, const std::string& value) {
    const std::lock_guard lock(mutex_);
    usual_["type"] = "+" + type + "\r\n";
    for (const char* reader : {"get", "lrange", "sscan", "hscan", "zrange"})
      usual_[reader] = value;
  }

  // To each command of this name, until all is allowed again; an empty reply is the end of the connection.
  void reply(const std::string& command, const std::string& reply) {
    const std::lock_guard lock(mutex_);
    special_[command] = reply;
  }
  void allow() {
    const std::lock_guard lock(mutex_);
    special_.clear();
    keys_ = {"a", "b", "c"};
  }

  // All since the last call.
  Texts sent() {
    const std::lock_guard lock(mutex_);
    return std::exchange(sent_, {});
  }

  // No scan is answered while a test holds it.
  std::mutex scans;

private:
  // What a connection has queued since MULTI.
  struct Transaction {
    bool isOpen = false;
    bool isRefused = false;
    std::string replies;
    int count = 0;
  };

  std::string take(const Texts& words, Transaction& transaction) {
    const std::lock_guard lock(mutex_);
    const std::string& command = words.front();
    if (!std::set<std::string>{"info", "cluster", "config"}.contains(command)) sent_.push_back(joined(words, " "));
    const std::string reply = replyTo(words);
    if (reply.empty() || !transaction.isOpen) {
      transaction.isOpen = command == "multi" && reply.starts_with('+');
      return reply;
    }
    if (command == "exec") {
      const Transaction ended = std::exchange(transaction, {});
      if (!special_.contains(command) && ended.isRefused) return "-EXECABORT discarded\r\n";
      return special_.contains(command) ? reply : "*" + std::to_string(ended.count) + "\r\n" + ended.replies;
    }
    transaction.isRefused = transaction.isRefused || reply.starts_with('-');
    transaction.replies += reply;
    ++transaction.count;
    return reply.starts_with('-') ? reply : "+QUEUED\r\n";
  }

  std::string replyTo(const Texts& words) {
    const std::string& command = words.front();
    if (special_.contains(command)) return special_.at(command);
    if (std::set<std::string>{"set", "rpush", "sadd", "hmset", "zadd"}.contains(command)) keys_.insert(words.at(1));
    if (command == "type" && !keys_.contains(words.at(1))) return "+none\r\n";
    if (usual_.contains(command)) return usual_.at(command);
    return command == "get" ? "$1\r\n" + words.at(1) + "\r\n" : "+OK\r\n";
  }

  void serve(ScriptedServer::Peer& at) {
    Transaction transaction;
    for (Texts words = at.readRequest(); !words.empty(); words = at.readRequest()) {
      const std::string reply = take(words, transaction);
      if (reply.empty()) return;
      if (words.front() == "scan") const std::lock_guard wait(scans);
      at.send(reply);
    }
  }

  std::mutex mutex_;
  std::map<std::string, std::string> special_;
  std::map<std::string, std::string> usual_{{"config", "*2\r\n$9\r\ndatabases\r\n$1\r\n4\r\n"},
                                            {"cluster", "-ERR This instance has cluster support disabled\r\n"},
                                            {"scan", "*2\r\n$1\r\n0\r\n*3\r\n$1\r\na\r\n$1\r\nb\r\n$1\r\nc\r\n"},
                                            {"type", "+string\r\n"},
                                            {"ttl", ":-1\r\n"}};
  std::set<std::string> keys_{"a", "b", "c"};
  Texts sent_;
  ScriptedServer peer_{[this](ScriptedServer::Peer& at, int) { serve(at); }};
};

class RequestsTest : public TabFixture {
protected:
  RequestsTest() {
    openTab(peer.port());
    peer.sent();
  }

  // Steps with "; " between them: a word, and what it is done to. "behind" runs its own, which end in ",", while the
  // next alert is up. Returns what was sent since the last "open", and the alerts.
  std::string run(const std::string& script, const std::string& separator = "; ") {
    forEachStep(script, separator, [this](const std::string& word, const std::string& rest) {
      take(word, rest);
      waitUntilIdle();
    });
    if (separator == ",") return {};
    Texts log = peer.sent();
    for (const AlertRecorder::Shown& alert : alerts.shown())
      log.push_back("!" + alert.message + (alert.informative.empty() ? "" : " " + alert.informative));
    alerts.clear();
    return joined(log);
  }

  std::string form() {
    OperationTabLayout& at = outlets();
    std::string shown = at.labType.stringValue() + ' ' + at.txtKey.stringValue() + ' ' + at.txtTTL.stringValue() +
                        at.txtTTL.toolTip() + ' ' + at.labKeySize.stringValue() + ' ' + at.labDataSize.stringValue();
    for (auto* const table : {&at.valueDataSetTable, &at.valueDataHashTable, &at.valueDataSortedSetTable})
      if (table->widget()->isVisible()) shown += ' ' + joined(texts(*table, table->numberOfColumns() - 1));
    return shown;
  }
  // The list, with a "*" before the selected key.
  std::string list() {
    Texts shown = keys();
    if (const int row = outlets().tableKeys.selectedRow(); row >= 0) shown.at(static_cast<std::size_t>(row)) += '*';
    return joined(shown, " ");
  }

  RecordingServer peer;

private:
  void take(const std::string& word, const std::string& rest) {
    const std::string two = "*2\r\n$3\r\none\r\n$3\r\ntwo\r\n";
    const std::string scanned = "*2\r\n$1\r\n0\r\n";
    // clang-format off
    const std::map<std::string, std::string> values{
        {"string", "$5\r\nvalue\r\n"}, {"list", two}, {"set", scanned + "*2\r\n$3\r\nsix\r\n$3\r\nten\r\n"}, {"none", ""},
        {"hash", scanned + "*4\r\n$1\r\nf\r\n$1\r\nv\r\n$1\r\ng\r\n$1\r\nw\r\n"},
        {"zset", "*4\r\n$1\r\nm\r\n$3\r\ninf\r\n$1\r\nn\r\n$5\r\n1e+20\r\n"}};
    // clang-format on
    if (word == "hold") peer.hold(rest, values.at(rest));
    if (word == "reply") peer.reply(rest.substr(0, rest.find(' ')), rest.substr(rest.find(' ') + 1) + "\r\n");
    if (word == "allow" || word == "connect") peer.allow();
    if (word == "key" || word == "open") selectKey(rest);
    if (word == "open") peer.sent();
    if (word == "db") tab->selectDatabase(std::stoi(rest));
    if (word == "search") search(rest);
    if (word == "whole") outlets().chkExactly.setState(rest == "on");
    if (word == "name") typeInto(outlets().txtKey, rest);
    if (word == "ttl") typeInto(outlets().txtTTL, rest);
    if (word == "new") tab->newKeyTypeChosen(*valueTypeOfTitle(rest));
    if (word == "answer") alerts.answerNext(std::stoi(rest));
    if (word == "behind") alerts.whileNextIsUp([this, rest] { run(rest, ","); });
    if (word == "save") click(outlets().btnSave);
    if (word == "delete") click(outlets().btnDelete);
    if (word == "connect") server->closeConnection();
    if (word == "connect") server->connectToServer();
  }
};

TEST_F(RequestsTest, FollowEachOtherAsTheyShouldAndLeaveTheFormAsItShouldBe) {
  // Every save under another name asks, every delete too.
  const std::string moves = "!Are you sure to Move old key 'b' to key 'new'?";
  const std::string deletes = "!Are you sure to Delete the kev-value with key:'b'?";
  const std::string unchanged = " Nothing was changed on the server.";
  // clang-format off
  // Steps; what is sent, and the alerts; the form and the keys then.
  const std::vector<std::array<std::string, 4>> cases{
      // Saves.
      {"hold string; open b; save; ttl 60; save", "multi|persist b|set b value|exec|multi|set b value EX 60|exec|!Saved.|!Saved.", "Type: String b 60Second(s) Key Size: 1byte(s) Data Size: 5byte(s)", "a b* c"},
      {"hold list; open b; save; ttl 60; save", "multi|del b|rpush b one two|exec|multi|del b|rpush b one two|expire b 60|exec|!Saved.|!Saved.", "Type: List b 60Second(s) Key Size: 1byte(s) Data Size: 6byte(s) one|two", "a b* c"},
      {"hold set; open b; save; ttl 60; save", "multi|del b|sadd b six ten|exec|multi|del b|sadd b six ten|expire b 60|exec|!Saved.|!Saved.", "Type: Set b 60Second(s) Key Size: 1byte(s) Data Size: 6byte(s) six|ten", "a b* c"},
      {"hold hash; open b; save; ttl 60; save", "multi|del b|hmset b f v g w|exec|multi|del b|hmset b f v g w|expire b 60|exec|!Saved.|!Saved.", "Type: Hash b 60Second(s) Key Size: 1byte(s) Data Size: 4byte(s) v|w", "a b* c"},
      {"hold zset; open b; save; ttl 60; save", "multi|del b|zadd b inf m 1e+20 n|exec|multi|del b|zadd b inf m 1e+20 n|expire b 60|exec|!Saved.|!Saved.", "Type: SortedSet b 60Second(s) Key Size: 1byte(s) Data Size: 10byte(s) inf|1e+20", "a b* c"},
      // Moves and deletes, which keep what is still there.
      {"hold list; open b; db 3; reply select -ERR no; delete", "select 3|" + deletes + "|!ERR no", "Type: List b -1(Persist) Key Size: 1byte(s) Data Size: 6byte(s) Data Count:2 one|two", "a b* c"},
      {"hold list; open b; reply del -ERR no; delete; name new; save", "del b|type new|multi|del b|del new|rpush new one two|exec|" + deletes + "|!ERR no|" + moves + "|!ERR no" + unchanged, "Type: List new -1(Persist) Key Size: 1byte(s) Data Size: 6byte(s) Data Count:2 one|two", "a b* c"},
      {"hold list; open b; reply rpush -ERR no; name new; save", "type new|multi|del b|del new|rpush new one two|exec|" + moves + "|!ERR no" + unchanged, "Type: List new -1(Persist) Key Size: 1byte(s) Data Size: 6byte(s) Data Count:2 one|two", "a b* c"},
      // Behind a question another value comes, which is not what is written; it stays where a key goes, and is saved.
      {"hold list; open b; name new; behind hold set,open c,db 3; save", "type new|multi|del b|del new|rpush new one two|exec|" + moves + "|!Saved.", "Type: List c -1(Persist) Key Size: 3byte(s) Data Size: 6byte(s) six|ten", "a b c*"},
      {"hold hash; open b; delete; ttl -1; name b; save", "del b|multi|del b|hmset b f v g w|exec|type b|ttl b|hscan b 0 COUNT 1000|" + deletes + "|!Saved.", "Type: Hash b -1(Persist) Key Size: 1byte(s) Data Size: 4byte(s) Data Count:2 v|w", "a c b*"},
      {"hold hash; open b; behind open c; delete; delete", "del b|" + deletes, "Type:   (Persist) Key Size: 0byte(s) Data Size: 0byte(s)", "a c"},
      {"hold hash; open b; behind open c; delete; ttl -1; name again; answer 1001; save", "del b|type again|multi|del again|hmset again f v g w|exec|type again|ttl again|hscan again 0 COUNT 1000|" + deletes + "|!Are you sure to Move old key 'c' to key 'again'?|!Saved.", "Type: Hash again -1(Persist) Key Size: 5byte(s) Data Size: 4byte(s) Data Count:2 v|w", "a again* c"},
      // Loads.
      {"hold string; db 2; search; search; key b; db 3; reply select -ERR no; key a", "select 2|scan 0 MATCH * COUNT 1000|scan 0 MATCH * COUNT 1000|type b|ttl b|get b|select 3|!ERR no", "Type:   Key Size: Data Size:", "a* b c"},
      {"whole on; search; search \\B!; whole off", "!Can not decode base64 part of the Search Key '\\B!'", "Type: String a -1(Persist) Key Size: 1byte(s) Data Size: 5byte(s)", ""},
      {"hold hash; reply ttl :-2; key b", "type b|ttl b|hscan b 0 COUNT 1000", "Type: Hash b -2(Deleted) Key Size: 1byte(s) Data Size: 4byte(s) Data Count:2 v|w", "a b* c"},
      {"hold hash; reply ttl -ERR no; key b", "type b|ttl b|!ERR no", "Type:  (DisConnected) Key Size: Data Size:", "a b* c"},
      {"hold hash; reply type -ERR no; key b", "type b|!ERR no", "Type:  (DisConnected) Key Size: Data Size:", "a b* c"},
      {"hold string; reply get -ERR no; key b", "type b|ttl b|get b|!ERR no", "Type: String b -1(Persist) Key Size: 1byte(s) Data Size: ", "a b* c"},
      {"hold zset; reply zrange *4\r\n$1\r\na\r\n$1\r\n1\r\n$1\r\nb\r\n$1\r\n\xFF; key b", "type b|ttl b|zrange b 0 -1 withscores|!The return of 'zrange' is not correct(2199)", "Type: SortedSet b -1(Persist) Key Size: 1byte(s) Data Size: ", "a b* c"},
      {"hold none; key b", "type b|!No Data found on the Server for the key 'b'.", "Type:none (Unsupported Type)   Key Size: Data Size:", "a b* c"}};
  // clang-format on
  for (const auto& [script, log, shown, list] : cases) {
    SCOPED_TRACE(script);
    run("allow; db 0; search; open a");
    EXPECT_EQ(run(script), log);
    EXPECT_EQ(form(), shown);
    EXPECT_EQ(this->list(), list);
  }
  // The last one is of no type.
  EXPECT_TRUE(outlets().btnAddRow.isHidden() && outlets().btnDeleteSelectedRows.isHidden());
}

// Refused, or cut off with the connection, on which a new one goes on where the tab is.
TEST_F(RequestsTest, OfASaveAreTakenWholeOrNotAtAllAndTheFormStaysToBeSavedAgain) {
  run("hold hash; open b; save; ttl 60; save");
  const std::string shown = form();
  const std::string all = "select 1|multi|del b|hmset b f v g w|expire b 60|exec";
  const std::string plain = "select 1|multi|del b|hmset b f v g w|expire b 60";
  const std::string unchanged = " Nothing was changed on the server.";
  const std::string gone = " The key is no longer on the server. This form still holds its value: save again.";
  const std::string noTtl = " The value is on the server, but without its time to live: save again.";
  const std::string refused = "-ERR refused\r\n";
  const std::string lost = "!Can not connect to server";
  const auto upTo = [](const std::string& log, const std::string& step) {
    return log.substr(0, log.find(step) + step.size()) + "|";
  };
  // clang-format off
  // The commands of which each is refused, or where there is none cut off with the connection; what is sent, and told.
  const std::vector<std::tuple<Texts, std::string, std::string>> cases{
      {{"select"}, refused, "select 1|!ERR refused"}, {{"select"}, "", "select 1|" + lost},
      {{"multi"}, "", upTo(all, "multi") + lost + unchanged}, {{"del"}, refused, all + "|!ERR refused" + unchanged},
      {{"hmset"}, refused, all + "|!ERR refused" + unchanged}, {{"expire"}, refused, all + "|!ERR refused" + unchanged},
      {{"exec"}, refused, all + "|!ERR refused" + unchanged},
      {{"multi"}, refused, plain + "|!Saved."}, {{"multi", "del"}, refused, upTo(plain, "del b") + "!ERR refused" + unchanged},
      {{"multi", "hmset"}, refused, upTo(plain, "g w") + "!ERR refused" + gone},
      {{"multi", "expire"}, refused, plain + "|!ERR refused" + noTtl}};
  // clang-format on
  for (const auto& [commands, reply, log] : cases) {
    SCOPED_TRACE(joined(commands) + reply);
    run("connect; db 1");
    for (const std::string& command : commands)
      peer.reply(command, reply);
    EXPECT_EQ(run("save"), log);
    EXPECT_EQ(form(), shown);
    EXPECT_EQ(run("connect; db 1; save; save"), all + all.substr(all.find('|')) + "|!Saved.|!Saved.");
  }
}

TEST_F(RequestsTest, OfASaveAreNoneWhileSomethingIsMissing) {
  EXPECT_EQ(run("save"), "!To Create a Key-Value Data, you need click 'New' and Choose A Value Type First.");
  run("new String");
  EXPECT_EQ(form(), "Type: String (New)  -1(Persist) Key Size: Data Size:");
  const std::string bad = "!TTL must be -1 or >0. -1 is eternal, >0 is the specified expire time in seconds.";
  outlets().txtTTL.setStringValue("");
  EXPECT_EQ(run("save; name k; save"), "!Please Enter the Key.|!Please Enter the TTL.");
  for (const char* ttl : {"-", "0", "-0", "-2", "1.5", "x", "9223372036854775808"}) {
    outlets().txtTTL.setStringValue(ttl);
    EXPECT_EQ(run("save"), ttl == std::string("-") ? "!Please Enter the TTL." : bad) << ttl;
  }
  outlets().chkTranslate.setState(true);
  EXPECT_EQ(run("ttl 9223372036854775807; name \\B; save; name k; save"),
            "type k|multi|set k  EX 9223372036854775807|exec|type k|ttl k|get k|!Please Enter the Key.|!Saved.");
  EXPECT_EQ(list(), "k* a b c");
}

TEST_F(RequestsTest, ListNoKeysOfADatabaseThatWasLeft) {
  EXPECT_EQ(keys().size(), 3U);
  std::unique_lock hold(peer.scans);
  tab->search();
  ASSERT_TRUE(waitUntil([&] { return peer.sent().size() == 1; }));
  peer.reply("select", "-ERR no\r\n");
  choose(outlets().popDatabase, "db1");
  hold.unlock();
  waitUntilIdle();
  EXPECT_EQ(peer.sent(), Texts{"select 1"});
  EXPECT_EQ(keys(), Texts{});
}

TEST_F(RequestsTest, MoveTheActivityBarFrom300MillisecondsOnUntilTheWorkEndsOrIsCancelled) {
  QWidget& bar = *outlets().activityBar.widget();
  const auto timers = [&] { return QAbstractEventDispatcher::instance()->registeredTimers(&bar); };
  ASSERT_TRUE(waitUntil([&] { return timers().isEmpty(); }));
  const QImage empty = bar.grab().toImage();
  for (const bool isCancelled : {false, true}) {
    std::unique_lock hold(peer.scans);
    // Two run at once, the third waits.
    for (int i = 0; i < 3; ++i)
      tab->search();
    ASSERT_EQ(timers().size(), 1);
    EXPECT_EQ(timers().front().interval, 300);
    EXPECT_EQ(bar.grab().toImage(), empty);
    QTimerEvent timeIsOver(timers().front().timerId);
    QCoreApplication::sendEvent(&bar, &timeIsOver);
    EXPECT_NE(bar.grab().toImage(), empty);
    if (isCancelled) server->closeConnection();
    hold.unlock();
    EXPECT_TRUE(waitUntil([&] { return timers().isEmpty(); }));
    EXPECT_EQ(bar.grab().toImage(), empty);
  }
}

TEST_F(RequestsTest, OfAnOlderLoadRunOnButFillNothing) {
  outlets().tableKeys.selectRow(0);
  outlets().tableKeys.selectRow(1);
  waitUntilIdle();
  EXPECT_EQ(outlets().txtKey.stringValue() + outlets().valueDataStringTxtView.string(), "bb");
  Texts requests = peer.sent();
  std::sort(requests.begin(), requests.end());
  EXPECT_EQ(requests, (Texts{"get a", "get b", "ttl a", "ttl b", "type a", "type b"}));
  outlets().tableKeys.selectRow(0);
  tab->resetWorkbenchView();
  waitUntilIdle();
  choose(outlets().popValueDataCharset, "Base64");
  EXPECT_EQ(outlets().txtKey.stringValue() + outlets().valueDataStringTxtView.string(), "");
}

}  // namespace
}  // namespace tarn::test
