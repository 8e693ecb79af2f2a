#pragma once

#include "platform/appkit/NSTextView.h"
#include "workbench/WorkbenchTab.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// The console of a tab: one text view in which what was said and the line being typed share a text. What was said is
// protected; Enter, or a line end in what is pasted, has a line run. The text only grows. Main queue only, where a line
// also waits for its reply.
class ConsolePane final : public NSTextViewDelegate {
public:
  explicit ConsolePane(WorkbenchTab& tab);
  ~ConsolePane() override;

  void textDidEndEditing(NSTextView&) override {}
  bool shouldChangeTextInRanges(NSTextView& view, const std::vector<NSRange>& ranges,
                                const std::vector<std::string>& replacementStrings) override;

private:
  void runPastedLine(std::string_view line);
  void runTypedLine();
  std::string reply(const std::string& command);
  std::string prompt() const;
  // Adds to the text, and protects all of it.
  void say(const std::string& text);
  void scrollToOpenLine();

  WorkbenchTab& tab_;
  // How much of the text can't be changed, in the view's units.
  std::size_t txtViewCLiCurrentReadOnlyLen_;
};

}  // namespace tarn
