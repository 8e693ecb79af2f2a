// Feeds the codec with bytes that are in no character set, and with text. The first byte chooses the character set.

#include "codec/EscapeForms.h"
#include "codec/TextCodec.h"
#include "platform/foundation/Base64.h"
#include "platform/foundation/Utf8.h"
#include "tests/fuzz/Fuzz.h"

#include <string>
#include <string_view>

namespace {

using namespace tarn;

// What could be written reads as the same text.
void checkText(std::string_view text, CharsetEnum charset) {
  const auto bytes = textToBytes(text, charset);
  require(!bytes || bytesToText(bytes->view(), charset) == text);
}

}  // namespace

void tarn::fuzz(std::string_view input) {
  if (input.empty()) return;
  constexpr int charsets = static_cast<int>(CharsetEnum::KOI8_U) + 1;
  const auto charset = static_cast<CharsetEnum>(static_cast<unsigned char>(input.front()) % charsets);
  const std::string_view bytes = input.substr(1);
  checkText(bytes, charset);
  if (const auto text = bytesToText(bytes, charset)) {
    require(isValidUtf8(*text));
    checkText(*text, charset);
  }
  require(unescapeControls(escapeControls(bytes)) == bytes);
  require(unescapeControlsForSearch(bytes).size() <= bytes.size());
  require(unescapeControlsInSequence(bytes).size() <= bytes.size());
  require(base64Decode(base64Encode(bytes)).value().view() == bytes);
  if (const auto decoded = base64Decode(bytes)) require(base64Encode(decoded->view()).size() == bytes.size());
}
