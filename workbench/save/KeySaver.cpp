#include "workbench/save/KeySaver.h"

#include "platform/foundation/DecimalNumber.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "workbench/StatusTexts.h"
#include "workbench/save/RowsToSave.h"
#include "workbench/save/SaveQuestions.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {

namespace {

// The TTL in seconds that the text says: -1, for ever, or above 0. Nothing for all else.
std::optional<std::int64_t> ttlFromText(std::string_view text) {
  const std::optional<std::int64_t> ttl = decimalInteger(text);
  return ttl && (*ttl == -1 || *ttl > 0) ? ttl : std::nullopt;
}

std::string noRowsText(ValueType type) {
  switch (type) {
    case ValueType::set:
      return localizedString("Set Can Not be Empty. If you want to remove this set click 'Delete'.");
    case ValueType::list:
      return localizedString("List Can Not be Empty. If you want to remove this list click 'Delete'.");
    case ValueType::hash:
      return localizedString("Hash Can Not be Empty. If you want to remove this hash click 'Delete'.");
    case ValueType::string:
    case ValueType::sortedSet:
      break;
  }
  return localizedString("SortedSet Can Not be Empty. If you want to remove this sortedSet click 'Delete'.");
}

std::string noKeyText() {
  return localizedString("Please Enter the Key.");
}

// What is wrong with the head of the form, in this order: a type that can be saved, a key, a TTL.
std::optional<std::string> alertOfHead(bool hasType, std::string_view key, std::string_view ttl) {
  if (!hasType) {
    return localizedString("To Create a Key-Value Data, you need click 'New' and Choose A Value Type First.");
  }
  if (key.empty()) return noKeyText();
  if (ttl.empty() || ttl == "-") return localizedString("Please Enter the TTL.");
  if (!ttlFromText(ttl)) {
    return localizedString("TTL must be -1 or >0. -1 is eternal, >0 is the specified expire time in seconds.");
  }
  return std::nullopt;
}

std::optional<std::string> alertOfRows(ValueType type, const ValueRows& rows) {
  if (rows.rowCount() == 0) return noRowsText(type);
  if (std::ranges::any_of(rows.scores(), &std::string::empty)) {
    return localizedString("All 'SortedSet Value Score' must be set.");
  }
  return std::nullopt;
}

bool refuseWith(std::string alert) {
  showAlert(std::move(alert));
  return false;
}

}  // namespace

// What one save writes, taken from the form before the first question and not looked up there again.
struct KeySaver::Job {
  int database = 0;
  ValueType type = ValueType::string;
  Bytes key;
  // The key whose value the form shows.
  std::optional<Bytes> oldKey;
  // The form was loaded from another key than it names now.
  bool isOtherKey = false;
  // The old key goes before the new one is written.
  bool isMove = false;
  // Seconds; -1 is for ever.
  std::int64_t ttl = -1;
  // How the form showed the value.
  TextForm form;

  // A String's.
  Bytes value;
  // All others'.
  std::optional<RowsToSave> rows;

  // True if the server took all of it; what fails is shown by the wire.
  bool write(ServerItem& server) const;
  std::size_t dataSize() const;
};

bool KeySaver::Job::write(ServerItem& server) const {
  if (type == ValueType::string) return server.setValue(key, value, ttl);
  if (!server.deleteKey(key)) return false;
  const std::vector<Bytes>& first = rows->column(0);
  if (type == ValueType::set) return server.addSetMembers(key, first, ttl);
  if (type == ValueType::list) return server.pushListItems(key, first, ttl);
  if (type == ValueType::hash) return server.setHashFields(key, first, rows->column(1), ttl);
  return server.addSortedSetMembers(key, rows->scores(), first, ttl);
}

std::size_t KeySaver::Job::dataSize() const {
  // A fixed number stands for each score, whatever its length.
  constexpr std::size_t bytesOfScore = 4;
  return rows ? rows->byteSize() + bytesOfScore * rows->scores().size() : value.size();
}

KeySaver::KeySaver(WorkbenchTab& tab, KeyBrowser& browser, KeyForm& form, ValuePanes& panes)
    : tab_(tab), browser_(browser), form_(form), panes_(panes) {}

void KeySaver::save() {
  tab_.outlets.txtKey.becomeFirstResponder();
  panes_.commitCells();
  Job job;
  if (!takeHead(job) || !takeValue(job)) return;
  const int shownString = panes_.string().revision();
  if (!ask(job)) return;
  const bool isStringOnForm = !job.rows && panes_.string().revision() == shownString;
  if (isStringOnForm) panes_.string().writingValue(job.value);
  tab_.queue.updateDealingQueueLabel();
  if (!saveKeyValue(job)) {
    tab_.queue.poster().post([this] { tab_.queue.updateDealingQueueLabel(); });
  } else if (isStringOnForm) {
    panes_.string().valueWritten(std::move(job.value));
  }
}

// --- What is written -----------------------------------------------------------------------------------------------

bool KeySaver::takeHead(Job& job) const {
  const std::string ttl = form_.ttlText();
  auto alert = alertOfHead(tab_.type.has_value(), tab_.outlets.txtKey.stringValue(), ttl);
  if (alert) return refuseWith(*std::move(alert));
  std::optional<Bytes> key = form_.keyDataFromForm();
  if (!key) return false;
  // The marker alone stands for no bytes.
  if (key->empty()) return refuseWith(noKeyText());
  job.database = tab_.queue.database();
  job.type = *tab_.type;
  job.ttl = *ttlFromText(ttl);
  job.key = *std::move(key);
  job.oldKey = tab_.loadedKey;
  job.isOtherKey = job.oldKey && *job.oldKey != job.key && !tab_.isNew;
  job.form = tab_.valueForm();
  return true;
}

bool KeySaver::takeValue(Job& job) {
  return job.type == ValueType::string ? takeString(job) : takeRows(job);
}

bool KeySaver::takeString(Job& job) {
  BytesOrAlert value = stringFromText(panes_.string().text(), job.form);
  if (!value.hasValue()) return refuseWith(value.alert());
  job.value = value.value();
  return true;
}

bool KeySaver::takeRows(Job& job) {
  ValueRows& rows = panes_.rowsOf(job.type)->rows();
  if (auto alert = alertOfRows(job.type, rows)) return refuseWith(*std::move(alert));
  job.rows.emplace(rows, job.form);
  return true;
}

// --- Questions -----------------------------------------------------------------------------------------------------

bool KeySaver::ask(Job& job) const {
  const bool isValueTaken = job.rows ? askAboutRows(job) : askAboutString(job);
  return isValueTaken && askAboutKey(job);
}

bool KeySaver::askAboutString(Job& job) const {
  const StringPane& pane = panes_.string();
  if (!pane.isOnShow()) {
    const std::size_t bytes = pane.value().size();
    return askToReplaceHiddenString(bytes > 0 ? std::optional(bytes) : std::nullopt);
  }
  if (pane.isEdited() || job.value == pane.value()) return true;
  Bytes loaded = pane.value();
  const BytesAnswer answer = askAboutChangedString(job.form);
  if (answer == BytesAnswer::keep) job.value = std::move(loaded);
  return answer != BytesAnswer::cancel;
}

bool KeySaver::askAboutRows(Job& job) const {
  const bool isChanged = !job.rows->changes().empty();
  if (isChanged || job.isOtherKey) job.rows->takeCopy();
  if (!isChanged) return true;
  const BytesAnswer answer = askAboutChangedRows(job.rows->changes(), job.form);
  if (answer == BytesAnswer::keep) job.rows->keepBytes();
  return answer != BytesAnswer::cancel;
}

bool KeySaver::askAboutKey(Job& job) const {
  if (!job.isOtherKey) return true;
  const TextForm form = tab_.keyForm();
  const MoveAnswer answer = askAboutMove(keyText(job.oldKey->view(), form), keyText(job.key.view(), form));
  job.isMove = answer == MoveAnswer::move;
  return answer != MoveAnswer::cancel;
}

// --- Writing -------------------------------------------------------------------------------------------------------

bool KeySaver::saveKeyValue(Job& job) {
  bool isWritten = false;
  tab_.queue.performInDatabase(job.database, [&](ServerItem& server) {
    if (job.isMove && !server.deleteKey(*job.oldKey)) return;
    const std::size_t keyPosition = browser_.positionOfSavedKey(job.oldKey);
    if (job.isMove && listShows(job.database)) browser_.removeKey(*job.oldKey);
    if (job.rows) job.rows->convert();
    isWritten = job.write(server);
    if (isWritten) finishSave(job, keyPosition);
  });
  return isWritten;
}

void KeySaver::finishSave(const Job& job, std::size_t keyPosition) {
  tab_.queue.poster().post(
      [this, database = job.database, key = job.key, type = job.type, dataSize = job.dataSize(), keyPosition] {
        form_.showType(typeText(valueTypeTitle(type)));
        form_.showKeySize(key);
        form_.showDataSize(dataSizeText(dataSize));
        if (listShows(database)) browser_.showSavedKey(key, keyPosition);
        tab_.queue.updateDealingQueueLabel();
        showAlert(localizedString("Saved."));
      });
}

// The tab may have gone to another database while a question was up.
bool KeySaver::listShows(int database) const {
  return tab_.queue.database() == database;
}

}  // namespace tarn
