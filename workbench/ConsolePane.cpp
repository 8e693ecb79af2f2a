#include "workbench/ConsolePane.h"

#include "platform/foundation/Log.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/SplitText.h"
#include "wire/console/ConsoleTokeniser.h"

#include <algorithm>

namespace tarn {

namespace {

// The log never shows more of a line: it may hold a password.
void logCommand(std::string_view command) {
  logLine("do command:::" + std::string(consoleCommandWord(command)));
}

}  // namespace

ConsolePane::ConsolePane(WorkbenchTab& tab) : tab_(tab) {
  tab_.outlets.txtViewCli.setString(localizedString("Welcome: "));
  txtViewCLiCurrentReadOnlyLen_ = tab_.outlets.txtViewCli.length();
  tab_.outlets.txtViewCli.setDelegate(this);
}

ConsolePane::~ConsolePane() {
  tab_.outlets.txtViewCli.setDelegate(nullptr);
}

bool ConsolePane::shouldChangeTextInRanges(NSTextView& view, const std::vector<NSRange>& ranges,
                                           const std::vector<std::string>& replacementStrings) {
  if (&view != &tab_.outlets.txtViewCli) return true;
  const auto isProtected = [this](const NSRange& range) { return range.location < txtViewCLiCurrentReadOnlyLen_; };
  if (std::any_of(ranges.begin(), ranges.end(), isProtected)) return false;
  if (replacementStrings.empty()) return false;

  std::string input = replacementStrings.front();
  std::replace(input.begin(), input.end(), '\r', '\n');
  const auto breaks = static_cast<std::size_t>(std::count(input.begin(), input.end(), '\n'));
  if (breaks == 0) return true;

  std::vector<std::string_view> lines = splitText(input, "\n");
  std::string_view openLine;
  if (lines.size() > breaks) {
    openLine = lines.back();
    lines.pop_back();
  }
  const bool hasMoreBreaks = lines.size() < breaks && openLine.empty();
  for (const std::string_view line : lines)
    runPastedLine(line);
  if (hasMoreBreaks && input.ends_with('\n')) runTypedLine();
  if (!openLine.empty()) {
    tab_.outlets.txtViewCli.appendString(openLine);
    scrollToOpenLine();
  }
  return false;
}

void ConsolePane::runPastedLine(std::string_view line) {
  const std::string command(line);
  say(command + "\n" + prompt());
  logCommand(command);
  if (tab_.queue.server()) {
    const std::string result = reply(command);
    if (!result.empty()) say(result + "\n" + prompt());
  }
  scrollToOpenLine();
}

void ConsolePane::runTypedLine() {
  // Without the blank that ends the prompt: it means nothing, and a translated one may end in something else.
  const std::string command = tab_.outlets.txtViewCli.substringFromIndex(txtViewCLiCurrentReadOnlyLen_);
  logCommand(command);
  if (tab_.queue.server()) {
    const std::string result = reply(command);
    say("\n" + prompt() + result + "\n" + prompt());
  }
  scrollToOpenLine();
}

// The line acts on the database that the tab shows. Without a connection nothing is selected, since the line makes a
// new one.
std::string ConsolePane::reply(const std::string& command) {
  ServerItem::ConsoleReply reply;
  const int database = tab_.queue.database();
  const std::string awaited = replacingPlaceholder(localizedString("Waiting for the server's reply to '{0}'."), "{0}",
                                                   consoleCommandWord(command));
  const bool isSent = tab_.queue.performInDatabase(
      database, [&](ServerItem& server) { reply = server.replyToConsoleLine(command); },
      {.awaited = awaited, .runsAlone = ServerItem::mayMoveDatabase(command), .connects = true});
  if (reply.movedDatabase) tab_.queue.server()->showSelectedDatabase();
  if (isSent) return std::move(reply.text);
  return replacingPlaceholder(localizedString("(Err) Not sent, since db{0} can not be selected."), "{0}",
                              std::to_string(database));
}

std::string ConsolePane::prompt() const {
  return (tab_.queue.server() ? tab_.queue.server()->connectionName() : std::string()) + ": ";
}

void ConsolePane::say(const std::string& text) {
  tab_.outlets.txtViewCli.appendString(text);
  txtViewCLiCurrentReadOnlyLen_ = tab_.outlets.txtViewCli.length();
}

void ConsolePane::scrollToOpenLine() {
  tab_.outlets.txtViewCli.scrollRangeToVisible(tab_.outlets.txtViewCli.selectedRange());
}

}  // namespace tarn
