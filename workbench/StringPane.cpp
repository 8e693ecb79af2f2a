#include "workbench/StringPane.h"

#include "codec/TextCodec.h"
#include "platform/foundation/NSLocalizedString.h"
#include "workbench/RowConversion.h"

#include <utility>

namespace tarn {

std::optional<std::string> stringText(std::string_view bytes, std::string_view title) {
  if (title == base64Title) return bytesToBase64(bytes);
  return bytesToText(bytes, charsetForTitle(title));
}

RetitledString stringTextUnderNewTitle(std::string_view shown, std::string_view oldTitle, std::string_view newTitle,
                                       std::string_view value) {
  if (shown.empty()) return {stringText(value, newTitle), false};
  const bool fromBase64 = oldTitle == base64Title;
  const std::optional<Bytes> source = convertedString(shown, oldTitle);
  // An edit that was saved, or taken back, is none any more.
  if (!source || source->view() == value) return {stringText(value, newTitle), false};
  std::optional<std::string> text = stringText(source->view(), newTitle);
  if (text || fromBase64) return {std::move(text), true};
  return {stringText(value, newTitle), false};
}

StringPane::StringPane(OperationTabLayout& outlets, TabState& state) : outlets_(outlets), state_(state) {
  empty();
}

void StringPane::showValueData() {
  wasEdited_ = false;
  show(stringText(state_.currentValueData.view(), outlets_.popValueDataCharset.titleOfSelectedItem()));
}

void StringPane::empty() {
  state_.currentValueData = Bytes();
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
  const std::string oldTitle =
      std::exchange(state_.oldValueDataCharset, outlets_.popValueDataCharset.titleOfSelectedItem());
  if (outlets_.valueDataStringTxtView.isEmpty() && state_.currentValueData.empty()) return;
  const bool wasOnShow = isOnShow_;
  wasEdited_ = isEdited();
  const RetitledString retitled = stringTextUnderNewTitle(outlets_.valueDataStringTxtView.string(), oldTitle,
                                                          state_.oldValueDataCharset, state_.currentValueData.view());
  show(retitled.text);
  if (retitled.isShownText) {
    isOnShow_ = isOnShow_ && wasOnShow;
  } else {
    wasEdited_ = false;
  }
}

void StringPane::writingValue(const Bytes& value) {
  if (isOnShow_) state_.currentValueData = value;
}

void StringPane::valueWritten(Bytes value) {
  state_.currentValueData = std::move(value);
  isOnShow_ = true;
  outlets_.valueDataStringTxtView.setPlaceholderString(localizedString("The value is empty."));
}

bool StringPane::isEdited() const {
  return wasEdited_ || outlets_.valueDataStringTxtView.isEdited();
}

void StringPane::show(const std::optional<std::string>& text) {
  isOnShow_ = text.has_value();
  state_.oldValueDataCharset = outlets_.popValueDataCharset.titleOfSelectedItem();
  const std::string noText =
      localizedString("The value is no text in {0}. Another character set, or Base64, may show it.");
  setText(text.value_or(""), text ? localizedString("The value is empty.")
                                  : replacingPlaceholder(noText, "{0}", state_.oldValueDataCharset));
}

void StringPane::setText(std::string_view text, const std::string& placeholder) {
  ++revision_;
  outlets_.valueDataStringTxtView.setPlaceholderString(placeholder);
  outlets_.valueDataStringTxtView.setString(text);
}

}  // namespace tarn
