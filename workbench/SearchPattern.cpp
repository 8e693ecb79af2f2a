#include "workbench/SearchPattern.h"

#include "codec/EscapeForms.h"
#include "codec/TextCodec.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/SplitText.h"

#include <string>
#include <vector>

namespace tarn {

namespace {

TypedBytes markedBytes(std::string_view part) {
  const std::string alert = localizedString("Can not decode base64 part of the Search Key '{0}'");
  return {base64ToBytes(part.substr(base64Marker.size())), replacingPlaceholder(alert, "{0}", part)};
}

TypedBytes partBytes(std::string_view part, CharsetEnum charset) {
  if (part.starts_with(base64Marker)) return markedBytes(part);
  const std::string alert = localizedString("Can not encode the Search Key to charset '{0}'");
  return {textToBytes(part, charset), replacingPlaceholder(alert, "{0}", charsetName(charset))};
}

TypedBytes base64Bytes(std::string_view text) {
  if (text.starts_with(base64Marker)) return markedBytes(text);
  return {base64ToBytes(text), localizedString("Can not encode the Search Key from Base64")};
}

// The parts of the text with a star between them.
TypedBytes joinedParts(std::string_view text, CharsetEnum charset) {
  Bytes pattern;
  bool first = true;
  for (const std::string_view part : splitText(text, "*")) {
    TypedBytes bytes = partBytes(part, charset);
    if (!bytes.hasValue()) return bytes;
    if (!first) pattern.append("*");
    first = false;
    pattern.append(bytes.value().view());
  }
  return TypedBytes(std::move(pattern));
}

}  // namespace

TypedBytes searchPattern(std::string_view typed, std::string_view title, Match match) {
  const std::string text = unescapeControlsForSearch(typed);
  const bool part = match == Match::part;
  if (text.empty()) return part ? TypedBytes("*"_bytes) : TypedBytes();

  const TypedBytes middle = title == base64Title ? base64Bytes(text) : joinedParts(text, charsetForTitle(title));
  if (!middle.hasValue()) return middle;

  Bytes pattern;
  if (part || text.front() == '*') pattern.append("*");
  pattern.append(middle.value().view());
  if (part || text.back() == '*') pattern.append("*");
  return TypedBytes(std::move(pattern));
}

}  // namespace tarn
