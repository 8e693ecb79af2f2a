#pragma once

#include "workbench/text/TypedText.h"
#include "workbench/value/LoadedRows.h"
#include "workbench/value/ValueColumn.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace tarn {

// The rows of a list, set, hash or sorted set, as they are shown, edited and saved: one column of text or two, and for
// a sorted set scores, which stay text as the server wrote them. Plain data, which knows no view. Main queue only.
class ValueRows final {
public:
  ValueRows(std::size_t columns, bool hasScores) : columns_(columns), hasScores_(hasScores) {}

  std::size_t rowCount() const { return columns_.front().rowCount(); }
  bool hasRow(int row) const { return row >= 0 && static_cast<std::size_t>(row) < rowCount(); }
  // Stays as long as each row keeps its position: whoever keeps a row's number across events compares it.
  int revision() const { return revision_; }

  const std::vector<ValueColumn>& columns() const { return columns_; }
  bool hasScores() const { return hasScores_; }
  const std::vector<std::string>& scores() const { return scores_; }

  // The rows as the server sent them; those before are then in `rows`. None at all where `rows` has no columns.
  void exchange(LoadedRows& rows, TextForm form);
  // Shows the bytes of all rows in another form, whatever text was set.
  void setForm(TextForm form);

  // A row without text and bytes, in front of the one at `row` or behind the last.
  void insertRow(std::size_t row);
  void removeRow(std::size_t row);

  // What the user typed into a cell, or into the editor of a column. The first changes the row only where the text was
  // taken.
  TypedCell::Outcome takeCellText(std::size_t column, std::size_t row, std::string text, TextForm form);
  // Nothing changes where the row has that text; else the editor is to show what the row now has where it says so.
  enum class EditorOutcome { unchanged, taken, refused };
  EditorOutcome takeEditorText(std::size_t column, std::size_t row, std::string text, TextForm form);

  void clearCell(std::size_t column, std::size_t row) { columns_[column].setRow(row, {}, {}); }
  // Other bytes under the text that the row shows.
  void setData(std::size_t column, std::size_t row, Bytes bytes) { columns_[column].setData(row, std::move(bytes)); }
  void setScore(std::size_t row, std::string score) { scores_[row] = std::move(score); }

private:
  std::vector<ValueColumn> columns_;
  const bool hasScores_;
  std::vector<std::string> scores_;
  int revision_ = 0;
};

}  // namespace tarn
