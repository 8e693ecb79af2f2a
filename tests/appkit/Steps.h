#pragma once

#include "platform/appkit/NSMenu.h"
#include "tests/appkit/Keys.h"

#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace tarn::test {

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
    verbs["focus"] = [this](auto&) { widget->setFocus(); };
    verbs["bottom"] = [this](auto&) { widget->verticalScrollBar()->setValue(widget->verticalScrollBar()->maximum()); };
    verbs["say"] = [this](auto& text) { view.setPlaceholderString(text); };
    verbs["look"] = [this](auto&) {
      const QImage before = std::exchange(picture, area().grab().toImage());
      log.add(picture == before ? "same" : "new");
    };
    verbs["menu"] = [this](auto& what) { chooseInMenu(what); };
    auto menu = std::make_shared<NSMenu>("Rows");
    menu->addItem("Insert & go", [this] { log.add("chosen"); });
    view.setMenu(menu);
  }

  // Where in the rows something is.
  virtual QPoint at(const std::string& what) = 0;
  QWidget& area() { return *widget->viewport(); }
  // At something by the mouse, else by the menu key.
  void chooseInMenu(const std::string& what) {
    const QPoint point = what.empty() ? QPoint() : at(what);
    QContextMenuEvent event(what.empty() ? QContextMenuEvent::Keyboard : QContextMenuEvent::Mouse, point,
                            area().mapToGlobal(point));
    QApplication::sendEvent(&area(), &event);
    auto& menu = dynamic_cast<QMenu&>(*openPopUp());
    EXPECT_EQ(menu.actions().front()->text(), QStringLiteral("Insert && go"));
    const QPoint place = area().mapFromGlobal(menu.pos());
    log.add(place == point ? "there" : std::to_string(place.x()) + "," + std::to_string(place.y()));
    menu.actions().front()->trigger();
    menu.close();
    test::show(window);
  }

  Widget* widget = new Widget;
  View view{widget};
  QImage picture;
};

}  // namespace tarn::test
