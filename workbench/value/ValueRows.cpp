#include "workbench/value/ValueRows.h"

namespace tarn {

void ValueRows::exchange(LoadedRows& rows, TextForm form) {
  ++revision_;
  rows.columns.resize(columns_.size());
  for (std::size_t column = 0; column < columns_.size(); ++column)
    rows.columns[column] = columns_[column].assign(std::move(rows.columns[column]), form);
  std::swap(rows.scores, scores_);
}

void ValueRows::setForm(TextForm form) {
  for (ValueColumn& column : columns_)
    column.setForm(form);
}

void ValueRows::insertRow(std::size_t row) {
  ++revision_;
  for (ValueColumn& column : columns_)
    column.insertRow(row);
  if (hasScores_) scores_.insert(scores_.begin() + static_cast<std::ptrdiff_t>(row), std::string());
}

void ValueRows::removeRow(std::size_t row) {
  ++revision_;
  for (ValueColumn& column : columns_)
    column.removeRow(row);
  if (hasScores_) scores_.erase(scores_.begin() + static_cast<std::ptrdiff_t>(row));
}

TypedCell::Outcome ValueRows::takeCellText(std::size_t column, std::size_t row, std::string text, TextForm form) {
  if (text == cellText(columns_[column].text(row), form.translates)) return TypedCell::Outcome::unchanged;
  TypedCell typed = rowTypedInCell(std::move(text), form);
  if (typed.outcome == TypedCell::Outcome::taken)
    columns_[column].setRow(row, std::move(typed.text), std::move(typed.bytes));
  return typed.outcome;
}

ValueRows::EditorOutcome ValueRows::takeEditorText(std::size_t column, std::size_t row, std::string text,
                                                   TextForm form) {
  ValueColumn& rows = columns_[column];
  if (text == rows.text(row)) return EditorOutcome::unchanged;
  TypedRow typed = rowTypedInEditor(std::move(text), form, rows.data()[row]);
  rows.setRow(row, std::move(typed.text), std::move(typed.bytes));
  return typed.isRefused ? EditorOutcome::refused : EditorOutcome::taken;
}

}  // namespace tarn
