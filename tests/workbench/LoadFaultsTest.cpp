#include <algorithm>
#include <cctype>
#include <map>

#include "tests/support/ScriptedServer.h"
#include "tests/workbench/TabFixture.h"

namespace tarn::test {
namespace {

using Texts = std::vector<std::string>;

// A server that holds one key, "k", and says about it what the test tells it to.
class LoadFaultsTest : public TabFixture {
protected:
  ~LoadFaultsTest() override {
    server->closeConnection();
    tab.reset();
    settle();
  }

  void load(std::map<std::string, std::string> about) {
    replies.merge(about);
    openTab(peer.port());
    search("");
    selectKey("k");
  }

  void serve(ScriptedServer::Peer& at) const {
    for (Texts words = at.readRequest(); !words.empty(); words = at.readRequest()) {
      std::string command = words.front();
      std::ranges::transform(command, command.begin(), [](unsigned char c) { return std::toupper(c); });
      const auto reply = replies.find(command);
      at.send(reply == replies.end() ? "-ERR no\r\n" : reply->second);
    }
  }

  // Set before the first request.
  std::map<std::string, std::string> replies{
      {"CONFIG", "*2\r\n$9\r\ndatabases\r\n$1\r\n4\r\n"},
      {"SELECT", "+OK\r\n"},
      {"SCAN", "*2\r\n$1\r\n0\r\n*1\r\n$1\r\nk\r\n"},
      {"INFO", "$0\r\n\r\n"},
      {"CLUSTER", "-ERR This instance has cluster support disabled\r\n"},
  };
  ScriptedServer peer{[this](ScriptedServer::Peer& at, int) { serve(at); }};
};

TEST_F(LoadFaultsTest, AKeyThatGoesBehindItsTypeIsShownAsDeleted) {
  load({{"TYPE", "+hash\r\n"}, {"TTL", ":-2\r\n"}, {"HSCAN", "*2\r\n$1\r\n0\r\n*0\r\n"}});
  EXPECT_EQ(outlets().txtTTL.stringValue(), "-2");
  EXPECT_EQ(outlets().txtTTL.toolTip(), "(Deleted)");
  EXPECT_EQ(outlets().labDataSize.stringValue(), "Data Size: 0byte(s) Data Count:0");
  EXPECT_EQ(outlets().tableKeys.numberOfRows(), 1);
  EXPECT_EQ(alerts.messages(), Texts{});
}

TEST_F(LoadFaultsTest, AFailedTtlBlanksTheForm) {
  load({{"TYPE", "+hash\r\n"}});
  EXPECT_EQ(outlets().labType.stringValue(), "Type:");
  EXPECT_EQ(outlets().txtKey.stringValue(), "");
  EXPECT_EQ(outlets().txtTTL.toolTip(), "(DisConnected)");
  EXPECT_TRUE(outlets().valueDataHashScrollView.isHidden());
  EXPECT_EQ(alerts.shown().size(), 1U);
}

TEST_F(LoadFaultsTest, AStringThatCanNotBeReadHasNoSize) {
  load({{"TYPE", "+string\r\n"}, {"TTL", ":-1\r\n"}});
  EXPECT_EQ(outlets().labType.stringValue(), "Type: String");
  EXPECT_EQ(outlets().labDataSize.stringValue(), "Data Size: ");
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "");
  EXPECT_EQ(alerts.shown().size(), 1U);
}

TEST_F(LoadFaultsTest, AScoreThatIsNoTextIsTold) {
  load(
      {{"TYPE", "+zset\r\n"}, {"TTL", ":-1\r\n"}, {"ZRANGE", "*4\r\n$1\r\na\r\n$1\r\n1\r\n$1\r\nb\r\n$1\r\n\xFF\r\n"}});
  EXPECT_EQ(alerts.messages(), Texts{"The return of 'zrange' is not correct(2199)"});
  EXPECT_EQ(outlets().txtKey.stringValue(), "k");
  EXPECT_EQ(outlets().valueDataSortedSetTable.numberOfRows(), 0);
}

}  // namespace
}  // namespace tarn::test
