#pragma once

#include <string_view>

#include "resources/OperationTabLayout.h"

namespace tarn {

// Which of the four value panes shows, the text of the String pane, and the widths of the tables' columns. Main queue
// only.
class ValuePanes final {
public:
  explicit ValuePanes(OperationTabLayout& outlets);

  // The pane of the type; that of a String where the type is none or unknown.
  void showValuePane(std::string_view type);

  // The text of a String. An empty one says why it is empty in a line that isn't part of it: `hint`.
  void showString(std::string_view text, std::string_view hint);
  // Nothing is loaded.
  void emptyString();

  // Fits the columns of the value tables to their panes, also those of hidden panes.
  void doResize();

private:
  OperationTabLayout& outlets_;
};

}  // namespace tarn
