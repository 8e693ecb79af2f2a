#include "platform/appkit/NSViewController.h"
#include "resources/MainLayout.h"
#include "resources/NewConnectionLayout.h"
#include "resources/NewKeyValueTypeSelectLayout.h"
#include "resources/OperationTabLayout.h"
#include "resources/Resources.h"
#include "resources/SponsorLayout.h"
#include "tests/support/widgets/Hand.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFontMetrics>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QTranslator>
#include <gtest/gtest.h>

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

  // The pane of this type alone, with all that belongs to it.
  void showPane(const std::string& type) {
    OperationTabLayout& t = tab();
    const std::pair<const char*, std::vector<NSView*>> panes[] = {
        {"String", {&t.valueDataStringScrollView}},
        {"Set", {&t.valueDataSetScrollView, &t.setValueScrollView, &t.setValueLabel}},
        {"Hash",
         {&t.valueDataHashScrollView, &t.hashKeyScrollView, &t.hashKeyLabel, &t.hashValueScrollView,
          &t.hashValueLabel}},
        {"SortedSet",
         {&t.valueDataSortedSetScrollView, &t.sortedSetValueScrollView, &t.sortedSetValueLabel,
          &t.sortedSetScoreTextField, &t.sortedSetScoreLabel}}};
    for (const auto& [name, views] : panes) {
      for (NSView* view : views)
        view->setHidden(name != type);
    }
    settle();
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
        OperationTabLayout& t = tab();
        for (NSView* view : {&t.btnSave, &t.btnNew, &t.btnDelete, &t.btnAddRow, &t.btnDeleteSelectedRows})
          if (everything) view->setHidden(false);
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
  EXPECT_EQ(itemCount(tab().popLimit), 7);
  EXPECT_EQ(itemCount(tab().popType), 5);
  const auto columns = [](NSTableView& table) {
    std::string names;
    for (int column = 0; column < table.numberOfColumns(); ++column)
      names += table.tableColumn(column).identifier() + " ";
    return names;
  };
  EXPECT_EQ(tab().tableKeys.numberOfColumns(), 1);
  EXPECT_EQ(tab().valueDataSetTable.numberOfColumns(), 1);
  EXPECT_EQ(columns(tab().valueDataHashTable), "hashKeyColumn hashValueColumn ");
  EXPECT_EQ(columns(tab().valueDataSortedSetTable), "zSetValueColumn zSetScoreColumn ");
}

}  // namespace
}  // namespace tarn::test
