#pragma once

#include "codec/TextCodec.h"
#include "platform/foundation/Bytes.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {

// One column of a list, set, hash or sorted set: for each row its raw bytes, the text that stands for them, and whether
// that text is the `\B` form. The bytes are what is stored: a row's text is made from them when it is asked for, which
// is when the row comes into sight. Only the few rows whose text a hand or a save has set to something that their bytes
// alone wouldn't show have one on record. Main queue only; a row is an index below rowCount().
class ValueColumn final {
public:
  std::size_t rowCount() const { return data_.size(); }

  // The rows as the server sent them, shown under `title`: a character set or "Base64". Answers with the rows before.
  std::vector<Bytes> assign(std::vector<Bytes> rows, std::string_view title);

  // Shows the bytes of all rows under another title, whatever text was set.
  void setTitle(std::string_view title);

  // What the server sent for each row, or what the last edit or save made of it.
  const std::vector<Bytes>& data() const { return data_; }

  const std::string& title() const { return title_; }

  // Stays as long as each row keeps its place: whoever keeps a row's number across events compares it.
  int revision() const { return revision_; }

  // The unescaped text of a row, and its flag.
  RowText row(std::size_t row) const;

  // The rows whose text isn't what their bytes alone would show; ascending.
  std::vector<std::size_t> rowsWithSetText() const;

  // What a hand made of a row.
  void setRow(std::size_t row, std::string text, Bytes bytes, bool isBase64);
  // Other bytes under the text that the row shows.
  void setData(std::size_t row, Bytes bytes);

  // A row without text and bytes, in front of the one at `row` or behind the last.
  void insertRow(std::size_t row);
  // `rows` ascend.
  void removeRows(const std::vector<std::size_t>& rows);

private:
  struct SetText {
    std::size_t row;
    RowText shown;
  };

  void setText(std::size_t row, RowText shown);

  std::vector<Bytes> data_;
  // Ascending by row.
  std::vector<SetText> setTexts_;
  std::string title_;
  int revision_ = 0;
};

// Takes the elements at these ascending places away, all at once.
template <class Row>
void eraseRows(std::vector<Row>& from, const std::vector<std::size_t>& rows) {
  if (rows.empty()) return;
  auto gone = rows.begin();
  std::size_t kept = *gone;
  for (std::size_t row = kept; row < from.size(); ++row) {
    if (gone != rows.end() && *gone == row) {
      ++gone;
    } else {
      from[kept++] = std::move(from[row]);
    }
  }
  from.resize(kept);
}

}  // namespace tarn
