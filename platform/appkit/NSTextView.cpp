#include "platform/appkit/NSTextView.h"

#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/TextViewWidget.h"

#include <QPointer>

namespace tarn {

struct NSTextView::Private {
  QPointer<TextViewWidget> view;
  NSTextViewDelegate* delegate = nullptr;
  // Ends the connections to the widget with the wrapper.
  QObject receiver;
};

NSTextView::NSTextView(QWidget* widget) : NSView(widget), d_(std::make_unique<Private>()) {
  d_->view = qobject_cast<TextViewWidget*>(widget);
  if (!d_->view) return;
  QObject::connect(d_->view, &TextInputWidget::editingEnded, &d_->receiver, [this] {
    if (d_->delegate) d_->delegate->textDidEndEditing(*this);
  });
  d_->view->setShouldChange([this](std::size_t position, std::size_t length, const QString& replacement) {
    return !d_->delegate ||
           d_->delegate->shouldChangeTextInRanges(*this, {NSRange{position, length}}, {toUtf8(replacement)});
  });
}

NSTextView::~NSTextView() {
  if (d_->view) d_->view->setShouldChange({});
}

std::string NSTextView::string() const {
  return d_->view ? d_->view->utf8() : std::string();
}

void NSTextView::setString(std::string_view text) {
  if (d_->view) d_->view->setUtf8(text);
}

void NSTextView::appendString(std::string_view text) {
  if (d_->view) d_->view->appendUtf8(text);
}

std::size_t NSTextView::length() const {
  return d_->view ? d_->view->textLength() : 0;
}

std::string NSTextView::substringFromIndex(std::size_t location) const {
  return d_->view ? d_->view->utf8(location) : std::string();
}

bool NSTextView::isEdited() const {
  return d_->view && d_->view->isEdited();
}

NSRange NSTextView::selectedRange() const {
  if (!d_->view) return {};
  return {d_->view->selectionStart(), d_->view->selectionEnd() - d_->view->selectionStart()};
}

void NSTextView::scrollRangeToVisible(NSRange range) {
  if (!d_->view) return;
  if (range.length > 0) d_->view->scrollToPosition(range.location + range.length);
  d_->view->scrollToPosition(range.location);
}

void NSTextView::setDelegate(NSTextViewDelegate* delegate) {
  d_->delegate = delegate;
}

void NSTextView::setPlaceholderString(std::string_view text) {
  if (d_->view) d_->view->setPlaceholderText(toQString(text));
}

}  // namespace tarn
