#include "platform/appkit/table/TableCell.h"

namespace tarn {

void TableCell::reset() {
  text_.clear();
  toolTip_.clear();
  editable_ = false;
  tag_ = 0;
  delegate_ = nullptr;
  formatter_.reset();
}

void TableCell::setText(std::string text) {
  text_ = std::move(text);
  host_.cellChanged(*this);
}

std::string TableCell::stringValue() const {
  return host_.isOpen(*this) ? host_.openText() : text_;
}

void TableCell::setStringValue(std::string_view text) {
  setText(std::string(text));
  if (host_.isOpen(*this)) host_.setOpenText(text);
}

}  // namespace tarn
