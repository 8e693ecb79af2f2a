#include "platform/appkit/tabs/TabViewWidget.h"

#include "platform/appkit/tabs/TabBarWidget.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

namespace tarn {

namespace {

const auto settleEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

}  // namespace

TabViewWidget::TabViewWidget(QWidget* parent)
    : QWidget(parent), bar_(new TabBarWidget(this)), pages_(new QStackedWidget(this)), empty_(new QLabel(pages_)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(bar_);
  column->addWidget(pages_, 1);
  empty_->setAlignment(Qt::AlignCenter);
  empty_->setWordWrap(true);
  empty_->setTextFormat(Qt::PlainText);
  empty_->setForegroundRole(QPalette::PlaceholderText);
  pages_->addWidget(empty_);
}

QString TabViewWidget::placeholderText() const {
  return empty_->text();
}

void TabViewWidget::setPlaceholderText(const QString& text) {
  empty_->setText(text);
}

void TabViewWidget::addPage(QWidget* page) {
  std::erase(leaving_, page);
  if (pages_->indexOf(page) < 0) pages_->addWidget(page);
}

void TabViewWidget::removePage(QWidget* page) {
  leaving_.emplace_back(page);
  if (settling_) return;
  settling_ = true;
  setUpdatesEnabled(false);
  QApplication::postEvent(this, new QEvent(settleEvent), Qt::HighEventPriority);
}

void TabViewWidget::showPage(QWidget* page) {
  shown_ = page;
  if (!settling_) pages_->setCurrentWidget(page ? page : empty_);
}

bool TabViewWidget::event(QEvent* event) {
  if (event->type() != settleEvent) return QWidget::event(event);
  settle();
  return true;
}

void TabViewWidget::settle() {
  settling_ = false;
  showPage(shown_);
  for (const QPointer<QWidget>& page : std::exchange(leaving_, {})) {
    if (!page) continue;
    pages_->removeWidget(page);
    page->hide();
  }
  setUpdatesEnabled(true);
}

}  // namespace tarn
