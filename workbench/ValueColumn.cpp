#include "workbench/ValueColumn.h"

#include <utility>

namespace tarn {

std::vector<Bytes> ValueColumn::assign(std::vector<Bytes> rows, std::string_view title) {
  title_ = title;
  return std::exchange(data_, std::move(rows));
}

RowText ValueColumn::row(std::size_t index) const {
  return rowDisplayText(data_[index].view(), title_);
}

}  // namespace tarn
