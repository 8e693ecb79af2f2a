#include "platform/appkit/ImageIcon.h"
#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSViewController.h"
#include "platform/foundation/NSLocalizedString.h"
#include "resources/MainLayout.h"
#include "resources/NewConnectionLayout.h"
#include "resources/NewKeyValueTypeSelectLayout.h"
#include "resources/OperationTabLayout.h"
#include "resources/Resources.h"
#include "resources/SponsorLayout.h"
#include "tests/support/widgets/Hand.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTranslator>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace tarn::test {
namespace {

// Every text 40 % longer, as in another language.
struct LongerTexts final : QTranslator {
  bool isEmpty() const override { return false; }
  QString translate(const char*, const char* sourceText, const char*, int) const override {
    const QString text = QString::fromUtf8(sourceText);
    return text + QString(std::max<qsizetype>(text.size() * 2 / 5, 1), QLatin1Char('w'));
  }
};

struct TabController final : NSViewController {
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
    // clang-format off
    const std::pair<const char*, std::vector<NSView*>> panes[] = {
        {"String", {&t.valueDataStringScrollView}},
        {"Set", {&t.valueDataSetScrollView, &t.setValueScrollView, &t.setValueLabel}},
        {"Hash", {&t.valueDataHashScrollView, &t.hashKeyScrollView, &t.hashKeyLabel, &t.hashValueScrollView, &t.hashValueLabel}},
        {"SortedSet", {&t.valueDataSortedSetScrollView, &t.sortedSetValueScrollView, &t.sortedSetValueLabel, &t.sortedSetScoreTextField, &t.sortedSetScoreLabel}}};
    // clang-format on
    for (const auto& [name, views] : panes)
      for (NSView* view : views)
        view->setHidden(name != type);
    settle();
  }

  std::unique_ptr<MainLayout> window;
  std::shared_ptr<TabController> controller;
};

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

// Each control has a name that a screen reader says, and what is in sight its whole text. Returns how many there are.
int expectNamesAndNothingCutOff(QWidget& root) {
  int controls = 0;
  for (QWidget* widget : root.findChildren<QWidget*>()) {
    SCOPED_TRACE(widget->objectName().toStdString());
    const bool counts = isControl(*widget);
    controls += counts ? 1 : 0;
    EXPECT_TRUE(!counts || !QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name).isEmpty());
    if (!widget->isVisible() || widget->objectName().isEmpty()) continue;
    const QSize needed = neededForText(*widget);
    EXPECT_GE(widget->width() + 1, needed.width());
    EXPECT_GE(widget->height() + 1, needed.height());
    const QRect area(widget->mapTo(&root, QPoint()), widget->size());
    EXPECT_TRUE(!counts || root.rect().contains(area));
  }
  return controls;
}

TEST_F(Layouts, NameTheirControlsAndCutNoTextOff) {
  for (const bool longer : {false, true}) {
    LongerTexts texts;
    if (longer) QApplication::installTranslator(&texts);
    for (const QSize size : {QSize(1180, 760), QSize(900, 560)}) {
      open(size);
      EXPECT_EQ(root().size(), size);
      for (NSView* hidden : {&tab().btnSave, &tab().btnDelete, &tab().btnAddRow, &tab().btnDeleteSelectedRows})
        hidden->setHidden(false);
      for (const char* type : {"String", "Set", "Hash", "SortedSet"}) {
        SCOPED_TRACE(std::string(type) + (longer ? ", longer texts, " : ", ") + std::to_string(size.width()));
        showPane(type);
        EXPECT_GT(expectNamesAndNothingCutOff(root()), 40);
      }
    }
    // The small windows beside the main one, at the size that they open with.
    NewConnectionLayout connection;
    NewKeyValueTypeSelectLayout type;
    SponsorLayout sponsor;
    for (const NSWindow* form : {&connection.window, &type.window, &sponsor.window}) {
      show(*form->widget());
      EXPECT_GE(expectNamesAndNothingCutOff(*form->widget()), 3);
      for (const QWidget* field : form->widget()->findChildren<QWidget*>()) {
        const int asked = field->fontMetrics().horizontalAdvance(field->property("placeholderText").toString());
        EXPECT_TRUE(!field->isVisible() || asked <= std::max(field->width() - 8, 0))
            << field->objectName().toStdString();
      }
    }
  }
}

TEST_F(Layouts, GiveEachValuePaneTheWholePlaceAlsoWhileHiddenAndHoldListsAndColumns) {
  open();
  const NSRect place = tab().valueDataStringScrollView.frame();
  for (const NSView* pane :
       {&tab().valueDataSetScrollView, &tab().valueDataHashScrollView, &tab().valueDataSortedSetScrollView})
    EXPECT_TRUE(pane->frame().width == place.width && pane->frame().height == place.height);
  showPane("Hash");
  // Its editors stand under the table, side by side.
  const auto top = [&](const NSView& view) { return view.widget()->mapTo(&root(), QPoint()).y(); };
  EXPECT_GT(top(tab().hashKeyScrollView), top(tab().valueDataHashScrollView));
  EXPECT_EQ(top(tab().hashKeyScrollView), top(tab().hashValueScrollView));
  EXPECT_NEAR(tab().hashKeyScrollView.frame().width, tab().hashValueScrollView.frame().width, 2);
  showPane("String");
  EXPECT_EQ(tab().valueDataStringScrollView.frame().height, place.height);
  // The lists and columns that the program counts on.
  EXPECT_EQ(tab().popLimit.stringValue(), "1000");
  EXPECT_EQ(std::pair(itemCount(tab().popLimit), itemCount(tab().popType)), std::pair(7, 5));
  std::string columns;
  for (NSTableView* table :
       {&tab().tableKeys, &tab().valueDataSetTable, &tab().valueDataHashTable, &tab().valueDataSortedSetTable})
    for (int column = 0; column < table->numberOfColumns(); ++column)
      columns += (column == 0 ? "; " : " ") + table->tableColumn(column).identifier();
  EXPECT_EQ(columns, "; keyColumn; setValueColumn; hashKeyColumn hashValueColumn; zSetValueColumn zSetScoreColumn");
}

using Resources = Layouts;

QImage drawn(const char* name, qreal scale = 1) {
  return imageIcon(NSImage::imageNamed(name)).pixmap(QSize(16, 16), scale).toImage();
}

// How light the strokes are, from 0 to 255.
int strokeLightness() {
  return drawn("db").scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixelColor(0, 0).lightness();
}

TEST_F(Resources, TellEachStatusByItsShapeAndAreDrawnForTheScaleAndThePalette) {
  EXPECT_TRUE(NSImage::exists("server-running") && !NSImage::exists("none") && imageIcon(NSImage()).isNull());
  std::vector<QImage> shapes;
  for (const char* name : {"server", "server-running", "server-disconnected", "server-connecting", "db"}) {
    shapes.push_back(drawn(name).convertToFormat(QImage::Format_Alpha8));
    EXPECT_EQ(std::count(shapes.begin(), shapes.end(), shapes.back()), 1) << name;
  }
  const QImage sharp = drawn("server", 2);
  EXPECT_TRUE(sharp.width() >= 32 && sharp.width() == qRound(16 * sharp.devicePixelRatio()));
  EXPECT_NE(sharp, drawn("server").scaled(sharp.size()));
  const int inLight = strokeLightness();
  useDarkPalette(true);
  EXPECT_GT(strokeLightness(), inLight + 100);
  useDarkPalette(false);
}

// What the windows say in the language that this run is in: without one in English, the texts being their own keys.
TEST_F(Resources, SayTheirTextsInTheLanguageOfTheRun) {
  const bool chinese = std::getenv("TARN_TRANSLATIONS") != nullptr;
  const OperationTabLayout tab;
  EXPECT_EQ(tab.btnSave.stringValue(), chinese ? "保存" : "Save");
  EXPECT_EQ(tab.labStatus.stringValue(), chinese ? "状态：未连接" : "Status:NotConnected");
  EXPECT_EQ(localizedString(""), "");
  EXPECT_EQ(localizedString("My Favourite"), chinese ? "我的收藏" : "My Favourite");
}

}  // namespace
}  // namespace tarn::test
