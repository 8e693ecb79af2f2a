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

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace tarn::test {
namespace {

struct TabController final : NSViewController {
  NSView& view() override { return layout.view; }
  OperationTabLayout layout;
};

class Layouts : public testing::Test {
protected:
  static void SetUpTestSuite() { ASSERT_TRUE(loadResources()); }
};

// What the widget needs to show all of its text.
QSize neededForText(const QWidget& widget) {
  if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
    if (label->wordWrap()) return {0, label->heightForWidth(label->width())};
    return {label->fontMetrics().horizontalAdvance(label->text()), label->fontMetrics().height()};
  }
  const bool isTitled = qobject_cast<const QAbstractButton*>(&widget) || qobject_cast<const QComboBox*>(&widget);
  return isTitled ? widget.minimumSizeHint() : QSize(0, 0);
}

// Each control in sight shows its whole text. Returns how many there are.
int expectNothingCutOff(QWidget& root) {
  int controls = 0;
  for (QWidget* widget : root.findChildren<QWidget*>()) {
    const QString name = widget->objectName();
    const bool isControl = widget->focusPolicy() != Qt::NoFocus || qobject_cast<QLabel*>(widget);
    if (!widget->isVisible() || !isControl || name.isEmpty() || name.startsWith(QLatin1String("qt_"))) continue;
    SCOPED_TRACE(name.toStdString());
    ++controls;
    EXPECT_GE(widget->width() + 1, neededForText(*widget).width());
    EXPECT_GE(widget->height() + 1, neededForText(*widget).height());
    EXPECT_TRUE(root.rect().contains(QRect(widget->mapTo(&root, QPoint()), widget->size())));
    const int asked = widget->fontMetrics().horizontalAdvance(widget->property("placeholderText").toString());
    // A small main window may cut what its search field asks for.
    EXPECT_TRUE(asked <= widget->width() - 8 || root.width() == 900);
  }
  return controls;
}

TEST_F(Layouts, CutNoTextOff) {
  // The main window with one tab, as the program shows it.
  for (const QSize size : {QSize(1180, 760), QSize(900, 560)}) {
    MainLayout layout;
    QWidget& window = *layout.window.widget();
    const auto item = std::make_shared<NSTabViewItem>();
    item->setViewController(std::make_shared<TabController>());
    layout.mainTab.addTabViewItem(item);
    show(window, size);
    EXPECT_EQ(window.size(), size);
    // The panes of all types, which have one place.
    for (QWidget* hidden : window.findChildren<QWidget*>(QRegularExpression("^(btn|value|set|hash|sorted)")))
      hidden->show();
    settle();
    EXPECT_GT(expectNothingCutOff(window), 40);
  }
  // The small windows beside the main one, at the size that they open with.
  NewConnectionLayout connection;
  NewKeyValueTypeSelectLayout type;
  SponsorLayout sponsor;
  for (const NSWindow* form : {&connection.window, &type.window, &sponsor.window}) {
    show(*form->widget());
    EXPECT_GE(expectNothingCutOff(*form->widget()), 3);
  }
}

using Resources = Layouts;

QImage drawn(const char* name, qreal scale = 1) {
  return imageIcon(NSImage::imageNamed(name)).pixmap(QSize(16, 16), scale).toImage();
}

TEST_F(Resources, TellEachStatusByItsShapeAndAreDrawnForTheScaleAndThePalette) {
  EXPECT_TRUE(NSImage::exists("server-running") && !NSImage::exists("none") && imageIcon(NSImage()).isNull());
  const QImage light = drawn("db").convertToFormat(QImage::Format_ARGB32);
  std::vector<QImage> shapes;
  for (const char* name : {"server", "server-running", "server-disconnected", "server-connecting", "db"}) {
    shapes.push_back(drawn(name).convertToFormat(QImage::Format_Alpha8));
    EXPECT_EQ(std::count(shapes.begin(), shapes.end(), shapes.back()), 1) << name;
  }
  EXPECT_NE(drawn("server", 2), drawn("server").scaled(drawn("server", 2).size()));
  useDarkPalette(true);
  EXPECT_NE(drawn("db").convertToFormat(QImage::Format_ARGB32), light);
  useDarkPalette(false);
}

// What the windows say in the language that this run is in: without one in English, the texts being their own keys.
TEST_F(Resources, SayTheirTextsInTheLanguageOfTheRun) {
  const bool chinese = std::getenv("TARN_TRANSLATIONS") != nullptr;
  const OperationTabLayout tab;
  EXPECT_EQ(tab.btnSave.stringValue(), chinese ? "保存" : "Save");
  EXPECT_EQ(tab.labStatus.stringValue(), chinese ? "状态：未连接" : "Status:NotConnected");
  EXPECT_EQ(localizedString(""), "");
  EXPECT_EQ(tab.popLimit.stringValue(), "1000");
  EXPECT_EQ(std::pair(itemCount(tab.popLimit), itemCount(tab.popType)), std::pair(7, 5));
  EXPECT_EQ(localizedString("My Favourite"), chinese ? "我的收藏" : "My Favourite");
}

}  // namespace
}  // namespace tarn::test
