// Feeds what takes texts of the wire apart: the nodes of a cluster, the key counts, and a line of the console.

#include "tests/fuzz/Fuzz.h"
#include "wire/cluster/NodeAddress.h"
#include "wire/command/Keyspace.h"
#include "wire/console/ConsoleTokeniser.h"

#include <string>
#include <string_view>

namespace {

using namespace tarn;

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
  checkLine(input);
  if (const auto target = redirectTarget(input)) checkAddress(*target, input);
  for (const NodeAddress& master : mastersIn(input))
    checkAddress(master, input);
  for (const std::string_view line : keyspaceLines(input)) {
    const auto keys = databaseKeys(line);
    require(isWithin(line, input) && (!keys || (isWithin(keys->name, line) && isWithin(keys->count, line))));
  }
}
