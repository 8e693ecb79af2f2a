#include "platform/appkit/NSMenu.h"
#include "platform/appkit/NSOutlineView.h"
#include "platform/appkit/outline/OutlineViewWidget.h"
#include "tests/support/widgets/Hand.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn::test {
namespace {

struct Item final : NSObject {
  Item(std::string itemName, int itemLevel) : name(std::move(itemName)), level(itemLevel) {}

  std::string name;
  int level;  // 0 the root, 1 a server, 2 a database
  std::vector<std::shared_ptr<Item>> children;
};

using Log = std::vector<std::string>;

class OutlineView : public testing::Test, protected NSOutlineViewDataSource, protected NSOutlineViewDelegate {
protected:
  OutlineView() {
    (new QVBoxLayout(&window))->addWidget(widget);
    outline.setDataSource(this);
    outline.setDelegate(this);
    outline.reloadData();
    show(window, {260, 320});
  }

  std::shared_ptr<Item> add(const std::shared_ptr<Item>& parent, const std::string& name) {
    parent->children.push_back(std::make_shared<Item>(name, parent->level + 1));
    return parent->children.back();
  }

  // Two servers, the first with two databases; the root is expanded.
  void addServers() {
    first = add(root, "first");
    second = add(root, "second");
    add(first, "db0");
    add(first, "db1");
    outline.reloadData();
    outline.expandItem(root);
    settle();
  }

  static Item& known(const NSItem& item) { return static_cast<Item&>(*item); }
  int numberOfChildrenOfItem(const NSItem& item) override {
    ++questions;
    return item ? static_cast<int>(known(item).children.size()) : 1;
  }
  NSItem childOfItem(int index, const NSItem& item) override {
    if (!item) return root;
    return known(item).children[static_cast<std::size_t>(index)];
  }
  bool isItemExpandable(const NSItem& item) override { return known(item).level < 2; }

  NSOutlineCell viewForItem(const NSItem& item) override {
    return {NSImage(), known(item).name, known(item).name + " tip"};
  }
  bool shouldShowOutlineCellForItem(const NSItem& item) override { return known(item).level == 1; }
  bool shouldExpandItem(const NSItem& item) override { return answer("expand ", item); }
  bool shouldSelectItem(const NSItem& item) override { return answer("select ", item); }
  bool answer(const char* question, const NSItem& item) {
    log.push_back(question + known(item).name);
    if (whenAsked) whenAsked();
    return allows;
  }

  QWidget& rows() { return *widget->viewport(); }
  QModelIndex index(const NSItem& item) const { return widget->items().indexOf(item); }
  QPoint text(const NSItem& item) const { return widget->visualRect(index(item)).center(); }
  QPoint triangle(const NSItem& item) const { return widget->triangleRect(index(item)).center(); }

  bool isExpanded(const NSItem& item) const { return widget->items().isExpanded(item); }
  std::string shown() const {
    std::string names;
    for (int row = 0; row < outline.numberOfRows(); ++row)
      names += known(outline.itemAtRow(row)).name + " ";
    return names;
  }
  std::vector<int> selected() const { return outline.selectedRowIndexes(); }
  Log take() { return std::exchange(log, {}); }

  std::shared_ptr<Item> root = std::make_shared<Item>("root", 0);
  std::shared_ptr<Item> first;
  std::shared_ptr<Item> second;
  Log log;
  bool allows = true;
  std::function<void()> whenAsked;
  int questions = 0;
  QWidget window;
  OutlineViewWidget* widget = new OutlineViewWidget;
  NSOutlineView outline{widget};
};

TEST_F(OutlineView, ExpandsAndCollapsesByCodeWithoutAsking) {
  addServers();
  EXPECT_EQ(shown(), "root first second ");
  outline.expandItem(first);
  EXPECT_EQ(shown(), "root first db0 db1 second ");
  EXPECT_TRUE(isExpanded(first));
  EXPECT_EQ(outline.rowForItem(first->children[1]), 3);
  outline.collapseItem(root);
  EXPECT_EQ(shown(), "root ");
  EXPECT_EQ(outline.rowForItem(first->children[1]), -1);
  outline.expandItem(root);
  EXPECT_EQ(shown(), "root first db0 db1 second ");
  outline.expandItem(first->children[0]);
  EXPECT_FALSE(isExpanded(first->children[0]));
  outline.expandItem(std::make_shared<Item>("stranger", 1));
  EXPECT_EQ(take(), Log{});
}

TEST_F(OutlineView, TriangleAndArrowKeysAsk) {
  addServers();
  allows = false;
  click(rows(), triangle(first));
  EXPECT_FALSE(isExpanded(first));
  allows = true;
  click(rows(), triangle(first));
  EXPECT_TRUE(isExpanded(first));
  EXPECT_EQ(take(), (Log{"expand first", "expand first"}));
  EXPECT_TRUE(selected().empty());
  click(rows(), triangle(first));
  EXPECT_FALSE(isExpanded(first));
  EXPECT_EQ(take(), Log{});

  outline.selectRowIndexes({1});
  click(rows(), text(first));
  take();
  press(Qt::Key_Right);
  EXPECT_EQ(take(), Log{"expand first"});
  press(Qt::Key_Left);
  EXPECT_FALSE(isExpanded(first));
  EXPECT_EQ(take(), Log{});
}

TEST_F(OutlineView, AServerWithoutChildrenHasATriangleAndStaysExpanded) {
  addServers();
  EXPECT_FALSE(widget->triangleRect(index(root)).isValid());
  click(rows(), triangle(second));
  EXPECT_EQ(take(), Log{"expand second"});
  for (const std::string name : {"db0", "db7"}) {
    EXPECT_TRUE(isExpanded(second));
    add(second, name);
    outline.reloadItem(second, true);
    settle();
    EXPECT_EQ(shown(), "root first second " + name + " ");
    EXPECT_TRUE(widget->visualRect(index(second->children[0])).isValid());
    second->children.clear();
    outline.reloadItem(second, true);
  }
}

TEST_F(OutlineView, AsksBeforeEachSelectionByHand) {
  addServers();
  click(rows(), text(first));
  EXPECT_EQ(take(), Log{"select first"});
  EXPECT_EQ(selected(), std::vector<int>{1});
  click(rows(), text(first));
  EXPECT_EQ(take(), Log{"select first"});

  QTest::mouseEvent(QTest::MouseDClick, &rows(), Qt::LeftButton, {}, text(first));
  settle();
  EXPECT_EQ(take(), Log{});
  EXPECT_FALSE(isExpanded(first));

  press(Qt::Key_Down);
  EXPECT_EQ(take(), Log{"select second"});
  allows = false;
  press(Qt::Key_Up);
  EXPECT_EQ(take(), Log{"select first"});
  EXPECT_EQ(selected(), std::vector<int>{2});
  outline.selectRowIndexes({0, 1});
  EXPECT_EQ(selected(), (std::vector<int>{0, 1}));
  outline.selectRowIndexes({2, 99});
  EXPECT_EQ(selected(), std::vector<int>{2});
  EXPECT_EQ(take(), Log{});
}

TEST_F(OutlineView, ExtendsTheSelection) {
  addServers();
  outline.expandItem(first);
  settle();
  click(rows(), text(first));
  click(rows(), text(second), Qt::LeftButton, Qt::ControlModifier);
  EXPECT_EQ(selected(), (std::vector<int>{1, 4}));
  take();
  click(rows(), text(first), Qt::LeftButton, Qt::ControlModifier);
  EXPECT_EQ(selected(), std::vector<int>{4});
  EXPECT_EQ(take(), Log{});
  click(rows(), text(first->children[0]), Qt::LeftButton, Qt::ShiftModifier);
  EXPECT_EQ(selected(), (std::vector<int>{2, 3, 4}));
  EXPECT_EQ(take(), Log{"select db0"});
  press(Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(selected(), (std::vector<int>{3, 4}));
}

TEST_F(OutlineView, CollapsingDropsTheSelectedChildrenOnly) {
  addServers();
  outline.expandItem(first);
  outline.selectRowIndexes({2, 3, 4});
  outline.collapseItem(first);
  EXPECT_EQ(selected(), std::vector<int>{2});
  EXPECT_EQ(outline.itemAtRow(2), second);

  outline.expandItem(first);
  click(rows(), text(first->children[0]));
  outline.collapseItem(first);
  EXPECT_TRUE(selected().empty());
}

TEST_F(OutlineView, ReloadKeepsSelectionAndExpansionByItem) {
  addServers();
  outline.expandItem(first);
  outline.selectRowIndexes({3, 4});
  const auto zeroth = std::make_shared<Item>("zeroth", 1);
  root->children.insert(root->children.begin(), zeroth);
  first->children[0]->name = "db0(12)";
  outline.reloadData();
  EXPECT_EQ(shown(), "root zeroth first db0(12) db1 second ");
  EXPECT_EQ(selected(), (std::vector<int>{4, 5}));

  std::swap(root->children[0], root->children[2]);
  outline.reloadItem(root, true);
  EXPECT_EQ(shown(), "root second first db0(12) db1 zeroth ");
  EXPECT_EQ(selected(), (std::vector<int>{1, 4}));
  settle();
  EXPECT_EQ(widget->indexAt(text(first->children[1])), index(first->children[1]));

  root->children.erase(root->children.begin());
  outline.reloadData();
  EXPECT_EQ(selected(), std::vector<int>{3});
  EXPECT_EQ(take(), Log{});
}

TEST_F(OutlineView, HoldsItsItemsAndAsksForNoChildrenWhilePainting) {
  addServers();
  outline.expandItem(first);
  const std::weak_ptr<Item> gone = first->children[1];
  first->children.clear();
  questions = 0;
  window.grab();
  click(rows(), widget->visualRect(index(outline.itemAtRow(3))).center());
  EXPECT_EQ(questions, 0);
  ASSERT_FALSE(gone.expired());
  EXPECT_EQ(take(), Log{"select db1"});
  outline.reloadItem(first, true);
  settle();
  EXPECT_TRUE(gone.expired());
}

TEST_F(OutlineView, SurvivesADelegateThatReloadsWhenAsked) {
  addServers();
  whenAsked = [&] {
    root->children.erase(root->children.begin());
    outline.reloadData();
  };
  click(rows(), text(first));
  EXPECT_TRUE(selected().empty());
  EXPECT_EQ(shown(), "root second ");
  click(rows(), triangle(second));
  EXPECT_EQ(shown(), "root ");
}

TEST_F(OutlineView, RightClickOpensTheMenuAndChangesNothing) {
  auto menu = std::make_shared<NSMenu>("Favourites");
  menu->addItem("New Connection", [this] { log.push_back("new"); });
  outline.setMenu(menu);
  addServers();
  outline.selectRowIndexes({1});
  const QPoint place = text(second);
  QTest::mousePress(&rows(), Qt::RightButton, {}, place);
  QContextMenuEvent event(QContextMenuEvent::Mouse, place, rows().mapToGlobal(place));
  QApplication::sendEvent(&rows(), &event);
  auto* opened = dynamic_cast<QMenu*>(openPopUp());
  ASSERT_NE(opened, nullptr);
  opened->actions().front()->trigger();
  opened->close();
  settle();
  EXPECT_EQ(selected(), std::vector<int>{1});
  EXPECT_EQ(take(), Log{"new"});
}

TEST_F(OutlineView, RowsLieWhereTheyShouldAlsoForAScreenReader) {
  addServers();
  outline.expandItem(first);
  settle();
  for (const auto& [item, left] : {std::pair{root, 0}, {first, 32}, {first->children[0], 48}}) {
    EXPECT_EQ(widget->visualRect(index(item)).height(), 24);
    EXPECT_EQ(widget->visualRect(index(item)).left(), left);
  }
  QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
  ASSERT_NE(interface, nullptr);
  EXPECT_EQ(interface->role(), QAccessible::Tree);
  ASSERT_NE(interface->tableInterface(), nullptr);
  EXPECT_EQ(interface->tableInterface()->rowCount(), 5);
  EXPECT_EQ(interface->tableInterface()->cellAt(1, 0)->text(QAccessible::Name), "first");
}

}  // namespace
}  // namespace tarn::test
