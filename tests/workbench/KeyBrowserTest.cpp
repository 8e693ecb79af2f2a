#include "tests/support/RedisServer.h"
#include "tests/workbench/TabFixture.h"

#include <algorithm>

namespace tarn::test {
namespace {

class KeyBrowserTest : public TabFixture {
protected:
  Texts keysFor(std::string_view text) {
    search(text);
    Texts keys = texts(outlets().tableKeys, 0);
    std::sort(keys.begin(), keys.end());
    return keys;
  }

  RedisServer redis{{"--enable-debug-command", "yes"}};
};

TEST_F(KeyBrowserTest, ListsWhatThePatternFindsAsEscapedText) {
  for (const std::string key : {"user", "a\\b", "line\nfeed", "\xFF\x01"})
    redis.command({"SET", key, "v"});
  openTab(redis.port());
  EXPECT_EQ(keysFor(""), (Texts{"\\B/wE=", "a\\\\b", "line\\nfeed", "user"}));
  EXPECT_EQ(keysFor("line\\nfeed"), Texts{"line\\nfeed"});
  outlets().chkExactly.setState(true);
  EXPECT_EQ(keysFor("use"), Texts{});
  EXPECT_EQ(keysFor("\\B/wE="), Texts{"\\B/wE="});
  EXPECT_EQ(keysFor(""), Texts{});
  EXPECT_EQ(alerts.messages(), Texts{});

  EXPECT_EQ(keysFor("\\Bqw="), Texts{});
  EXPECT_EQ(alerts.messages(), Texts{"Can not decode base64 part of the Search Key '\\Bqw='"});
}

TEST_F(KeyBrowserTest, FetchesNoMoreThanTheLimit) {
  redis.command({"DEBUG", "POPULATE", "3000"});
  openTab(redis.port());
  search("");
  EXPECT_EQ(outlets().tableKeys.numberOfRows(), 1000);
}

TEST_F(KeyBrowserTest, ListsTheDatabaseThatIsChosen) {
  redis.command({"SET", "zero", "v"});
  redis.command({"SET", "three", "v"}, 3);
  openTab(redis.port());
  EXPECT_EQ(keysFor(""), Texts{"zero"});
  choose(*outlets().popDatabase.widget(), 3);
  waitUntilIdle();
  EXPECT_EQ(texts(outlets().tableKeys, 0), Texts{"three"});
  EXPECT_EQ(server->currentDbIdx(), 3);

  tab->showConnection(ConnectionStatus::connecting);
  EXPECT_EQ(tab->shownDatabase(), 3);
  tab->showConnection(ConnectionStatus::connected);
  EXPECT_EQ(outlets().popDatabase.titleOfSelectedItem(), "db3");
}

TEST_F(KeyBrowserTest, ShowsTheKeysInAnotherCharsetOverABlankForm) {
  redis.command({"SET", "\xD6\xD0", "v"});
  openTab(redis.port());
  search("");
  selectKey("\\B1tA=");
  EXPECT_EQ(outlets().txtKey.stringValue(), "\\B1tA=");
  chooseTitle(outlets().popKeyDataCharset, "GBK");
  waitUntilIdle();
  EXPECT_EQ(texts(outlets().tableKeys, 0), Texts{"中"});
  EXPECT_EQ(outlets().txtKey.stringValue(), "");
  EXPECT_EQ(outlets().txtTTL.stringValue(), "-1");
  EXPECT_EQ(outlets().txtTTL.toolTip(), "(Persist)");
  EXPECT_FALSE(outlets().chkTranslate.state());
}

}  // namespace
}  // namespace tarn::test
