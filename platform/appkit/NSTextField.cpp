#include "platform/appkit/NSTextField.h"

#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/LabelWidget.h"
#include "platform/appkit/text/TextFieldWidget.h"

#include <QPointer>

namespace tarn {

struct NSTextField::Private {
  // One of both, as long as the window has it.
  QPointer<TextFieldWidget> field;
  QPointer<LabelWidget> label;
  NSTextFieldDelegate* delegate = nullptr;
  std::unique_ptr<NSFormatter> formatter;
  // Ends the connections to the widget with the wrapper.
  QObject receiver;
};

NSTextField::NSTextField(QWidget* widget) : NSControl(widget), d_(std::make_unique<Private>()) {
  d_->field = qobject_cast<TextFieldWidget*>(widget);
  d_->label = qobject_cast<LabelWidget*>(widget);
  if (!d_->field) return;
  d_->field->setFormatter([this] { return d_->formatter.get(); });
  QObject::connect(d_->field, &TextInputWidget::editingBegan, &d_->receiver, [this] {
    if (d_->delegate) d_->delegate->controlTextDidBeginEditing(tag());
  });
  QObject::connect(d_->field, &TextInputWidget::editingEnded, &d_->receiver, [this] {
    if (d_->delegate) d_->delegate->controlTextDidEndEditing({tag(), stringValue(), this});
  });
  QObject::connect(d_->field, &TextFieldWidget::returnPressed, &d_->receiver, [this] { sendAction(); });
}

NSTextField::~NSTextField() {
  if (d_->field) d_->field->setFormatter({});
}

std::string NSTextField::stringValue() const {
  if (d_->field) return d_->field->utf8();
  return d_->label ? toUtf8(d_->label->text()) : std::string();
}

void NSTextField::setStringValue(std::string_view text) {
  if (d_->field) d_->field->setUtf8(text);
  if (d_->label) d_->label->setText(toQString(text));
}

void NSTextField::setDelegate(NSTextFieldDelegate* delegate) {
  d_->delegate = delegate;
}

void NSTextField::setFormatter(std::unique_ptr<NSFormatter> formatter) {
  d_->formatter = std::move(formatter);
}

void NSTextField::setPlaceholderString(std::string_view text) {
  if (d_->field) d_->field->setPlaceholderText(toQString(text));
}

NSSecureTextField::NSSecureTextField(QWidget* widget) : NSTextField(widget) {
  if (auto* field = qobject_cast<TextFieldWidget*>(widget)) field->setSecure(true);
}

}  // namespace tarn
