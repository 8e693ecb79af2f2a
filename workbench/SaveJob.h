#pragma once

#include "wire/ServerItem.h"
#include "workbench/RowConversion.h"
#include "workbench/ValueColumn.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// One column of the rows that a save writes: those of the form, or a copy of them, so that they stay what they were
// while a question is up. Main queue only; the column outlives it.
class RowsToSave final {
public:
  RowsToSave(ValueColumn& column, std::string_view title, bool translate);

  const std::vector<Bytes>& data() const { return copy_ ? *copy_ : column_->data(); }
  // What the conversion of the rows' text would change.
  const std::vector<ConvertedRow>& changes() const { return changes_; }

  // Before a question, behind which the form's rows may be replaced.
  void takeCopy() { copy_ = column_->data(); }
  void keepBytes() { changes_.clear(); }
  // Makes the changes, in the form too if its rows are still those that were asked about.
  void convert();

private:
  ValueColumn* column_;
  int revision_;
  std::vector<ConvertedRow> changes_;
  std::optional<std::vector<Bytes>> copy_;
};

// What one save writes, taken from the form before the first question and not looked up there again.
struct SaveJob {
  int database = 0;
  std::string type;
  Bytes key;
  // The key whose value the form shows.
  std::optional<Bytes> oldKey;
  // The form was loaded from another key than it names now.
  bool isOtherKey = false;
  // The old key goes before the new one is written.
  bool isMove = false;
  // Seconds; -1 is for ever.
  std::int64_t ttl = -1;

  // A String's.
  Bytes value;
  // One column of rows, or two of a Hash. The scores are those of the form or a copy, as the rows are.
  std::vector<RowsToSave> columns;
  const std::vector<std::string>* formScores = nullptr;
  std::optional<std::vector<std::string>> scoreCopy;

  const std::vector<std::string>& scores() const { return scoreCopy ? *scoreCopy : *formScores; }
  void takeCopies();
  // True if the server took all of it; what fails is shown by the wire.
  bool write(ServerItem& server) const;
  std::size_t dataSize() const;
};

}  // namespace tarn
