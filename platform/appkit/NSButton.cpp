#include "platform/appkit/NSButton.h"

#include "platform/appkit/ImageIcon.h"
#include "platform/appkit/Utf8.h"

#include <QAbstractButton>
#include <QKeySequence>
#include <QVariant>

namespace tarn {

struct NSButton::Private {
  QAbstractButton* button;
  QObject connection;  // its end is the end of the signals
};

NSButton::NSButton(QWidget* widget) : NSControl(widget), d_(std::make_unique<Private>()) {
  d_->button = qobject_cast<QAbstractButton*>(widget);
  d_->button->setFocusPolicy(Qt::TabFocus);
  const QString image = d_->button->property("imageName").toString();
  if (!image.isEmpty()) d_->button->setIcon(imageIcon(NSImage::imageNamed(toUtf8(image))));
  QObject::connect(d_->button, &QAbstractButton::clicked, &d_->connection, [this] { sendAction(); });
}

NSButton::~NSButton() = default;

std::string NSButton::stringValue() const {
  return toUtf8(d_->button->text().replace(QLatin1String("&&"), QLatin1String("&")));
}

void NSButton::setStringValue(std::string_view title) {
  d_->button->setText(literalTitle(title));
}

void NSButton::setKeyEquivalent(std::string_view chord) {
  d_->button->setShortcut(QKeySequence(toQString(chord)));
}

bool NSButton::state() const {
  return d_->button->isChecked();
}

void NSButton::setState(bool on) {
  d_->button->setChecked(on);
}

}  // namespace tarn
