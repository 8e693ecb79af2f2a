#include "platform/appkit/AlertPanel.h"
#include "platform/appkit/text/TextViewWidget.h"
#include "platform/foundation/NSAlert.h"
#include "tests/support/RedisServer.h"
#include "tests/support/program/Program.h"

#include <QAccessible>

#include <set>

namespace tarn::test {

// Walks through all that is on the screen, as a screen reader and the Tab key do.
class ControlWalk : public ProgramTest {
protected:
  // How many things a screen reader can name.
  static int expectNames(QAccessibleInterface* thing) {
    if (!thing || !thing->isValid() || thing->state().invisible) return 0;
    using enum QAccessible::Role;
    // clang-format off
    static const std::set<QAccessible::Role> tellable = {
        PushButton, CheckBox, ComboBox, EditableText, StaticText, Table, Tree, TreeItem, Cell, ColumnHeader, PageTab,
        MenuItem, Dialog, ProgressBar};
    // clang-format on
    SCOPED_TRACE(thing->object() ? thing->object()->objectName().toStdString() : std::to_string(thing->role()));
    int count = tellable.contains(thing->role()) || (thing->state().focusable && thing->role() != Client) ? 1 : 0;
    EXPECT_FALSE(count > 0 && thing->text(QAccessible::Name).isEmpty());
    for (int child = 0; child < thing->childCount(); ++child)
      count += expectNames(thing->child(child));
    return count;
  }

  // Every control that can have the keyboard gets it in its turn.
  static void expectKeyboard(const QWidget& window) {
    std::set<const QWidget*> reached;
    for (QWidget* focused = nullptr; (focused = QApplication::focusWidget()) && reached.insert(focused).second;)
      press(Qt::Key_Tab, qobject_cast<TextViewWidget*>(focused) ? Qt::ControlModifier : Qt::NoModifier);
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
      const bool takesIt = widget->isVisible() && widget->focusPolicy() & Qt::TabFocus && !widget->focusProxy();
      EXPECT_TRUE(!takesIt || reached.contains(widget)) << widget->objectName().toStdString();
    }
  }

  static void walk(QWidget& window, const std::string& name, int atLeast) {
    SCOPED_TRACE(name);
    EXPECT_GE(expectNames(QAccessible::queryAccessibleInterface(&window)), atLeast);
    expectKeyboard(window);
  }
};

TEST_F(ControlWalk, EachControlHasANameAndTheKeyboardReachesIt) {
  const RedisServer redis({"--databases", "2"});
  redis.command({"SET", "String", "text"});
  redis.command({"RPUSH", "List", "element"});
  redis.command({"HSET", "Hash", "field", "value"});
  redis.command({"ZADD", "SortedSet", "1", "member"});
  openWindow();
  QWidget& main = *window().window.widget();
  walk(main, "first-start", 9);
  openForm(window().btnNew);
  walk(*form().window.widget(), "form", 15);
  click(form().txtCnnName);
  fillIn({"lake", "127.0.0.1", std::to_string(redis.port())});
  press(Qt::Key_Return);
  toFront();
  openDatabase("lake", "db0(4)");
  waitForKeys({"Hash", "List", "SortedSet", "String"});
  const std::pair<std::string, std::string> sizes[] = {{"String", "4byte(s)"},
                                                       {"List", "7byte(s) Data Count:1"},
                                                       {"Hash", "10byte(s) Data Count:1"},
                                                       {"SortedSet", "7byte(s) Data Count:2"}};
  for (const auto& [type, size] : sizes) {
    readKey(type, "Data Size: " + size);
    walk(main, type, 40);
  }
  // Among its cells one is open.
  clickRow(tab().valueDataSortedSetTable, "member");
  press(Qt::Key_F2);
  expectNames(QAccessible::queryAccessibleInterface(&main));
  press(Qt::Key_Escape);

  const auto walkAndLeave = [&](QWidget& window, const std::string& name, int atLeast) {
    ASSERT_TRUE(waitUntil([&] { return window.isActiveWindow(); }));
    walk(window, name, atLeast);
    press(Qt::Key_Escape);
    toFront();
  };
  click(tab().btnNew);
  walkAndLeave(*typeDialog().window.widget(), "type-dialog", 4);
  chooseInMainMenu("Help", "Sponsor Tarn");
  walkAndLeave(*AppDelegate::shared()->sponsorWC()->window().widget(), "sponsor", 6);

  const NSAlert::Presenter recorder = NSAlert::setPresenter(runAlertPanel);
  whenModal([&](QWidget& alert) {
    walk(alert, "alert", 3);
    press(Qt::Key_Escape);
  });
  click(tab().btnDelete);
  NSAlert::setPresenter(recorder);
}

}  // namespace tarn::test
