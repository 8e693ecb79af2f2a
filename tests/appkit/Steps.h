#pragma once

#include "platform/appkit/NSMenu.h"
#include "tests/support/widgets/Hand.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <utility>

namespace tarn::test {

// Texts that toolkits like to change, with "ok" between them: line ends, controls, noncharacters, pairs and composed
// characters.
inline const QString treacherousTexts = QStringLiteral(
    u"\xFEFFok\rok\nok\r\nok\tok\0ok\x1Bok\x7Fok\x85ok\xA0ok\xADok\u2028ok\u2029ok\xFDD0ok\xFDD1ok\uFFFCok\xFFFEok"
    u"\uFEFFok"
    u"\U0001FFFFoke\u0301ok\u4E2D\u6587ok\u202Eok\U0001F469\u200D\U0001F680ok\u0627\u0644ok\uE000ok");

// The tool tip that shows at a point of the widget; empty where none does.
inline QString toolTipOf(QWidget& widget, const QPoint& at = QPoint(5, 5)) {
  // The toolkit's own way to hide it takes a while.
  for (QWidget* window : QApplication::topLevelWidgets())
    if (window->inherits("QTipLabel")) window->hide();
  QHelpEvent event(QEvent::ToolTip, at, widget.mapToGlobal(at));
  QApplication::sendEvent(&widget, &event);
  return QToolTip::isVisible() ? QToolTip::text() : QString();
}

// What a control has said since the last look, in order.
struct Log final {
  void add(const std::string& entry) { entries += (entries.empty() ? "" : ", ") + entry; }
  std::string take() { return std::exchange(entries, {}); }

  std::string entries;
};

// A view above another control, which has the keyboard, and what a user and the program do with it as lines of a table.
class Steps : public testing::Test {
protected:
  // Steps of a verb and its object ("click b; key Down"), what the view says to all of them, and what it shows then.
  struct Line {
    std::string steps, said, shown;
  };

  void show(QWidget& view) {
    auto* column = new QVBoxLayout(&window);
    column->addWidget(&view);
    column->addWidget(other);
    test::show(window, {420, 320});
    other->setFocus();
  }
  // Each line goes on where the one before it ended.
  void run(const std::vector<Line>& lines) {
    for (const Line& line : lines) {
      std::istringstream steps(line.steps);
      for (std::string step; std::getline(steps >> std::ws, step, ';'); settle()) {
        const std::size_t end = std::min(step.find(' '), step.size());
        verbs.at(step.substr(0, end))(step.substr(std::min(end + 1, step.size())));
      }
      EXPECT_EQ(log.take(), line.said) << line.steps;
      EXPECT_EQ(shown(), line.shown) << line.steps;
    }
  }
  virtual std::string shown() { return {}; }
  // The menu that opens by the mouse, or by the menu key.
  static QMenu& openMenu(QWidget& widget, const QPoint& point, bool byKey = false) {
    QContextMenuEvent event(byKey ? QContextMenuEvent::Keyboard : QContextMenuEvent::Mouse, point,
                            widget.mapToGlobal(point));
    QApplication::sendEvent(&widget, &event);
    return dynamic_cast<QMenu&>(*QApplication::activePopupWidget());
  }

  Log log;
  QWidget window;
  QLineEdit* other = new QLineEdit(&window);
  std::map<std::string, std::function<void(const std::string& object)>> verbs{
      {"key", [](const std::string& script) { keys(script.c_str()); }}, {"leave", [this](auto&) { click(*other); }}};
};

// The steps that a table and an outline have in common.
template <typename View, typename Widget>
class RowSteps : public Steps {
protected:
  RowSteps() {
    const auto clicking = [this](Qt::KeyboardModifiers modifiers) {
      return [this, modifiers](auto& what) { click(area(), at(what), Qt::LeftButton, modifiers); };
    };
    verbs["click"] = clicking(Qt::NoModifier);
    verbs["ctrl"] = clicking(Qt::ControlModifier);
    verbs["shift"] = clicking(Qt::ShiftModifier);
    verbs["again"] = [this](auto& what) { QTest::mouseDClick(&area(), Qt::LeftButton, {}, at(what)); };
    verbs["right"] = [this](auto& what) { QTest::mousePress(&area(), Qt::RightButton, {}, at(what)); };
    verbs["bottom"] = [this](auto&) { widget->verticalScrollBar()->setValue(widget->verticalScrollBar()->maximum()); };
    verbs["say"] = [this](auto& text) { view.setPlaceholderString(text); };
    verbs["look"] = [this](auto&) {
      const QImage before = std::exchange(picture, area().grab().toImage());
      log.add(picture == before ? "same" : "new");
    };
    // At something by the mouse, else by the menu key.
    verbs["menu"] = [this](auto& what) {
      const QPoint point = what.empty() ? QPoint() : at(what);
      QMenu& menu = openMenu(area(), point, what.empty());
      EXPECT_EQ(menu.actions().front()->text(), QStringLiteral("Insert && go"));
      const QPoint place = area().mapFromGlobal(menu.pos());
      log.add(place == point ? "there" : std::to_string(place.x()) + "," + std::to_string(place.y()));
      menu.actions().front()->trigger();
      menu.close();
      test::show(window);
    };
    auto menu = std::make_shared<NSMenu>("Rows");
    menu->addItem("Insert & go", [this] { log.add("chosen"); });
    view.setMenu(menu);
  }

  // Where in the rows something is.
  virtual QPoint at(const std::string& what) = 0;
  QWidget& area() { return *widget->viewport(); }

  Widget* widget = new Widget;
  View view{widget};
  QImage picture;
};

}  // namespace tarn::test
