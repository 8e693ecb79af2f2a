#include "workbench/RowConversion.h"

#include "codec/EscapeForms.h"
#include "codec/TextCodec.h"

#include <string>
#include <utility>

namespace tarn {

namespace {

bool holdsBackslash(std::string_view text) {
  return text.find('\\') != std::string_view::npos;
}

ConversionReason reasonOf(std::string_view text, bool translate) {
  if (text.starts_with(base64Marker)) return ConversionReason::marker;
  if (translate && unescapeControlsInSequence(text) != text) return ConversionReason::escapes;
  return ConversionReason::unusualForm;
}

std::optional<ConvertedRow> changeOfRow(const ValueColumn& column, std::size_t row, std::string_view title,
                                        bool translate) {
  const std::string text = column.row(row).text;
  std::optional<Bytes> converted = convertedRow(text, title, translate);
  if (!converted || *converted == column.data()[row]) return std::nullopt;
  return ConvertedRow{row, *std::move(converted), reasonOf(text, translate)};
}

}  // namespace

std::optional<Bytes> convertedRow(std::string_view text, std::string_view title, bool translate) {
  if (text.starts_with(base64Marker)) return base64ToBytes(text.substr(base64Marker.size()));
  if (title == base64Title) return base64ToBytes(text);
  const CharsetEnum charset = charsetForTitle(title);
  if (!translate || !holdsBackslash(text)) return textToBytes(text, charset);
  return textToBytes(unescapeControlsInSequence(text), charset);
}

std::optional<Bytes> convertedString(std::string_view text, std::string_view title) {
  return title == base64Title ? base64ToBytes(text) : textToBytes(text, charsetForTitle(title));
}

std::vector<ConvertedRow> rowsChangedByConversion(const ValueColumn& column, std::string_view title, bool translate) {
  std::vector<ConvertedRow> changes;
  const std::vector<std::size_t> setRows = column.rowsWithSetText();
  auto nextSet = setRows.begin();
  const CharsetEnum charset = charsetForTitle(title);
  const bool showsTitle = column.title() == title;
  // Text made from the bytes stands for them: Base64 always; else what begins with no marker and holds no escapes, as
  // long as the charset has one way to write it, or none to read it.
  const auto standsForItself = [&](std::string_view bytes) {
    if (!showsTitle) return false;
    if (title == base64Title) return true;
    return !holdsBackslash(bytes) && (charset == CharsetEnum::utf8 || isPlainAscii(bytes, charset));
  };
  for (std::size_t row = 0; row < column.rowCount(); ++row) {
    const bool isSet = nextSet != setRows.end() && *nextSet == row;
    if (isSet) ++nextSet;
    if (!isSet && standsForItself(column.data()[row].view())) continue;
    if (auto change = changeOfRow(column, row, title, translate)) changes.push_back(*std::move(change));
  }
  return changes;
}

}  // namespace tarn
