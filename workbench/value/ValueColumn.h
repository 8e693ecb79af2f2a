#pragma once

#include "platform/foundation/Bytes.h"
#include "workbench/text/TextForm.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tarn {

// One column of a list, set, hash or sorted set: for each row its raw bytes and the text that stands for them. The
// bytes are what is stored: a row's text is made from them when it is asked for, which is when the row comes into
// sight. Only the few rows whose text the user or a save has set to something that their bytes alone wouldn't show have
// one on record. Main queue only; a row is an index below rowCount().
class ValueColumn final {
public:
  std::size_t rowCount() const { return data_.size(); }

  // The rows as the server sent them. Answers with the rows before.
  std::vector<Bytes> assign(std::vector<Bytes> rows, TextForm form);

  // Shows the bytes of all rows in another form, whatever text was set.
  void setForm(TextForm form);

  // The form of the rows' text, which holds no escapes.
  TextForm form() const { return form_; }

  // What the server sent for each row, or what the last edit or save made of it.
  const std::vector<Bytes>& data() const { return data_; }

  std::string text(std::size_t row) const;

  // The rows whose text isn't what their bytes alone would show; ascending.
  std::vector<std::size_t> rowsWithSetText() const;

  // What the user made of a row.
  void setRow(std::size_t row, std::string text, Bytes bytes);
  // Other bytes under the text that the row shows.
  void setData(std::size_t row, Bytes bytes);

  // A row without text and bytes, in front of the one at `row` or behind the last.
  void insertRow(std::size_t row);
  void removeRow(std::size_t row);

private:
  struct SetText {
    std::size_t row;
    std::string text;
  };

  void setText(std::size_t row, std::string text);

  std::vector<Bytes> data_;
  // Ascending by row.
  std::vector<SetText> setTexts_;
  TextForm form_;
};

}  // namespace tarn
