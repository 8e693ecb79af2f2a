#include "platform/appkit/AlertPanel.h"
#include "platform/appkit/text/TextViewWidget.h"
#include "platform/foundation/NSAlert.h"
#include "tests/support/RedisServer.h"
#include "tests/support/RespPeer.h"
#include "tests/support/program/ProgramTest.h"

#include <QAccessible>
#include <QApplication>

#include <functional>
#include <set>
#include <string>

namespace tarn::test {

namespace {

// Walks through all that is on the screen, as a screen reader and the Tab key do.
class ControlWalk : public ProgramTest {
protected:
  // How many things a screen reader can name.
  static int expectNames(QAccessibleInterface* thing, const std::string& path) {
    if (!thing || !thing->isValid() || thing->state().invisible) return 0;
    using Role = QAccessible::Role;
    static const std::set<Role> tellable = {Role::PushButton, Role::CheckBox,     Role::ComboBox, Role::EditableText,
                                            Role::StaticText, Role::Table,        Role::Tree,     Role::TreeItem,
                                            Role::Cell,       Role::ColumnHeader, Role::PageTab,  Role::MenuItem,
                                            Role::Dialog,     Role::ProgressBar};
    const std::string name = thing->text(QAccessible::Name).toStdString();
    const std::string place = path + "/" + (thing->object() ? thing->object()->objectName().toStdString() : "") + "(" +
                              std::to_string(thing->role()) + ")";
    int count = 0;
    if (tellable.contains(thing->role()) || (thing->state().focusable && thing->role() != Role::Client)) {
      EXPECT_NE(name, "") << place;
      ++count;
    }
    for (int child = 0; child < thing->childCount(); ++child)
      count += expectNames(thing->child(child), place);
    return count;
  }

  // Every control that can have the keyboard gets it in its turn.
  static void expectKeyboard(const QWidget& window) {
    std::set<const QWidget*> reached;
    QWidget* focused = QApplication::focusWidget();
    while (focused && reached.insert(focused).second) {
      press(Qt::Key_Tab, qobject_cast<TextViewWidget*>(focused) ? Qt::ControlModifier : Qt::NoModifier);
      focused = QApplication::focusWidget();
    }
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
      if (!widget->isVisible() || !(widget->focusPolicy() & Qt::TabFocus) || widget->focusProxy()) continue;
      EXPECT_TRUE(reached.contains(widget))
          << widget->metaObject()->className() << " " << widget->objectName().toStdString();
    }
  }

  static void walk(QWidget& window, const std::string& name, int atLeast) {
    SCOPED_TRACE(name);
    EXPECT_GE(expectNames(QAccessible::queryAccessibleInterface(&window), name), atLeast);
    expectKeyboard(window);
  }
};

}  // namespace

TEST_F(ControlWalk, EachControlHasANameAndTheKeyboardReachesIt) {
  const RedisServer redis({"--databases", "2"});
  RespClient(redis.port())
      .pipeline({{"SET", "String", "text"},
                 {"RPUSH", "List", "element"},
                 {"HSET", "Hash", "field", "value"},
                 {"ZADD", "SortedSet", "1", "member"}});
  openWindow();
  QWidget& main = *window().window.widget();
  walk(main, "first-start", 9);
  openForm(window().btnNew);
  walk(*form().window.widget(), "form", 15);
  retype(form().txtCnnName, "lake");
  retype(form().txtPort, std::to_string(redis.port()));
  retype(form().txtIp, "127.0.0.1");
  press(Qt::Key_Return);
  toFront();
  openDatabase("lake", "db0(4)");
  waitForKeys({"Hash", "List", "SortedSet", "String"});
  for (const auto& [type, dataSize] : {std::pair{"String", "Data Size: 4byte(s)"},
                                       {"List", "Data Size: 7byte(s) Data Count:1"},
                                       {"Hash", "Data Size: 10byte(s) Data Count:1"},
                                       {"SortedSet", "Data Size: 7byte(s) Data Count:2"}}) {
    readKey(type, dataSize);
    walk(main, type, 40);
  }
  // Among its cells one is open.
  clickRow(tab().valueDataSortedSetTable, "member");
  press(Qt::Key_F2);
  expectNames(QAccessible::queryAccessibleInterface(&main), "open cell");
  press(Qt::Key_Escape);

  click(tab().btnNew);
  auto* dialog = content().newKeyValueTypeSelectWindowController()->dialog().outlets().window.widget();
  ASSERT_TRUE(waitUntil([&] { return dialog->isActiveWindow(); }));
  walk(*dialog, "type-dialog", 4);
  press(Qt::Key_Escape);
  toFront();

  chooseInMainMenu("Help", "Sponsor Tarn");
  QWidget* const sponsor = AppDelegate::shared()->sponsorWC()->window().widget();
  ASSERT_TRUE(waitUntil([&] { return sponsor->isActiveWindow(); }));
  walk(*sponsor, "sponsor", 6);
  press(Qt::Key_Escape);
  toFront();

  const NSAlert::Presenter recorder = NSAlert::setPresenter(runAlertPanel);
  whenModal([&](QWidget& alert) {
    walk(alert, "alert", 3);
    press(Qt::Key_Escape);
  });
  click(tab().btnDelete);
  NSAlert::setPresenter(recorder);
}

}  // namespace tarn::test
