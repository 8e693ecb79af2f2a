#include "platform/appkit/NSTextField.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/LabelWidget.h"
#include "platform/appkit/text/TextFieldWidget.h"
#include "tests/appkit/ExactTexts.h"
#include "tests/support/widgets/Hand.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QToolTip>
#include <gtest/gtest.h>

namespace tarn::test {

namespace {

QString toolTipOf(QWidget& widget) {
  QToolTip::hideText();
  QHelpEvent event(QEvent::ToolTip, QPoint(5, 5), widget.mapToGlobal(QPoint(5, 5)));
  QCoreApplication::sendEvent(&widget, &event);
  return QToolTip::text();
}

}  // namespace

TEST(Label, KeepsItsTextExactAndElidesIt) {
  QWidget window;
  auto* widget = new LabelWidget(&window);
  NSTextField label(widget);
  show(window, QSize(200, 60));
  widget->resize(200, 20);

  label.setStringValue(toUtf8(allTreacherousTexts()));
  EXPECT_EQ(label.stringValue(), toUtf8(allTreacherousTexts()));
  label.setStringValue("short");
  EXPECT_EQ(toolTipOf(*widget), QString());
  label.setStringValue("<b>" + std::string(50 << 20, 'l') + "</b>");
  EXPECT_TRUE(toolTipOf(*widget).contains(QStringLiteral("&lt;b&gt;lll")));
  EXPECT_LT(toolTipOf(*widget).size(), 3000);
  EXPECT_FALSE(widget->grab().isNull());
  EXPECT_LT(widget->minimumSizeHint().width(), 200);
  label.setToolTip("its own <i>");
  EXPECT_TRUE(toolTipOf(*widget).contains(QStringLiteral("its own &lt;i&gt;")));
}

TEST(Label, IsAsWideAsItsTextBesideAFieldWhereThereIsRoom) {
  QWidget window;
  auto* layout = new QHBoxLayout(&window);
  auto* kind = new LabelWidget;
  auto* name = new LabelWidget;
  layout->addWidget(kind);
  layout->addWidget(name);
  layout->addWidget(new TextFieldWidget, 1);
  show(window, QSize(600, 60));
  NSTextField(kind).setStringValue("Type: SortedSet");
  NSTextField(name).setStringValue("A name that is as long as its owner wants");
  settle();
  EXPECT_EQ(kind->width(), kind->sizeHint().width());
  EXPECT_EQ(name->width(), name->sizeHint().width());
  // Without room the long one gives way, the short one doesn't.
  window.resize(window.minimumSizeHint().width(), 60);
  settle();
  EXPECT_EQ(kind->width(), kind->sizeHint().width());
  EXPECT_LT(name->width(), name->sizeHint().width());
}

}  // namespace tarn::test
