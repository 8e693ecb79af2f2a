#include "platform/appkit/AlertPanel.h"

#include "platform/appkit/ApplicationHost.h"
#include "platform/appkit/ImageIcon.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/DisplayText.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSRunLoop.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextOption>
#include <QVBoxLayout>

#include <algorithm>

namespace tarn {

namespace {

constexpr int textWidth = 420;
constexpr int tallestText = 320;
constexpr int iconSize = 48;
constexpr qsizetype longestText = 20'000;

NSImage iconOf(NSAlert::Style style) {
  switch (style) {
    case NSAlert::Style::informational:
      return NSImage::imageNamed("alert-information");
    case NSAlert::Style::critical:
      return NSImage::imageNamed("alert-critical");
    case NSAlert::Style::warning:
      break;
  }
  return NSImage::imageNamed("alert-warning");
}

// A text to read and copy, as high as it is up to a limit, scrolling beyond. It may hold a user's data: nothing in it
// is markup, and a word without end breaks anywhere.
class AlertText final : public QPlainTextEdit {
public:
  AlertText(std::string_view message, bool emphasized, QWidget* parent) : QPlainTextEdit(parent) {
    const QString text = shortened(toQString(message), longestText);
    setReadOnly(true);
    setFocusPolicy(Qt::NoFocus);
    setFrameShape(QFrame::NoFrame);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    if (emphasized) {
      QFont bold = font();
      bold.setBold(true);
      setFont(bold);
    }
    setPlainText(text);
    setAccessibleName(text);
    setFixedSize(textWidth, fittingHeight());
  }

private:
  // The widget's own layout knows its width only once it is on the screen.
  int fittingHeight() const {
    QTextOption wrapping;
    wrapping.setWrapMode(wordWrapMode());
    int lines = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
      QTextLayout layout(block.text(), font());
      layout.setTextOption(wrapping);
      layout.beginLayout();
      for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine())
        line.setLineWidth(textWidth);
      layout.endLayout();
      lines += std::max(layout.lineCount(), 1);
    }
    const int height = lines * fontMetrics().lineSpacing() + 2;
    return std::min(height, tallestText);
  }
};

class AlertPanel final : public QDialog {
public:
  AlertPanel(const NSAlert& alert, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("alert"));
    setWindowModality(Qt::ApplicationModal);
    setWindowTitle(QStringLiteral("Tarn"));
    setAccessibleName(toQString(alert.messageText()));
    setAccessibleDescription(toQString(alert.informativeText()));

    auto* icon = new QLabel(this);
    icon->setPixmap(imageIcon(iconOf(alert.alertStyle())).pixmap(QSize(iconSize, iconSize), devicePixelRatio()));
    icon->setAlignment(Qt::AlignTop);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(8);
    texts->addWidget(new AlertText(alert.messageText(), !alert.informativeText().empty(), this));
    if (!alert.informativeText().empty()) {
      texts->addWidget(new AlertText(alert.informativeText(), false, this));
    }
    texts->addStretch();

    auto* top = new QHBoxLayout;
    top->setSpacing(16);
    top->addWidget(icon);
    top->addLayout(texts);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(24, 24, 24, 16);
    all->setSpacing(24);
    all->addLayout(top);
    all->addLayout(makeButtons(alert));
    all->setSizeConstraint(QLayout::SetFixedSize);
  }

  int answer() const { return answer_; }

  // Escape, or the window's own close button.
  void reject() override {
    if (cancel_) cancel_->click();
  }

private:
  // The first button stands last, where the eye ends.
  QHBoxLayout* makeButtons(const NSAlert& alert) {
    std::vector<std::string> titles = alert.buttonTitles();
    if (titles.empty()) titles.push_back(localizedString("OK"));
    const std::string cancelTitle = localizedString("Cancel");
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addStretch();
    int number = NSAlert::firstButtonReturn;
    for (const std::string& title : titles) {
      auto* button = new QPushButton(literalTitle(title), this);
      button->setAutoDefault(true);
      button->setMinimumWidth(80);
      connect(button, &QPushButton::clicked, this, [this, number] {
        answer_ = number;
        accept();
      });
      if (number == NSAlert::firstButtonReturn) {
        button->setDefault(true);
        button->setFocus();
      }
      if (titles.size() == 1 || title == cancelTitle || title == "Cancel") cancel_ = button;
      row->insertWidget(1, button);
      ++number;
    }
    return row;
  }

  QPushButton* cancel_ = nullptr;
  int answer_ = NSAlert::firstButtonReturn;
};

}  // namespace

int runAlertPanel(const NSAlert& alert) {
  if (ApplicationHost::shared().isMovingFocus()) {
    ApplicationHost::shared().afterFocusChange([alert] { runAlertPanel(alert); });
    return NSAlert::firstButtonReturn;
  }
  const NSRunLoop::ModalSession session;
  while (QWidget* popUp = QApplication::activePopupWidget()) {
    if (!popUp->close()) break;
  }
  const QPointer<QWidget> behind = QApplication::activeWindow();
  AlertPanel panel(alert, behind);
  panel.exec();
  // Not every desktop gives the keyboard back by itself.
  if (behind) behind->activateWindow();
  return panel.answer();
}

}  // namespace tarn
