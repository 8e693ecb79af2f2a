#pragma once

#include "workbench/text/TypedText.h"
#include "workbench/value/ValueRows.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// A row whose bytes would change if its text were converted.
struct ConvertedRow {
  std::size_t column = 0;
  std::size_t row = 0;
  Bytes bytes;
  ConversionReason reason = ConversionReason::unusualForm;
};

// The rows that a save writes: those of the form, or a copy of them, so that they stay what they were while a question
// is up. Main queue only, but for the rows themselves, which any thread may read while nobody changes them; the form's
// rows outlive it.
class RowsToSave final {
public:
  RowsToSave(ValueRows& rows, TextForm form);

  const std::vector<Bytes>& column(std::size_t column) const;
  const std::vector<std::string>& scores() const { return copy_ ? copy_->scores : rows_->scores(); }
  std::size_t byteSize() const;

  // What the conversion of the rows' text would change: by column, and ascending in it.
  const std::vector<ConvertedRow>& changes() const { return changes_; }

  // A field that several rows would write with other values; the server keeps the last.
  std::optional<Bytes> doubledField() const;

  // Before a question, behind which the form's rows may be replaced.
  void takeCopy();
  void keepBytes() { changes_.clear(); }
  // Makes the changes, in the form too if its rows are still those that were asked about.
  void convert();

  // The form still shows these rows.
  bool isOnShow() const { return rows_->revision() == revision_; }

private:
  struct Copy {
    std::vector<std::vector<Bytes>> columns;
    std::vector<std::string> scores;
  };

  void addChanges(std::size_t columnIndex, TextForm form);
  std::vector<std::string_view> convertedColumn(std::size_t column) const;

  ValueRows* rows_;
  int revision_;
  std::vector<ConvertedRow> changes_;
  std::optional<Copy> copy_;
};

}  // namespace tarn
