#include "workbench/text/SearchPattern.h"

#include "codec/EscapeForms.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/SplitText.h"
#include "platform/foundation/Utf8.h"
#include "workbench/text/MarkedBase64.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarn {

namespace {

constexpr std::string_view signsOfAGlob = "\\[*?";

void appendLiterally(std::string& pattern, char byte) {
  if (signsOfAGlob.find(byte) != std::string_view::npos) pattern += '\\';
  pattern += byte;
}

std::string literally(std::string_view bytes) {
  std::string pattern;
  for (const char byte : bytes)
    appendLiterally(pattern, byte);
  return pattern;
}

// A text without the signs that were typed for the server, a letter in the place of each.
struct TextAndSigns {
  std::string text;
  // A backslash together with the character that it guards.
  std::vector<std::string> signs;
};

TextAndSigns withoutSigns(std::string_view typed, char letter) {
  TextAndSigns result;
  for (std::size_t i = 0; i < typed.size(); ++i) {
    if (signsOfAGlob.find(typed[i]) == std::string_view::npos) {
      result.text += typed[i];
      continue;
    }
    const bool isGuard = typed[i] == '\\' && i + 1 < typed.size();
    // A character of several bytes stands for itself without a guard.
    if (isGuard && !isAscii(typed.substr(i + 1, 1))) continue;
    result.signs.emplace_back(typed.substr(i, isGuard ? 2 : 1));
    result.text += letter;
    if (isGuard) ++i;
  }
  return result;
}

// Nothing where the text has no form in the character set. Where the signs stand among the bytes is found by writing
// the text with one letter in their places and with another one: in a set with shift states it can't be cut there.
std::optional<std::string> globOfText(std::string_view typed, CharsetEnum charset) {
  const TextAndSigns text = withoutSigns(typed, 'a');
  const std::optional<Bytes> bytes = textToBytes(text.text, charset);
  if (!bytes || text.signs.empty()) return bytes ? std::optional(literally(bytes->view())) : std::nullopt;
  const std::optional<Bytes> others = textToBytes(withoutSigns(typed, 'b').text, charset);
  if (!others) return std::nullopt;
  std::string pattern;
  auto sign = text.signs.begin();
  for (std::size_t i = 0; i < bytes->size(); ++i) {
    if (bytes->view()[i] != others->view()[i]) {
      pattern += *sign++;
    } else {
      appendLiterally(pattern, bytes->view()[i]);
    }
  }
  return pattern;
}

std::optional<std::string> globOfBase64(std::optional<Bytes> bytes) {
  if (!bytes) return std::nullopt;
  return literally(bytes->view());
}

std::optional<std::string> globOfPart(std::string_view part, TextForm form) {
  if (isMarked(part)) return globOfBase64(bytesOfMarked(part));
  return form.isBase64 ? globOfBase64(base64Decode(part)) : globOfText(part, form.charset);
}

std::string alertOfPart(std::string_view part, TextForm form) {
  if (isMarked(part)) {
    return replacingPlaceholder(localizedString("Can not decode base64 part of the Search Key '{0}'"), "{0}", part);
  }
  if (form.isBase64) return localizedString("Can not encode the Search Key from Base64");
  return replacingPlaceholder(localizedString("Can not encode the Search Key to charset '{0}'"), "{0}", form.name());
}

}  // namespace

BytesOrAlert searchPattern(std::string_view typed, TextForm form, Match match) {
  const std::string text = unescapeControlsForSearch(typed);
  const bool part = match == Match::part;
  if (text.empty()) return part ? BytesOrAlert("*"_bytes) : BytesOrAlert();

  // Where a key begins, its byte order mark stands; behind a star none does.
  const bool beginsAnywhere = part || text.front() == '*';
  TextForm partForm = form;
  if (beginsAnywhere) partForm.charset = charsetBehindMark(form.charset);
  std::string pattern = beginsAnywhere ? "*" : "";
  bool first = true;
  for (const std::string_view each : form.isBase64 ? std::vector<std::string_view>{text} : splitText(text, "*")) {
    if (!std::exchange(first, false)) pattern += '*';
    const auto glob = globOfPart(each, partForm);
    if (!glob) return {std::nullopt, alertOfPart(each, form)};
    pattern += *glob;
    partForm.charset = charsetBehindMark(form.charset);
  }
  if (part || text.back() == '*') pattern += '*';
  return BytesOrAlert(Bytes(pattern));
}

}  // namespace tarn
