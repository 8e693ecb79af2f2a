#include "platform/appkit/NSMenu.h"
#include "platform/appkit/NSOutlineView.h"
#include "platform/appkit/outline/OutlineViewWidget.h"
#include "tests/appkit/Keys.h"

#include <QAccessible>
#include <QMenu>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace tarn::test {
namespace {

struct Item final : NSObject {
  Item(std::string itemName, int itemLevel) : name(std::move(itemName)), level(itemLevel) {}
  std::string name;
  int level;  // 0 the root, 1 a server, 2 a database
  std::vector<std::shared_ptr<Item>> children;
};

// A root with the servers "a" (databases "0" and "1") and "b"; the root is
// expanded.
class Outline : public testing::Test, protected NSOutlineViewDataSource, protected NSOutlineViewDelegate {
protected:
  Outline() {
    (new QVBoxLayout(&window))->addWidget(widget);
    outline.setDataSource(this);
    outline.setDelegate(this);
    outline.reloadData();
    show(window, {260, 320});
    a = add(root, "a");
    b = add(root, "b");
    add(a, "0");
    add(a, "1");
    outline.reloadData();
    outline.expandItem(root);
    settle();
  }

  static std::shared_ptr<Item> add(const std::shared_ptr<Item>& parent, const std::string& name) {
    return parent->children.emplace_back(std::make_shared<Item>(name, parent->level + 1));
  }
  static Item& known(const NSItem& item) { return static_cast<Item&>(*item); }
  int numberOfChildrenOfItem(const NSItem& item) override {
    ++questions;
    return item ? static_cast<int>(known(item).children.size()) : 1;
  }
  NSItem childOfItem(int index, const NSItem& item) override {
    return item ? known(item).children[static_cast<std::size_t>(index)] : root;
  }
  bool isItemExpandable(const NSItem& item) override { return known(item).level < 2; }
  NSOutlineCell viewForItem(const NSItem& item) override {
    return {NSImage(), known(item).name, known(item).name + "&"};
  }
  bool shouldShowOutlineCellForItem(const NSItem& item) override { return known(item).level == 1; }
  bool shouldExpandItem(const NSItem& item) override { return answer("expand ", item); }
  bool shouldSelectItem(const NSItem& item) override { return answer("select ", item); }
  bool answer(const char* question, const NSItem& item) {
    log.add(question + known(item).name);
    if (whenAsked) whenAsked();
    return allows;
  }

  QWidget& rows() { return *widget->viewport(); }
  QModelIndex index(const NSItem& item) const { return widget->items().indexOf(item); }
  QPoint text(const NSItem& item) const { return widget->visualRect(index(item)).center(); }
  QPoint triangle(const NSItem& item) const { return widget->triangleRect(index(item)).center(); }
  void clickOn(const NSItem& item, Qt::KeyboardModifiers modifiers = {}) {
    click(rows(), text(item), Qt::LeftButton, modifiers);
  }
  // The rows from top to bottom, the selected ones in brackets.
  std::string shown() const {
    std::string names;
    const std::vector<int> selected = outline.selectedRowIndexes();
    for (int row = 0; row < outline.numberOfRows(); ++row) {
      const std::string& name = known(outline.itemAtRow(row)).name;
      names += std::find(selected.begin(), selected.end(), row) == selected.end() ? name : "[" + name + "]";
    }
    return names;
  }

  std::shared_ptr<Item> root = std::make_shared<Item>("R", 0);
  std::shared_ptr<Item> a;
  std::shared_ptr<Item> b;
  Log log;
  bool allows = true;
  std::function<void()> whenAsked;
  int questions = 0;
  QWidget window;
  OutlineViewWidget* widget = new OutlineViewWidget;
  NSOutlineView outline{widget};
};

}  // namespace

TEST_F(Outline, ExpandsAndCollapsesByCodeWithoutAsking) {
  EXPECT_EQ(shown(), "Rab");
  outline.expandItem(a);
  EXPECT_EQ(shown(), "Ra01b");
  EXPECT_EQ(outline.rowForItem(a->children[1]), 3);
  outline.collapseItem(root);
  EXPECT_EQ(shown(), "R");
  EXPECT_EQ(outline.rowForItem(a->children[1]), -1);
  outline.expandItem(root);
  EXPECT_EQ(shown(), "Ra01b");
  outline.expandItem(a->children[0]);
  outline.expandItem(std::make_shared<Item>("stranger", 1));
  EXPECT_EQ(shown(), "Ra01b");
  // Collapsing drops the selected children only.
  outline.selectRowIndexes({2, 3, 4, 99});
  EXPECT_EQ(shown(), "Ra[0][1][b]");
  outline.collapseItem(a);
  EXPECT_EQ(shown(), "Ra[b]");
  EXPECT_EQ(log.take(), "");
}

// One step after the other: what is asked about, and what shows then.
TEST_F(Outline, AsksAboutWhatTheUserDoes) {
  struct Step {
    std::function<void()> act;
    std::string asked;
    std::string rows;
  };
  const auto doubleClick = [&](const QPoint& at) { QTest::mouseDClick(&rows(), Qt::LeftButton, {}, at); };
  const auto child = [&] { return a->children[0]; };
  // clang-format off
  const std::vector<Step> steps{
      {[&] { allows = false, click(rows(), triangle(a)); }, "expand a", "Rab"},
      {[&] { clickOn(a); }, "select a", "Rab"},
      {[&] { allows = true, click(rows(), triangle(a)); }, "expand a", "Ra01b"},
      {[&] { click(rows(), triangle(a)); }, "", "Rab"},
      {[&] { clickOn(a); }, "select a", "R[a]b"},
      {[&] { clickOn(a); }, "select a", "R[a]b"},
      {[&] { doubleClick(text(a)); }, "", "R[a]b"},
      {[&] { doubleClick(triangle(a)); }, "expand a", "R[a]01b"},
      {[&] { keys("Left"); }, "", "R[a]b"},
      {[&] { keys("Right"); }, "expand a", "R[a]01b"},
      {[&] { keys("Right"); }, "select 0", "Ra[0]1b"},
      {[&] { keys("Left"); }, "select a", "R[a]01b"},
      {[&] { keys("Down Down Up"); }, "select 0, select 1, select 0", "Ra[0]1b"},
      {[&] { keys("End"); }, "select b", "Ra01[b]"},
      {[&] { keys("Down"); }, "", "Ra01[b]"},
      {[&] { keys("PgUp"); }, "select R", "[R]a01b"},
      {[&] { keys("PgDown Home"); }, "select b, select R", "[R]a01b"},
      {[&] { allows = false, keys("Down"), allows = true; }, "select a", "[R]a01b"},
      {[&] { clickOn(a), clickOn(b, Qt::ControlModifier); }, "select a, select b", "R[a]01[b]"},
      {[&] { clickOn(a, Qt::ControlModifier); }, "", "Ra01[b]"},
      {[&] { clickOn(child(), Qt::ShiftModifier); }, "select 0", "Ra[0][1][b]"},
      {[&] { keys("Shift+Down"); }, "select 1", "Ra0[1][b]"},
      {[&] { clickOn(child()), outline.collapseItem(a); }, "select 0", "Rab"}};
  // clang-format on
  for (std::size_t step = 0; step < steps.size(); ++step) {
    steps[step].act();
    settle();
    EXPECT_EQ(log.take(), steps[step].asked) << step;
    EXPECT_EQ(shown(), steps[step].rows) << step;
  }
}

TEST_F(Outline, AServerWithoutChildrenHasATriangleAndStaysExpanded) {
  EXPECT_FALSE(widget->triangleRect(index(root)).isValid());
  click(rows(), triangle(b));
  for (const std::string name : {"2", "7"}) {
    EXPECT_TRUE(widget->items().isExpanded(b));
    add(b, name);
    outline.reloadItem(b, true);
    settle();
    EXPECT_EQ(shown(), "Rab" + name);
    EXPECT_TRUE(widget->visualRect(index(b->children[0])).isValid());
    b->children.clear();
    outline.reloadItem(b, true);
  }
}

TEST_F(Outline, ReloadKeepsSelectionAndExpansionByItem) {
  outline.expandItem(a);
  outline.selectRowIndexes({3, 4});
  root->children.insert(root->children.begin(), std::make_shared<Item>("z", 1));
  a->children[0]->name = "0(12)";
  outline.reloadData();
  EXPECT_EQ(shown(), "Rza0(12)[1][b]");
  std::swap(root->children[0], root->children[2]);
  outline.reloadItem(root, true);
  EXPECT_EQ(shown(), "R[b]a0(12)[1]z");
  settle();
  EXPECT_EQ(widget->indexAt(text(a->children[1])), index(a->children[1]));
  root->children.erase(root->children.begin());
  outline.reloadData();
  EXPECT_EQ(shown(), "Ra0(12)[1]z");
  EXPECT_EQ(log.take(), "");
}

TEST_F(Outline, HoldsItsItemsAndAsksForNoChildrenWhilePainting) {
  outline.expandItem(a);
  const std::weak_ptr<Item> gone = a->children[1];
  a->children.clear();
  questions = 0;
  window.grab();
  clickOn(outline.itemAtRow(3));
  EXPECT_EQ(questions, 0);
  EXPECT_EQ(log.take(), "select 1");
  ASSERT_FALSE(gone.expired());
  outline.reloadItem(a, true);
  settle();
  EXPECT_TRUE(gone.expired());
}

TEST_F(Outline, MayBeReloadedByTheDelegateThatItAsks) {
  whenAsked = [&] {
    root->children.erase(root->children.begin());
    outline.reloadData();
  };
  clickOn(a);
  EXPECT_EQ(shown(), "Rb");
  click(rows(), triangle(b));
  EXPECT_EQ(shown(), "R");
}

TEST_F(Outline, RightClickOpensTheMenuAndChangesNothing) {
  auto menu = std::make_shared<NSMenu>("Favourites");
  menu->addItem("New Connection", [this] { log.add("new"); });
  outline.setMenu(menu);
  outline.selectRowIndexes({1});
  QTest::mousePress(&rows(), Qt::RightButton, {}, text(b));
  QContextMenuEvent event(QContextMenuEvent::Mouse, text(b), rows().mapToGlobal(text(b)));
  QApplication::sendEvent(&rows(), &event);
  auto* opened = dynamic_cast<QMenu*>(openPopUp());
  ASSERT_NE(opened, nullptr);
  EXPECT_EQ(rows().mapFromGlobal(opened->pos()), text(b));
  opened->actions().front()->trigger();
  opened->close();
  settle();
  EXPECT_EQ(shown(), "R[a]b");
  EXPECT_EQ(log.take(), "new");
}

TEST_F(Outline, RowsLieWhereTheyShouldAndSayTheirTextsToPointerAndScreenReader) {
  outline.expandItem(a);
  settle();
  for (const auto& [item, left] : {std::pair{root, 0}, {a, 32}, {a->children[0], 48}}) {
    EXPECT_EQ(widget->visualRect(index(item)).height(), 24);
    EXPECT_EQ(widget->visualRect(index(item)).left(), left);
  }
  EXPECT_TRUE(toolTipOf(rows(), text(b)).contains(QStringLiteral("b&amp;")));
  EXPECT_EQ(toolTipOf(rows(), QPoint(30, 300)), QString());
  QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
  ASSERT_TRUE(interface && interface->tableInterface());
  EXPECT_EQ(interface->role(), QAccessible::Tree);
  EXPECT_EQ(interface->tableInterface()->rowCount(), 5);
  EXPECT_EQ(interface->tableInterface()->cellAt(1, 0)->text(QAccessible::Name), "a");
}

}  // namespace tarn::test
