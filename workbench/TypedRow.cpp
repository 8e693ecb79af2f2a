#include "workbench/TypedRow.h"

#include "codec/EscapeForms.h"

#include <utility>

namespace tarn {

namespace {

// What follows the first two characters, whatever these are; nothing where there are fewer.
std::optional<std::string_view> behindMarker(std::string_view text) {
  const auto isFirstByte = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; };
  std::size_t place = 0;
  for (int characters = 0; characters < 2; ++characters) {
    if (place == text.size()) return std::nullopt;
    do {
      ++place;
    } while (place < text.size() && !isFirstByte(text[place]));
  }
  return text.substr(place);
}

}  // namespace

CellRow rowTypedInCell(std::string text, std::string_view title, bool translate) {
  using Outcome = CellRow::Outcome;
  if (title == base64Title || text.starts_with(base64Marker)) {
    const std::optional<std::string_view> base64 = behindMarker(text);
    if (!base64) return {Outcome::tooShort, {}, {}, {}};
    std::optional<Bytes> bytes = base64ToBytes(*base64);
    if (!bytes) return {Outcome::noBase64, {}, {}, {}};
    return {Outcome::taken, std::move(text), std::move(*bytes), true};
  }
  std::string clear = translate ? unescapeControlsInSequence(text) : std::move(text);
  std::optional<Bytes> bytes = textToBytes(clear, charsetForTitle(title));
  if (!bytes) return {Outcome::noText, {}, {}, {}};
  return {Outcome::taken, std::move(clear), std::move(*bytes), std::nullopt};
}

EditorRow rowTypedInEditor(std::string text, std::string_view title, const Bytes& before) {
  const bool isMarked = text.starts_with(base64Marker);
  if (title == base64Title && !isMarked) return {rowDisplayText(before.view(), base64Title), before, true};
  const CharsetEnum charset = charsetForTitle(title);
  std::optional<Bytes> bytes =
      isMarked ? base64ToBytes(std::string_view(text).substr(base64Marker.size())) : textToBytes(text, charset);
  if (!bytes) return {rowDisplayText(before.view(), charsetName(charset)), before};
  return {{std::move(text), isMarked}, std::move(*bytes)};
}

}  // namespace tarn
