#include "workbench/KeyText.h"

#include "codec/EscapeForms.h"
#include "codec/TextCodec.h"
#include "platform/foundation/NSLocalizedString.h"

namespace tarn {

std::string keyDisplayText(std::string_view key, std::string_view title) {
  const RowText shown = rowDisplayText(key, title);
  return shown.isBase64 ? shown.text : escapeControls(shown.text);
}

TypedBytes keyDataFromText(std::string_view text, std::string_view title, bool translate) {
  const bool marked = translate && text.starts_with(base64Marker);
  if (marked || title == base64Title) {
    const std::string alert = localizedString("Can not decode Base64 Key '{0}'");
    return {base64ToBytes(marked ? text.substr(base64Marker.size()) : text), replacingPlaceholder(alert, "{0}", text)};
  }
  // The title goes in first: the key may hold what looks like a placeholder.
  const std::string alert =
      replacingPlaceholder(localizedString("Can not encode the Key '{0}' to the charset '{1}'"), "{1}", title);
  return {textToBytes(translate ? unescapeControls(text) : std::string(text), charsetForTitle(title)),
          replacingPlaceholder(alert, "{0}", text)};
}

std::string keyTextTranslated(std::string_view text, bool nowOn) {
  if (nowOn) return escapeControls(text);
  if (text.starts_with(base64Marker)) text.remove_prefix(base64Marker.size());
  return unescapeControls(text);
}

}  // namespace tarn
