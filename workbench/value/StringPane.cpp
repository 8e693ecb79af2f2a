#include "workbench/value/StringPane.h"

#include "platform/foundation/NSLocalizedString.h"
#include "workbench/text/TypedText.h"

#include <utility>

namespace tarn {

StringPane::StringPane(WorkbenchTab& tab) : tab_(tab) {
  empty();
}

void StringPane::showValue(Bytes value) {
  value_ = std::move(value);
  wasEdited_ = false;
  show(stringText(value_.view(), tab_.valueForm()));
}

void StringPane::empty() {
  value_ = Bytes();
  wasEdited_ = false;
  isOnShow_ = false;
  setText("", localizedString("Nothing to show. Choose a key on the left to read its value."));
}

void StringPane::blank() {
  empty();
  isOnShow_ = true;
  setText("", localizedString("The value is empty."));
}

void StringPane::changeCharset() {
  const TextForm oldForm = std::exchange(shownForm_, tab_.valueForm());
  if (tab_.outlets.valueDataStringTxtView.isEmpty() && value_.empty()) return;
  const bool wasOnShow = isOnShow_;
  wasEdited_ = isEdited();
  const StringInNewForm shown = stringInNewForm(text(), oldForm, shownForm_, value_.view());
  show(shown.text);
  if (shown.isShownText) {
    isOnShow_ = isOnShow_ && wasOnShow;
  } else {
    wasEdited_ = false;
  }
}

bool StringPane::isEdited() const {
  return wasEdited_ || tab_.outlets.valueDataStringTxtView.isEdited();
}

void StringPane::writingValue(const Bytes& value) {
  if (isOnShow_) value_ = value;
}

void StringPane::valueWritten(Bytes value) {
  value_ = std::move(value);
  isOnShow_ = true;
  tab_.outlets.valueDataStringTxtView.setPlaceholderString(localizedString("The value is empty."));
}

void StringPane::show(const std::optional<std::string>& text) {
  isOnShow_ = text.has_value();
  shownForm_ = tab_.valueForm();
  const std::string noText =
      localizedString("The value is no text in {0}. Another character set, or Base64, may show it.");
  setText(text.value_or(""),
          text ? localizedString("The value is empty.") : replacingPlaceholder(noText, "{0}", shownForm_.name()));
}

void StringPane::setText(std::string_view text, const std::string& placeholder) {
  ++revision_;
  tab_.outlets.valueDataStringTxtView.setPlaceholderString(placeholder);
  tab_.outlets.valueDataStringTxtView.setString(text);
}

}  // namespace tarn
