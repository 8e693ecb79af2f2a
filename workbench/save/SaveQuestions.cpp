#include "workbench/save/SaveQuestions.h"

#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

BytesAnswer askAboutBytes(std::string message, std::string reasons) {
  reasons +=
      localizedString("\"Keep Them\" writes the bytes as they are. \"Convert Them\" writes what the text stands for.");
  const int answer =
      askUser(std::move(message), std::move(reasons),
              {localizedString("Keep Them"), localizedString("Convert Them"), localizedString("Cancel")});
  if (answer == NSAlert::firstButtonReturn) return BytesAnswer::keep;
  return answer == NSAlert::secondButtonReturn ? BytesAnswer::convert : BytesAnswer::cancel;
}

// Those for one reason, or for any.
std::size_t rowCount(const std::vector<ConvertedRow>& changes, std::optional<ConversionReason> reason = {}) {
  std::vector<std::size_t> rows;
  for (const ConvertedRow& change : changes) {
    if (!reason || change.reason == *reason) rows.push_back(change.row);
  }
  std::ranges::sort(rows);
  return static_cast<std::size_t>(std::unique(rows.begin(), rows.end()) - rows.begin());
}

// One line, where there is such a row.
std::string reasonLine(const char* text, std::size_t rows) {
  if (rows == 0) return {};
  return replacingPlaceholder(localizedString(text), "{0}", std::to_string(rows)) + "\n";
}

bool askToReplace(std::string message) {
  return askUser(std::move(message), {}, {localizedString("Cancel"), localizedString("Replace")}) ==
         NSAlert::secondButtonReturn;
}

}  // namespace

BytesAnswer askAboutChangedRows(const std::vector<ConvertedRow>& changes, TextForm form) {
  const std::string message = localizedString("The text of {0} row(s) stands for other bytes than the value holds.");
  std::string reasons =
      reasonLine("{0} row(s) hold backslash sequences, which \"Translate escapes\" reads as control characters.",
                 rowCount(changes, ConversionReason::escapes)) +
      reasonLine("{0} row(s) begin with the characters \\B, which are read as the mark of Base64.",
                 rowCount(changes, ConversionReason::marker)) +
      reasonLine("{0} row(s) are not in the usual form of {1}.", rowCount(changes, ConversionReason::unusualForm));
  return askAboutBytes(replacingPlaceholder(message, "{0}", std::to_string(rowCount(changes))),
                       replacingPlaceholder(std::move(reasons), "{1}", form.name()));
}

BytesAnswer askAboutChangedString(TextForm form) {
  const std::string reason = localizedString("It is not in the usual form of {0}.") + "\n";
  return askAboutBytes(localizedString("The text shown stands for other bytes than the value holds."),
                       replacingPlaceholder(reason, "{0}", form.name()));
}

bool askToReplaceHiddenString(std::optional<std::size_t> bytes) {
  if (!bytes) return askToReplace(localizedString("The value isn't on show. Saving replaces it with the text shown."));
  return askToReplace(replacingPlaceholder(
      localizedString("The value isn't on show. Saving replaces its {0} byte(s) with the text shown."), "{0}",
      std::to_string(*bytes)));
}

bool askToReplaceHiddenRows(std::optional<std::size_t> rows) {
  if (!rows) return askToReplace(localizedString("The value isn't on show. Saving replaces it with the rows shown."));
  return askToReplace(replacingPlaceholder(
      localizedString("The value isn't on show. Saving replaces its {0} row(s) with the rows shown."), "{0}",
      std::to_string(*rows)));
}

bool askAboutDoubledField(std::string_view field) {
  const std::string message =
      localizedString("The field '{0}' is there more than once, with different values. Only the last one is kept.");
  return askUser(replacingPlaceholder(message, "{0}", field), {},
                 {localizedString("Cancel"), localizedString("Save")}) == NSAlert::secondButtonReturn;
}

MoveAnswer askAboutMove(std::string_view oldKey, std::string_view newKey) {
  std::string message =
      replacingPlaceholders(localizedString("Are you sure to Move old key '{0}' to key '{1}'?"), oldKey, newKey);
  const int answer =
      askUser(std::move(message), {},
              {localizedString("Sure To Move"), localizedString("Not Move But New"), localizedString("Cancel")});
  if (answer == NSAlert::firstButtonReturn) return MoveAnswer::move;
  return answer == NSAlert::secondButtonReturn ? MoveAnswer::keepOld : MoveAnswer::cancel;
}

bool askToReplaceKey(std::string_view key, std::string_view type) {
  return askToReplace(replacingPlaceholders(localizedString("There is a key '{0}' ({1}) already."), key, type));
}

}  // namespace tarn
