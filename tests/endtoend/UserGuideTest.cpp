#include "platform/appkit/AlertPanel.h"
#include "platform/appkit/table/TableViewWidget.h"
#include "platform/foundation/NSAlert.h"
#include "tests/endtoend/Desk.h"
#include "tests/support/RedisServer.h"
#include "tests/support/RespClient.h"
#include "tests/support/widgets/Hand.h"

#include <QWidget>

#include <string>

namespace tarn::test {

namespace {

// What docs/user-guide.md tells to do, done, with the pictures that it shows: docs/pictures.sh takes them over.
class UserGuide : public Desk {
protected:
  static void fill(const RedisServer& redis) {
    RespClient client(redis.port());
    client.pipeline({{"SET", "session:8f2c", R"({"user":1042,"theme":"dark","basket":[7,7,31]})", "EX", "1800"},
                     {"HSET", "user:42", "name", "Radia Perlman", "city", "Portsmouth", "born", "1951"},
                     {"HSET", "user:1042", "name", "Ada Byron", "city", "London", "born", "1815"},
                     {"HSET", "user:233", "name", "Ольга Ладыженская", "city", "Кологрив", "born", "1922"},
                     {"RPUSH", "queue:mail", "to=ada subject=Welcome", "to=grace subject=Invoice"},
                     {"ZADD", "leaderboard", "9812.5", "ada", "9640", "grace", "120", "linus", "-3", "nobody"},
                     {"SELECT", "1"},
                     // The GBK bytes of two Chinese words, and bytes that are no text at all.
                     {"SET", "gbk:greeting", "\xC4\xE3\xBA\xC3\xA3\xAC\xCA\xC0\xBD\xE7"},
                     {"SET", "\xFF\xFE\x01", "a key that is no text"}});
  }

  void openWindow() {
    Desk::openWindow();
    show(*window().window().widget(), {1180, 720});
  }

  // Shows the alert that the action raises, and leaves it by Escape.
  void pictureOfAlert(const std::string& name, const std::function<void()>& action) {
    const NSAlert::Presenter recorder = NSAlert::setPresenter(runAlertPanel);
    bool shown = false;
    whenModal([&](QWidget& alert) {
      grab(alert, name);
      shown = true;
      press(Qt::Key_Escape);
    });
    action();
    EXPECT_TRUE(shown) << name;
    NSAlert::setPresenter(recorder);
    toFront();
  }
};

}  // namespace

TEST_F(UserGuide, ItsTasksInTheirOrder) {
  const RedisServer redis({"--databases", "2"});
  fill(redis);

  openWindow();
  picture("guide-first-start");

  openForm(window().outlets().btnNew);
  const std::string port = std::to_string(redis.port());
  for (const std::string& text : Texts{"shop", "127.0.0.1", port}) {
    type(text);
    press(Qt::Key_Tab);
  }
  grab(*form().window.widget(), "guide-connection-form");
  press(Qt::Key_Return);
  toFront();
  ASSERT_EQ(treeRows(), (Texts{"My Favourite", "shop"}));

  ASSERT_NO_FATAL_FAILURE(openDatabase("shop", "db0(6)"));
  ASSERT_TRUE(waitUntil([&] { return tab().tableKeys.numberOfRows() == 6; }));
  searchFor("user:");
  ASSERT_TRUE(waitUntil([&] { return tab().tableKeys.numberOfRows() == 3; }));
  readKey("user:42", "Data Size: 39byte(s) Data Count:3");
  clickRow(tab().valueDataHashTable, "city");
  picture("guide-hash");

  press(Qt::Key_F2);
  press(Qt::Key_Tab);
  type("Boston");
  picture("guide-edit-cell");
  press(Qt::Key_Return);
  retype(tab().txtKey, "user:43");
  pictureOfAlert("guide-move-question", [&] { click(tab().btnSave); });

  searchFor("");
  ASSERT_TRUE(waitUntil([&] { return tab().tableKeys.numberOfRows() == 6; }));
  readKey("leaderboard", "Data Size: 34byte(s) Data Count:8");
  clickRow(tab().valueDataSortedSetTable, "grace");
  picture("guide-sorted-set");
  pictureOfAlert("guide-delete-question", [&] { click(tab().btnDelete); });
  readKey("session:8f2c", "Data Size: 46byte(s)");
  picture("guide-string");

  click(tab().btnNew);
  NewKeyValueTypeSelectWindowController* const dialog = window().newKeyValueTypeSelectWindowController();
  ASSERT_NE(dialog, nullptr);
  grab(*dialog->window().widget(), "guide-new-key");
  press(Qt::Key_Escape);
  toFront();

  clickTreeRow("db1(2)");
  ASSERT_TRUE(waitUntil([&] { return tab().tableKeys.numberOfRows() == 2; }));
  readKey("gbk:greeting", "Data Size: 10byte(s)");
  picture("guide-no-text");
  chooseTitle(tab().popValueDataCharset, "GBK");
  EXPECT_TRUE(waitUntil([&] { return tab().valueDataStringTxtView.string() == "你好，世界"; }));
  picture("guide-charset");

  click(tab().txtViewCli);
  press(Qt::Key_End, Qt::ControlModifier);
  for (const char* line : {"SELECT 0", "INCR visits", "HGETALL user:1042", "LRANGE queue:mail 0 -1"}) {
    type(line);
    press(Qt::Key_Return);
  }
  picture("guide-console");
  EXPECT_EQ(alerts.messages(), Texts{});
  server()->closeConnection();
}

}  // namespace tarn::test
