#include "platform/appkit/NSPopUpButton.h"

#include "platform/appkit/Utf8.h"

#include <QComboBox>
#include <QEvent>

namespace tarn {

struct NSPopUpButton::Private final : QObject {
  QComboBox* box = nullptr;

  // The wheel over a closed pop-up would choose: a scroll that strays there must not change the database.
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::Wheel) return false;
    event->ignore();
    return true;
  }
};

NSPopUpButton::NSPopUpButton(QWidget* widget) : NSControl(widget), d_(std::make_unique<Private>()) {
  d_->box = qobject_cast<QComboBox*>(widget);
  d_->box->setFocusPolicy(Qt::TabFocus);
  d_->box->installEventFilter(d_.get());
  QObject::connect(d_->box, &QComboBox::activated, d_.get(), [this] { sendAction(); });
}

NSPopUpButton::~NSPopUpButton() = default;

void NSPopUpButton::removeAllItems() {
  d_->box->clear();
}

void NSPopUpButton::addItemWithTitle(std::string_view title) {
  d_->box->addItem(toQString(title));
}

void NSPopUpButton::addItemsWithTitles(const std::vector<std::string>& titles) {
  QStringList texts;
  for (const std::string& title : titles)
    texts.append(toQString(title));
  d_->box->addItems(texts);
}

void NSPopUpButton::selectItemAtIndex(int index) {
  d_->box->setCurrentIndex(index >= 0 && index < d_->box->count() ? index : -1);
}

void NSPopUpButton::selectItemWithTitle(std::string_view title) {
  d_->box->setCurrentIndex(d_->box->findText(toQString(title), Qt::MatchExactly | Qt::MatchCaseSensitive));
}

int NSPopUpButton::indexOfSelectedItem() const {
  return d_->box->currentIndex();
}

std::string NSPopUpButton::titleOfSelectedItem() const {
  return toUtf8(d_->box->currentText());
}

}  // namespace tarn
