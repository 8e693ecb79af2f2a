#include "platform/appkit/AlertPanel.h"
#include "platform/appkit/NSApplication.h"
#include "tests/support/RedisServer.h"
#include "tests/support/RespPeer.h"
#include "tests/support/program/Program.h"

#include <stdexcept>
#include <string>

namespace tarn::test {

namespace {

// Does what docs/user-guide.md says, in its order, and saves the pictures that it shows as "NAME.png" in the current
// folder.
class UserGuide final {
public:
  UserGuide() {
    RespClient(redis_.port())
        .pipeline({{"SET", "session:8f2c", R"({"user":1042,"theme":"dark","basket":[7,7,31]})", "EX", "1800"},
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

  void takePictures() {
    program_.openWindow({1180, 720});
    picture("first-start");
    makeConnection();
    editHash();
    showOtherTypes();
    showCharsets();
    useConsole();
    if (!program_.alerts.shown().empty()) throw std::runtime_error(program_.alerts.messages().front());
  }

private:
  void makeConnection() {
    program_.openForm(program_.window().btnNew);
    Program::fillIn({"shop", "127.0.0.1", std::to_string(redis_.port())});
    save(program_.form().window, "connection-form");
    press(Qt::Key_Return);
    program_.toFront();
  }

  void editHash() {
    program_.openDatabase("shop", "db0(6)");
    program_.waitForKeys(6);
    program_.searchFor("user:");
    program_.waitForKeys(3);
    program_.readKey("user:42", "Data Size: 39byte(s) Data Count:3");
    Program::clickRow(tab().valueDataHashTable, "city");
    picture("hash");
    press(Qt::Key_F2);
    press(Qt::Key_Tab);
    type("Boston");
    picture("edit-cell");
    press(Qt::Key_Return);
    Program::retype(tab().txtKey, "user:43");
    pictureOfAlert("move-question", tab().btnSave);
  }

  void showOtherTypes() {
    program_.searchFor("");
    program_.waitForKeys(6);
    program_.readKey("leaderboard", "Data Size: 34byte(s) Data Count:8");
    Program::clickRow(tab().valueDataSortedSetTable, "grace");
    picture("sorted-set");
    pictureOfAlert("delete-question", tab().btnDelete);
    program_.readKey("session:8f2c", "Data Size: 46byte(s)");
    picture("string");
    click(tab().btnNew);
    save(program_.typeDialog().window, "new-key");
    press(Qt::Key_Escape);
    program_.toFront();
  }

  void showCharsets() {
    program_.clickRow("db1(2)");
    program_.waitForKeys(2);
    program_.readKey("gbk:greeting", "Data Size: 10byte(s)");
    picture("no-text");
    choose(tab().popValueDataCharset, "GBK");
    picture("charset");
  }

  void useConsole() {
    click(tab().txtViewCli);
    press(Qt::Key_End, Qt::ControlModifier);
    for (const char* line : {"SELECT 0", "INCR visits", "HGETALL user:1042", "LRANGE queue:mail 0 -1"}) {
      type(line);
      press(Qt::Key_Return);
    }
    picture("console");
  }

  OperationTabLayout& tab() { return program_.tab(); }

  // Shows the alert that the button raises, and leaves it by Escape.
  void pictureOfAlert(const std::string& name, const NSButton& button) {
    const NSAlert::Presenter recorder = NSAlert::setPresenter(runAlertPanel);
    whenModal([&](QWidget& alert) {
      save(alert, name);
      press(Qt::Key_Escape);
    });
    click(button);
    NSAlert::setPresenter(recorder);
    program_.toFront();
  }

  void picture(const std::string& name) { save(program_.window().window, name); }
  static void save(const NSView& view, const std::string& name) { save(*view.widget(), name); }
  static void save(QWidget& widget, const std::string& name) {
    settle();
    if (!widget.grab().save(QString::fromStdString(name + ".png"))) throw std::runtime_error("no picture " + name);
  }

  RedisServer redis_{{"--databases", "2"}};
  Program program_;
};

}  // namespace

}  // namespace tarn::test

int main(int argc, char** argv) {
  tarn::NSApplication application(argc, argv);
  tarn::test::UserGuide().takePictures();
}
