#include "workbench/text/TypedText.h"

#include "codec/EscapeForms.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/Utf8.h"
#include "workbench/text/MarkedBase64.h"

#include <utility>

namespace tarn {

namespace {

// No marker and no escapes.
std::optional<Bytes> bytesOfPlain(std::string_view text, TextForm form) {
  return form.isBase64 ? base64Decode(text) : textToBytes(text, form.charset);
}

bool holdsBackslash(std::string_view text) {
  return text.find('\\') != std::string_view::npos;
}

// What follows the first two characters, whatever these are; nothing where there are fewer.
std::optional<std::string_view> behindTwoCharacters(std::string_view text) {
  for (int characters = 0; characters < 2; ++characters) {
    if (text.empty()) return std::nullopt;
    do {
      text.remove_prefix(1);
    } while (!text.empty() && isFollowingByte(text.front()));
  }
  return text;
}

}  // namespace

std::string keyText(std::string_view key, TextForm form) {
  if (!form.isBase64) {
    if (const auto text = bytesToText(key, form.charset)) return escapeControls(*text);
  }
  return markedBase64(key);
}

BytesOrAlert keyFromText(std::string_view text, TextForm form) {
  const bool marked = form.translates && isMarked(text);
  if (marked || form.isBase64) {
    const std::string alert = localizedString("Can not decode Base64 Key '{0}'");
    return {marked ? bytesOfMarked(text) : base64Decode(text), replacingPlaceholder(alert, "{0}", text)};
  }
  // The name goes in first: the key may hold what looks like a placeholder.
  const std::string alert =
      replacingPlaceholder(localizedString("Can not encode the Key '{0}' to the charset '{1}'"), "{1}", form.name());
  return {textToBytes(form.translates ? unescapeControls(text) : std::string(text), form.charset),
          replacingPlaceholder(alert, "{0}", text)};
}

std::string keyTextTranslated(std::string_view text, bool nowOn) {
  if (nowOn) return escapeControls(text);
  if (isMarked(text)) text.remove_prefix(base64Marker.size());
  return unescapeControls(text);
}

std::string rowText(std::string_view bytes, TextForm form) {
  if (!form.isBase64) {
    if (auto text = bytesToText(bytes, form.charset)) return *std::move(text);
  }
  return markedBase64(bytes);
}

std::string cellText(std::string_view text, bool translates) {
  return translates ? escapeControlsForCell(text) : std::string(text);
}

TypedCell rowTypedInCell(std::string text, TextForm form) {
  using Outcome = TypedCell::Outcome;
  if (form.isBase64 || isMarked(text)) {
    const std::optional<std::string_view> base64 = behindTwoCharacters(text);
    if (!base64) return {Outcome::tooShort, {}, {}};
    std::optional<Bytes> bytes = base64Decode(*base64);
    if (!bytes) return {Outcome::noBase64, {}, {}};
    return {Outcome::taken, std::move(text), *std::move(bytes)};
  }
  std::string clear = form.translates ? unescapeControlsInSequence(text) : std::move(text);
  std::optional<Bytes> bytes = textToBytes(clear, form.charset);
  if (!bytes) return {Outcome::noText, {}, {}};
  return {Outcome::taken, std::move(clear), *std::move(bytes)};
}

TypedRow rowTypedInEditor(std::string text, TextForm form, const Bytes& before) {
  const bool marked = isMarked(text);
  if (form.isBase64 && !marked) return {markedBase64(before.view()), before, true};
  std::optional<Bytes> bytes = marked ? bytesOfMarked(text) : textToBytes(text, form.charset);
  if (!bytes) return {rowText(before.view(), {form.charset}), before};
  return {std::move(text), *std::move(bytes)};
}

std::optional<Bytes> bytesOfRow(std::string_view text, TextForm form) {
  if (isMarked(text)) return bytesOfMarked(text);
  if (form.isBase64 || !form.translates || !holdsBackslash(text)) return bytesOfPlain(text, form);
  return textToBytes(unescapeControlsInSequence(text), form.charset);
}

ConversionReason conversionReason(std::string_view text, TextForm form) {
  if (isMarked(text)) return ConversionReason::marker;
  if (form.translates && unescapeControlsInSequence(text) != text) return ConversionReason::escapes;
  return ConversionReason::unusualForm;
}

bool standsForItself(std::string_view bytes, TextForm form) {
  if (form.isBase64) return true;
  return !holdsBackslash(bytes) && (form.charset == CharsetEnum::utf8 || isPlainAscii(bytes, form.charset));
}

std::optional<std::string> stringText(std::string_view bytes, TextForm form) {
  if (form.isBase64) return base64Encode(bytes);
  return bytesToText(bytes, form.charset);
}

BytesOrAlert stringFromText(std::string_view text, TextForm form) {
  return {
      bytesOfPlain(text, form),
      form.isBase64
          ? localizedString("Can not decode Base64 Value Data, Please Check your Base64 Value Data if is available.")
          : localizedString("Can not encode the value to Value Data, Please change Value Data's charset besides the "
                            "'Reload' button.")};
}

StringInNewForm stringInNewForm(std::string_view shown, TextForm oldForm, TextForm newForm, std::string_view value) {
  if (shown.empty()) return {stringText(value, newForm), false};
  const std::optional<Bytes> source = bytesOfPlain(shown, oldForm);
  // An edit that was saved, or taken back, is none any more.
  if (!source || source->view() == value) return {stringText(value, newForm), false};
  std::optional<std::string> text = stringText(source->view(), newForm);
  if (text || oldForm.isBase64) return {std::move(text), true};
  return {stringText(value, newForm), false};
}

}  // namespace tarn
