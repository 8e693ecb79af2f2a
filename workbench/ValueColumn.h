#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Bytes.h"
#include "workbench/codec/TextCodec.h"

namespace tarn {

// One column of a list, set, hash or sorted set: for each row its raw bytes, the text that stands for them, and whether
// that text is the `\B` form. The three are in step because only the bytes are stored: a row's text is made when it is
// asked for, which is when the row comes into sight. Main queue only.
class ValueColumn final {
public:
  std::size_t rowCount() const { return data_.size(); }

  // The rows as the server sent them, shown under `title`: a character set or "Base64". Answers with the rows before.
  std::vector<Bytes> assign(std::vector<Bytes> rows, std::string_view title);

  // Shows the same bytes under another title.
  void setTitle(std::string_view title) { title_ = title; }

  const std::vector<Bytes>& data() const { return data_; }

  // The unescaped text of a row below rowCount(), and its flag.
  RowText row(std::size_t index) const;

private:
  std::vector<Bytes> data_;
  std::string title_;
};

}  // namespace tarn
