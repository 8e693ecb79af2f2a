#include "workbench/KeySaver.h"

#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "workbench/KeyPlace.h"
#include "workbench/SaveQuestions.h"
#include "workbench/SaveValidation.h"
#include "workbench/StatusTexts.h"

#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarn {

KeySaver::KeySaver(OperationTabLayout& outlets, TabState& state, TabQueue& queue, KeyForm& form, StringPane& string,
                   RowEditing& editing)
    : outlets_(outlets), state_(state), queue_(queue), form_(form), string_(string), editing_(editing) {}

void KeySaver::save() {
  outlets_.txtKey.becomeFirstResponder();
  editing_.commitAllEditableCells();
  SaveJob job;
  if (!takeHead(job) || !takeValue(job)) return;
  const int shownString = string_.revision();
  if (!ask(job)) return;
  const bool isStringOnForm = job.type == "String" && string_.revision() == shownString;
  if (isStringOnForm) string_.writingValue(job.value);
  queue_.updateDealingQueueLabel();
  if (!saveKeyValue(job)) {
    queue_.poster().post([this] { queue_.updateDealingQueueLabel(); });
  } else if (isStringOnForm) {
    string_.valueWritten(std::move(job.value));
  }
}

bool KeySaver::takeHead(SaveJob& job) const {
  const std::string ttl = outlets_.txtTTL.stringValue();
  if (const auto alert = alertOfHead(state_.currentType, outlets_.txtKey.stringValue(), ttl)) {
    showAlert(*alert);
    return false;
  }
  std::optional<Bytes> key = form_.keyDataFromForm();
  if (!key) return false;
  job.database = state_.database;
  job.type = state_.currentType;
  job.ttl = *ttlFromText(ttl);
  job.key = *std::move(key);
  job.oldKey = state_.oldKeyData;
  job.isOtherKey = job.oldKey && *job.oldKey != job.key && !state_.isNew;
  return true;
}

bool KeySaver::takeValue(SaveJob& job) {
  const std::string title = outlets_.popValueDataCharset.titleOfSelectedItem();
  if (job.type == "String") {
    TypedBytes value = stringDataFromText(outlets_.valueDataStringTxtView.string(), title);
    if (!value.hasValue()) {
      showAlert(value.alert());
      return false;
    }
    job.value = value.value();
    return true;
  }
  std::vector<ValueColumn*> columns{&state_.setValue};
  if (job.type == "Hash") columns = {&state_.hashKey, &state_.hashVal};
  if (job.type == "SortedSet") {
    columns = {&state_.sortedSetValue};
    job.formScores = &state_.sortedSetScore;
  }
  if (const auto alert = alertOfRows(job.type, columns.back()->rowCount(), state_.sortedSetScore)) {
    showAlert(*alert);
    return false;
  }
  for (ValueColumn* column : columns)
    job.columns.emplace_back(*column, title, outlets_.chkTranslate.state());
  return true;
}

bool KeySaver::ask(SaveJob& job) const {
  const bool isValueTaken = job.type == "String" ? askAboutString(job) : askAboutRows(job);
  return isValueTaken && askAboutKey(job);
}

bool KeySaver::askAboutString(SaveJob& job) const {
  if (!string_.isOnShow()) {
    const std::size_t bytes = state_.currentValueData.size();
    return askToReplaceHiddenString(bytes > 0 ? std::optional(bytes) : std::nullopt);
  }
  if (string_.isEdited() || job.value == state_.currentValueData) return true;
  Bytes loaded = state_.currentValueData;
  const BytesAnswer answer = askAboutChangedString(outlets_.popValueDataCharset.titleOfSelectedItem());
  if (answer == BytesAnswer::keep) job.value = std::move(loaded);
  return answer != BytesAnswer::cancel;
}

bool KeySaver::askAboutRows(SaveJob& job) const {
  std::vector<const std::vector<ConvertedRow>*> changes;
  for (const RowsToSave& column : job.columns)
    changes.push_back(&column.changes());
  const ChangedRows changed = changedRows(changes);
  if (changed.rows == 0 && !job.isOtherKey) return true;
  job.takeCopies();
  if (changed.rows == 0) return true;
  const BytesAnswer answer = askAboutChangedRows(changed, outlets_.popValueDataCharset.titleOfSelectedItem());
  if (answer == BytesAnswer::keep) {
    for (RowsToSave& column : job.columns)
      column.keepBytes();
  }
  return answer != BytesAnswer::cancel;
}

bool KeySaver::askAboutKey(SaveJob& job) const {
  if (!job.isOtherKey) return true;
  const MoveAnswer answer = askAboutMove(form_.keyDisplayText(*job.oldKey), form_.keyDisplayText(job.key));
  job.isMove = answer == MoveAnswer::move;
  return answer != MoveAnswer::cancel;
}

bool KeySaver::saveKeyValue(SaveJob& job) {
  bool isWritten = false;
  queue_.performInDatabase(job.database, [&](ServerItem& server) {
    if (job.isMove && !server.deleteKey(*job.oldKey)) return;
    const std::size_t keyRow = takeFromKeys(job);
    for (RowsToSave& column : job.columns)
      column.convert();
    isWritten = job.write(server);
    if (isWritten) finishSave(job, keyRow);
  });
  return isWritten;
}

std::size_t KeySaver::takeFromKeys(const SaveJob& job) {
  const std::lock_guard lock(state_.keysLock);
  const std::size_t keyRow = placeOfSavedKey(state_.keys, job.oldKey);
  if (job.isMove && listShows(job.database)) removeKey(state_.keys, *job.oldKey);
  outlets_.tableKeys.reloadData();
  return keyRow;
}

void KeySaver::finishSave(const SaveJob& job, std::size_t keyRow) {
  queue_.poster().post(
      [this, database = job.database, key = job.key, type = job.type, dataSize = job.dataSize(), keyRow] {
        {
          const std::lock_guard lock(state_.keysLock);
          if (listShows(database)) insertKey(state_.keys, key, keyRow);
          outlets_.labType.setStringValue(typeText(type));
          form_.showKeySize(key);
          outlets_.labDataSize.setStringValue(dataSizeText(dataSize));
          outlets_.tableKeys.reloadData();
        }
        if (listShows(database) && keyRow < state_.keys.size()) {
          outlets_.tableKeys.selectRow(static_cast<int>(keyRow));
        }
        queue_.updateDealingQueueLabel();
        showAlert(localizedString("Saved."));
      });
}

// The tab may have gone to another database while a question was up.
bool KeySaver::listShows(int database) const {
  return state_.database == database;
}

}  // namespace tarn
