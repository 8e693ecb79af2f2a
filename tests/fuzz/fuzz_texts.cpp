// Feeds what is pure: the codec, whose character set the first byte chooses, the nodes of a cluster, the key counts,
// and a line of the console.

#include "codec/EscapeForms.h"
#include "codec/TextCodec.h"
#include "platform/foundation/Base64.h"
#include "platform/foundation/Utf8.h"
#include "tests/fuzz/Fuzz.h"
#include "wire/cluster/NodeAddress.h"
#include "wire/command/Keyspace.h"
#include "wire/console/ConsoleTokeniser.h"

namespace {

using namespace tarn;

// What could be written reads as the same text.
void checkText(std::string_view text, CharsetEnum charset) {
  const auto bytes = textToBytes(text, charset);
  require(!bytes || bytesToText(bytes->view(), charset) == text);
}

void checkCodec(CharsetEnum charset, std::string_view bytes) {
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

// An address is in the text, and reads the same when it stands alone.
void checkAddress(const NodeAddress& address, std::string_view text) {
  require(address.port >= 0 && address.port <= 65535 && text.find(address.host) != std::string_view::npos);
  require(nodeAddress(address.host + ":" + std::to_string(address.port) + "@1") == address);
}

bool isWithin(std::string_view part, std::string_view text) {
  return part.data() >= text.data() && part.data() + part.size() <= text.data() + text.size();
}

// Typed in quotes, each word comes back, but for those that hold a quote of their own.
void checkLine(std::string_view line) {
  require(isWithin(consoleCommandWord(line), line));
  const auto tokens = consoleTokens(line);
  if (!tokens) return;
  std::string typed;
  for (const std::string& token : *tokens) {
    if (token.find('"') != std::string::npos) return;
    typed += " \"";
    for (const char character : token)
      typed.append(character == '\\' ? 2 : 1, character);
    typed += '"';
  }
  require(consoleTokens(typed) == tokens);
}

}  // namespace

void tarn::fuzz(std::string_view input) {
  if (input.empty()) return;
  constexpr int charsets = static_cast<int>(CharsetEnum::KOI8_U) + 1;
  checkCodec(static_cast<CharsetEnum>(static_cast<unsigned char>(input.front()) % charsets), input.substr(1));
  checkLine(input);
  if (const auto target = redirectTarget(input)) checkAddress(*target, input);
  for (const NodeAddress& master : mastersIn(input))
    checkAddress(master, input);
  for (const std::string_view line : keyspaceLines(input)) {
    const auto keys = databaseKeys(line);
    require(isWithin(line, input) && (!keys || (isWithin(keys->name, line) && isWithin(keys->count, line))));
  }
}
