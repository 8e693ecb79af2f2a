#include "resources/MainLayout.h"
#include "resources/NewConnectionLayout.h"
#include "resources/NewKeyValueTypeSelectLayout.h"
#include "resources/OperationTabLayout.h"
#include "resources/SponsorLayout.h"

#include "platform/appkit/NSViewController.h"
#include "resources/Images.h"
#include "tests/support/widgets/Hand.h"

#include <gtest/gtest.h>
#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFontMetrics>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QTranslator>

#include <memory>

namespace tarn::test {
namespace {

// Every text 40 % longer, as in another language.
class LongerTexts final : public QTranslator {
public:
  LongerTexts() { QApplication::installTranslator(this); }
  ~LongerTexts() override { QApplication::removeTranslator(this); }

  bool isEmpty() const override { return false; }
  QString translate(const char*, const char* sourceText, const char*, int) const override {
    const QString text = QString::fromUtf8(sourceText);
    return text + QString(std::max<qsizetype>(text.size() * 2 / 5, 1), QLatin1Char('w'));
  }
};

class TabController final : public NSViewController {
public:
  NSView& view() override { return layout.view; }
  OperationTabLayout layout;
};

// The main window with one tab, as the program shows it.
class Layouts : public testing::Test {
protected:
  static void SetUpTestSuite() { ASSERT_TRUE(loadResources()); }

  void open(QSize size = {1180, 760}) {
    window = std::make_unique<MainLayout>();
    controller = std::make_shared<TabController>();
    auto item = std::make_shared<NSTabViewItem>();
    item->setLabel("local");
    item->setViewController(controller);
    window->mainTab.addTabViewItem(item);
    show(*window->window.widget(), size);
  }

  QWidget& root() { return *window->window.widget(); }
  OperationTabLayout& tab() { return controller->layout; }

  void showPane(const std::string& type) {
    OperationTabLayout& t = tab();
    const bool rows = type != "String";
    const auto setHidden = [](bool shown, std::initializer_list<NSView*> views) {
      for (NSView* view : views)
        view->setHidden(!shown);
    };
    setHidden(!rows, {&t.valueDataStringScrollView});
    setHidden(type == "Set", {&t.valueDataSetScrollView, &t.setValueScrollView, &t.setValueLabel});
    setHidden(type == "Hash", {&t.valueDataHashScrollView, &t.hashKeyScrollView, &t.hashKeyLabel,
                               &t.hashValueScrollView, &t.hashValueLabel});
    setHidden(type == "SortedSet", {&t.valueDataSortedSetScrollView, &t.sortedSetValueScrollView,
                                    &t.sortedSetValueLabel, &t.sortedSetScoreTextField, &t.sortedSetScoreLabel});
    settle();
  }

  void showEverything() {
    OperationTabLayout& t = tab();
    for (NSView* view : std::initializer_list<NSView*>{&t.btnSave, &t.btnNew, &t.btnDelete, &t.btnAddRow,
                                                       &t.btnDeleteSelectedRows}) {
      view->setHidden(false);
    }
  }

  std::unique_ptr<MainLayout> window;
  std::shared_ptr<TabController> controller;
};

std::string describe(const QWidget& widget) {
  return std::string(widget.metaObject()->className()) + " " + widget.objectName().toStdString();
}

bool isControl(const QWidget& widget) {
  return !widget.objectName().isEmpty() && !widget.objectName().startsWith(QLatin1String("qt_")) &&
         (widget.focusPolicy() != Qt::NoFocus || qobject_cast<const QLabel*>(&widget));
}

// What the widget needs to show all of its text.
QSize neededForText(const QWidget& widget) {
  if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
    if (label->wordWrap()) return {0, label->heightForWidth(label->width())};
    return {label->fontMetrics().horizontalAdvance(label->text()), label->fontMetrics().height()};
  }
  if (qobject_cast<const QAbstractButton*>(&widget) || qobject_cast<const QComboBox*>(&widget)) {
    return widget.minimumSizeHint();
  }
  return {0, 0};
}

void expectNothingCutOff(QWidget& root) {
  for (const QWidget* widget : root.findChildren<QWidget*>()) {
    if (!widget->isVisible() || widget->objectName().isEmpty()) continue;
    const QSize needed = neededForText(*widget);
    EXPECT_GE(widget->width() + 1, needed.width()) << describe(*widget);
    EXPECT_GE(widget->height() + 1, needed.height()) << describe(*widget);
    if (!isControl(*widget)) continue;
    const QRect place(widget->mapTo(&root, QPoint()), widget->size());
    EXPECT_TRUE(root.rect().contains(place)) << describe(*widget);
  }
}

// How many controls the window has.
int expectAccessibleNames(const QWidget& root) {
  int controls = 0;
  for (QWidget* widget : root.findChildren<QWidget*>()) {
    if (!isControl(*widget)) continue;
    ++controls;
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
    EXPECT_TRUE(accessible && !accessible->text(QAccessible::Name).isEmpty()) << describe(*widget);
  }
  return controls;
}

TEST_F(Layouts, GiveEachControlANameThatAScreenReaderSays) {
  open();
  EXPECT_GT(expectAccessibleNames(root()), 40);
}

TEST_F(Layouts, CutNoTextOff) {
  for (const bool longer : {false, true}) {
    const std::unique_ptr<LongerTexts> texts = longer ? std::make_unique<LongerTexts>() : nullptr;
    for (const QSize size : {QSize(1180, 760), QSize(900, 560)}) {
      for (const bool everything : {false, true}) {
        open(size);
        EXPECT_EQ(root().size(), size);
        if (everything) showEverything();
        for (const char* type : {"String", "Set", "Hash", "SortedSet"}) {
          SCOPED_TRACE(std::string(type) + (longer ? ", longer texts, " : ", ") + std::to_string(size.width()));
          showPane(type);
          expectNothingCutOff(root());
        }
      }
    }
  }
}

// The small windows beside the main one, at the size that they open with.
template <typename Layout>
class Forms : public testing::Test {};
using FormLayouts = testing::Types<NewConnectionLayout, NewKeyValueTypeSelectLayout, SponsorLayout>;
TYPED_TEST_SUITE(Forms, FormLayouts);

TYPED_TEST(Forms, NameTheirControlsAndCutNoTextOff) {
  for (const bool longer : {false, true}) {
    const std::unique_ptr<LongerTexts> texts = longer ? std::make_unique<LongerTexts>() : nullptr;
    TypeParam form;
    QWidget& window = *form.window.widget();
    show(window);
    EXPECT_GE(expectAccessibleNames(window), 3);
    expectNothingCutOff(window);
    for (const QWidget* field : window.findChildren<QWidget*>()) {
      if (!field->isVisible()) continue;
      const QString placeholder = field->property("placeholderText").toString();
      EXPECT_LE(field->fontMetrics().horizontalAdvance(placeholder), std::max(field->width() - 8, 0))
          << describe(*field);
    }
    window.close();
  }
}

TYPED_TEST(Forms, LeavePicturesToLookAt) {
  const std::string scale = qApp->devicePixelRatio() > 1.5 ? "-200" : "";
  for (const bool dark : {false, true}) {
    useDarkPalette(dark);
    TypeParam form;
    QWidget& window = *form.window.widget();
    show(window);
    grab(window, "layout-" + window.objectName().toStdString() + (dark ? "-dark" : "-light") + scale);
    window.close();
  }
  useDarkPalette(false);
}

TEST_F(Layouts, GiveEachValuePaneTheWholePlaceAlsoWhileHidden) {
  open();
  const NSRect place = tab().valueDataStringScrollView.frame();
  for (const NSView* pane :
       {&tab().valueDataSetScrollView, &tab().valueDataHashScrollView, &tab().valueDataSortedSetScrollView}) {
    EXPECT_EQ(pane->frame().width, place.width);
    EXPECT_EQ(pane->frame().height, place.height);
  }
  showPane("Hash");
  EXPECT_EQ(tab().valueDataHashScrollView.frame().width, place.width);
  // Its editors stand under the table, side by side.
  const auto below = [&](const NSView& view) {
    return view.widget()->mapTo(&root(), QPoint()).y() >
           tab().valueDataHashScrollView.widget()->mapTo(&root(), QPoint()).y();
  };
  EXPECT_TRUE(below(tab().hashKeyScrollView) && below(tab().hashValueScrollView));
  EXPECT_NEAR(tab().hashKeyScrollView.frame().width, tab().hashValueScrollView.frame().width, 2);
  showPane("String");
  EXPECT_EQ(tab().valueDataStringScrollView.frame().height, place.height);
}

TEST_F(Layouts, HoldTheirListsAndColumns) {
  open();
  EXPECT_EQ(tab().popLimit.stringValue(), "1000");
  EXPECT_EQ(tab().popLimit.numberOfItems(), 7);
  EXPECT_EQ(tab().popType.numberOfItems(), 5);
  EXPECT_EQ(tab().tableKeys.numberOfColumns(), 1);
  EXPECT_EQ(tab().valueDataSetTable.numberOfColumns(), 1);
  ASSERT_EQ(tab().valueDataHashTable.numberOfColumns(), 2);
  EXPECT_EQ(tab().valueDataHashTable.tableColumn(0).identifier(), "hashKeyColumn");
  EXPECT_EQ(tab().valueDataHashTable.tableColumn(1).identifier(), "hashValueColumn");
  ASSERT_EQ(tab().valueDataSortedSetTable.numberOfColumns(), 2);
  EXPECT_EQ(tab().valueDataSortedSetTable.tableColumn(0).identifier(), "zSetValueColumn");
  EXPECT_EQ(tab().valueDataSortedSetTable.tableColumn(1).identifier(), "zSetScoreColumn");
}

// A few rows of each kind, so that the pictures show the program at work.
class SampleRows final : public NSTableViewDataSource, public NSTableViewDelegate {
public:
  explicit SampleRows(std::vector<std::vector<std::string>> rows) : rows_(std::move(rows)) {}

  int numberOfRowsInTableView(const NSTableView&) override { return static_cast<int>(rows_.size()); }
  void viewForTableColumn(NSTableView&, int column, int row, NSTableCellView& cell) override {
    cell.setStringValue(rows_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]);
  }
  void tableViewSelectionIsChanging(NSTableView&) override {}
  void tableViewSelectionDidChange(NSTableView&) override {}

private:
  std::vector<std::vector<std::string>> rows_;
};

struct SampleItem final : NSObject {
  SampleItem(NSOutlineCell shown, std::vector<NSItem> below) : cell(std::move(shown)), children(std::move(below)) {}
  NSOutlineCell cell;
  std::vector<NSItem> children;
};

class SampleTree final : public NSOutlineViewDataSource, public NSOutlineViewDelegate {
public:
  static NSItem make(const char* image, const char* text, std::vector<NSItem> children = {}) {
    NSOutlineCell cell;
    if (*image != '\0') cell.image = NSImage::imageNamed(image);
    cell.text = text;
    return std::make_shared<SampleItem>(std::move(cell), std::move(children));
  }

  int numberOfChildrenOfItem(const NSItem& item) override {
    return item ? static_cast<int>(of(item).children.size()) : 1;
  }
  NSItem childOfItem(int index, const NSItem& item) override {
    return item ? of(item).children[static_cast<std::size_t>(index)] : root;
  }
  bool isItemExpandable(const NSItem& item) override { return item == root || of(item).cell.image.name() != "db"; }
  NSOutlineCell viewForItem(const NSItem& item) override { return of(item).cell; }
  bool shouldShowOutlineCellForItem(const NSItem& item) override { return item != root; }
  double heightOfRowByItem(const NSItem&) override { return 24; }
  bool shouldExpandItem(const NSItem&) override { return true; }
  bool shouldSelectItem(const NSItem&) override { return true; }

  NSItem running = make("server-running", "local", {make("db", "db0(12)"), make("db", "db1(0)")});
  NSItem root = make("", "My Favourite",
                     {running, make("server", "staging"), make("server-connecting", "cluster"),
                      make("server-disconnected", "a server with a rather long name")});

private:
  static SampleItem& of(const NSItem& item) { return static_cast<SampleItem&>(*item); }
};

void fill(NSTableView& table, SampleRows& rows) {
  table.setDataSource(&rows);
  table.setDelegate(&rows);
  table.reloadData();
  table.selectRowIndexes({1}, false);
}

TEST_F(Layouts, LeavePicturesToLookAt) {
  SampleTree tree;
  SampleRows keys({{"user:1000"}, {"user:1001"}, {"会话:北京"}, {"cache:html:index"}, {"\\B/w=="}});
  SampleRows hash({{"name", "Ada Lovelace"}, {"城市", "北京市海淀区"}, {"json", R"({"id": 1, "tags": ["a", "b"]})"}});
  const std::string scale = qApp->devicePixelRatio() > 1.5 ? "-200" : "";
  for (const bool dark : {false, true}) {
    useDarkPalette(dark);
    const std::string suffix = (dark ? "-dark" : "-light") + scale;
    open();
    grab(root(), "layout-empty" + suffix);

    auto other = std::make_shared<NSTabViewItem>();
    other->setLabel("staging");
    other->setViewController(std::make_shared<TabController>());
    window->mainTab.addTabViewItem(other);
    window->serverSelection.setDataSource(&tree);
    window->serverSelection.setDelegate(&tree);
    window->serverSelection.reloadData();
    window->serverSelection.expandItem(tree.root);
    window->serverSelection.expandItem(tree.running);
    window->serverSelection.selectRowIndexes({2}, false);
    tab().labServerName.setStringValue("Name:local Server:127.0.0.1 Port:6379");
    tab().labStatus.setStringValue("Status:Connected");
    tab().popDatabase.addItemsWithTitles({"db0", "db1"});
    tab().popKeyDataCharset.addItemsWithTitles({"utf8", "Base64"});
    tab().popValueDataCharset.addItemsWithTitles({"utf8", "Base64", "ISO_2022_CN_EXT"});
    tab().labType.setStringValue("Type: Hash");
    tab().txtKey.setStringValue("user:1000");
    tab().txtTTL.setStringValue("3600");
    tab().labKeySize.setStringValue("Key Size: 9byte(s)");
    tab().labDataSize.setStringValue("Data Size: 1234567byte(s) Data Count:100000");
    fill(tab().tableKeys, keys);
    fill(tab().valueDataHashTable, hash);
    showPane("Hash");
    tab().hashKeyTextView.setString("城市");
    tab().hashValueTextView.setString("北京市海淀区");
    grab(root(), "layout-reading" + suffix);
    showEverything();
    grab(root(), "layout-all" + suffix);
    showPane("SortedSet");
    grab(root(), "layout-sorted-set" + suffix);
    window.reset();
  }
  useDarkPalette(false);
}

}  // namespace
}  // namespace tarn::test
