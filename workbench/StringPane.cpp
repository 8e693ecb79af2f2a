#include "workbench/StringPane.h"

#include <utility>

#include "platform/foundation/NSLocalizedString.h"
#include "workbench/codec/TextCodec.h"

namespace tarn {

std::optional<std::string> stringText(std::string_view bytes, std::string_view title) {
  if (title == base64Title) return bytesToBase64(bytes);
  return bytesToText(bytes, charsetForTitle(title));
}

std::optional<std::string> stringTextUnderNewTitle(std::string_view shown, std::string_view oldTitle,
                                                   std::string_view newTitle, std::string_view value) {
  if (shown.empty()) return stringText(value, newTitle);
  const bool fromBase64 = oldTitle == base64Title;
  const std::optional<Bytes> source = fromBase64 ? base64ToBytes(shown) : textToBytes(shown, charsetForTitle(oldTitle));
  if (!source) return stringText(value, newTitle);
  std::optional<std::string> text = stringText(source->view(), newTitle);
  return text || fromBase64 ? text : stringText(value, newTitle);
}

StringPane::StringPane(OperationTabLayout& outlets, TabState& state) : outlets_(outlets), state_(state) {
  empty();
}

void StringPane::showValueData() {
  show(stringText(state_.currentValueData.view(), outlets_.popValueDataCharset.titleOfSelectedItem()));
}

void StringPane::empty() {
  state_.currentValueData = Bytes();
  outlets_.valueDataStringTxtView.setPlaceholderString(
      localizedString("Nothing to show. Choose a key on the left to read its value."));
  outlets_.valueDataStringTxtView.setString("");
}

void StringPane::changeCharset() {
  const std::string oldTitle =
      std::exchange(state_.oldValueDataCharset, outlets_.popValueDataCharset.titleOfSelectedItem());
  if (outlets_.valueDataStringTxtView.isEmpty() && state_.currentValueData.empty()) return;
  show(stringTextUnderNewTitle(outlets_.valueDataStringTxtView.string(), oldTitle, state_.oldValueDataCharset,
                               state_.currentValueData.view()));
}

void StringPane::show(const std::optional<std::string>& text) {
  state_.oldValueDataCharset = outlets_.popValueDataCharset.titleOfSelectedItem();
  const std::string noText =
      localizedString("The value is no text in {0}. Another character set, or Base64, may show it.");
  outlets_.valueDataStringTxtView.setPlaceholderString(
      text ? localizedString("The value is empty.") : replacingPlaceholder(noText, "{0}", state_.oldValueDataCharset));
  outlets_.valueDataStringTxtView.setString(text.value_or(""));
}

}  // namespace tarn
