#pragma once

#include "resources/OperationTabLayout.h"

#include <string_view>

namespace tarn {

// Which of the four value panes shows, and the widths of the tables' columns. Main queue only.
class ValuePanes final {
public:
  explicit ValuePanes(OperationTabLayout& outlets);

  // The pane of the type; that of a String where the type is none or unknown.
  void showValuePane(std::string_view type);

  // Fits the columns of the value tables to their panes, also those of hidden panes.
  void doResize();

private:
  OperationTabLayout& outlets_;
};

}  // namespace tarn
