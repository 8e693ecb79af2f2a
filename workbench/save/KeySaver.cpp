#include "workbench/save/KeySaver.h"

#include "platform/appkit/FocusKeeper.h"
#include "platform/foundation/DecimalNumber.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/command/KeyWriting.h"
#include "workbench/StatusTexts.h"
#include "workbench/save/RowsToSave.h"
#include "workbench/save/SaveQuestions.h"

#include <algorithm>
#include <cstdint>
#include <memory>
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
  // A lone sign is the beginning of a number.
  if (std::ranges::any_of(rows.scores(), [](const std::string& score) { return score.empty() || score == "-"; })) {
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
  // The key that the form showed before the user changed its text, or that its value is from.
  std::optional<Bytes> oldKey;
  // The form's value isn't from this key, which may exist all the same.
  bool isOtherKey = false;
  // The user has given the value of the old key another name.
  bool isRenamed = false;
  // The old key goes.
  bool isMove = false;
  // Seconds; -1 is for ever.
  std::int64_t ttl = -1;
  // How the form showed the value.
  TextForm form;

  // A String's.
  Bytes value;
  // All others'.
  std::optional<RowsToSave> rows;

  WriteOutcome write(ServerItem& server) const;
  std::size_t dataSize() const;
};

WriteOutcome KeySaver::Job::write(ServerItem& server) const {
  KeyWriting writing(key, ttl);
  if (isMove) writing.moveFrom(*oldKey);
  switch (type) {
    case ValueType::string:
      writing.setString(value);
      break;
    case ValueType::set:
      writing.setSet(rows->column(0));
      break;
    case ValueType::list:
      writing.setList(rows->column(0));
      break;
    case ValueType::hash:
      writing.setHash(rows->column(0), rows->column(1));
      break;
    case ValueType::sortedSet:
      writing.setSortedSet(rows->scores(), rows->column(0));
      break;
  }
  return server.write(writing);
}

std::size_t KeySaver::Job::dataSize() const {
  // A fixed number stands for each score, whatever its length.
  constexpr std::size_t bytesOfScore = 4;
  return rows ? rows->byteSize() + bytesOfScore * rows->scores().size() : value.size();
}

KeySaver::KeySaver(WorkbenchTab& tab, KeyBrowser& browser, KeyForm& form, ValuePanes& panes)
    : tab_(tab), browser_(browser), form_(form), panes_(panes) {}

void KeySaver::save() {
  const FocusKeeper focus(tab_.outlets.txtKey);
  tab_.outlets.txtKey.becomeFirstResponder();
  panes_.commitCells();
  saveForm();
  focus.restore();
}

void KeySaver::saveForm() {
  Job job;
  if (!takeHead(job) || !takeValue(job)) return;
  const int shownString = panes_.string().revision();
  if (!ask(job)) return;
  const bool isStringOnForm = !job.rows && panes_.string().revision() == shownString;
  if (isStringOnForm) panes_.string().writingValue(job.value);
  tab_.queue.updateDealingQueueLabel();
  if (!saveKeyValue(job)) {
    tab_.queue.poster().post([this] { tab_.queue.updateDealingQueueLabel(); });
    return;
  }
  if (isStringOnForm) panes_.string().valueWritten(std::move(job.value));
  if (isStringOnForm || (job.rows && job.rows->isOnShow())) takeAsShown(job);
}

// What the form shows is on the server now, and the value of no other key any more.
void KeySaver::takeAsShown(const Job& job) {
  form_.takeAsShown(job.key);
  tab_.loadedKey = job.key;
  formSaved_();
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
  job.oldKey = form_.lastShownKey() ? form_.lastShownKey() : tab_.loadedKey;
  job.isOtherKey = form_.isKeyTyped() && job.oldKey != job.key;
  job.isRenamed = job.isOtherKey && job.oldKey && !tab_.isNew;
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

bool KeySaver::ask(Job& job) {
  return askAboutValue(job) && askAboutDoubles(job) && askAboutName(job) && askAboutExistingKey(job);
}

bool KeySaver::askAboutValue(Job& job) const {
  return job.rows ? askAboutRows(job) : askAboutString(job);
}

bool KeySaver::askAboutString(Job& job) const {
  const StringPane& pane = panes_.string();
  if (tab_.unseen || !pane.isOnShow()) {
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
  if (tab_.unseen) {
    job.rows->takeCopy();
    job.rows->keepBytes();
    return askToReplaceHiddenRows(tab_.unseen->rows);
  }
  if (job.rows->changes().empty()) return true;
  job.rows->takeCopy();
  const BytesAnswer answer = askAboutChangedRows(job.rows->changes(), job.form);
  if (answer == BytesAnswer::keep) job.rows->keepBytes();
  return answer != BytesAnswer::cancel;
}

bool KeySaver::askAboutDoubles(Job& job) const {
  const auto field = job.type == ValueType::hash ? job.rows->doubledField() : std::nullopt;
  if (!field) return true;
  job.rows->takeCopy();
  return askAboutDoubledField(rowText(field->view(), job.form));
}

bool KeySaver::askAboutName(Job& job) const {
  if (!job.isRenamed) return true;
  if (job.rows) job.rows->takeCopy();
  const TextForm form = tab_.keyForm();
  const MoveAnswer answer = askAboutMove(keyText(job.oldKey->view(), form), keyText(job.key.view(), form));
  job.isMove = answer == MoveAnswer::move;
  return answer != MoveAnswer::cancel;
}

bool KeySaver::askAboutExistingKey(Job& job) {
  if (!job.isOtherKey) return true;
  std::pair<bool, std::string> type;
  tab_.queue.performInDatabase(job.database, [&](ServerItem& server) { type = server.keyType(job.key); },
                               {.awaited = awaitedText(job)});
  const auto& [isKnown, word] = type;
  if (!isKnown || word == "none") return isKnown;
  if (job.rows) job.rows->takeCopy();
  const std::optional<ValueType> known = valueTypeOfWord(word);
  return askToReplaceKey(keyText(job.key.view(), tab_.keyForm()), known ? valueTypeTitle(*known) : word);
}

// --- Writing -------------------------------------------------------------------------------------------------------

bool KeySaver::saveKeyValue(Job& job) {
  const std::shared_ptr<ServerItem> server = tab_.queue.server();
  if (!server) return false;
  const std::size_t keyPosition = browser_.positionOfSavedKey(job.oldKey);
  if (job.rows) job.rows->convert();
  const ServerItem::Epoch began = server->epoch();
  WriteOutcome outcome;
  const bool isTried = tab_.queue.performInDatabase(
      job.database, [&](ServerItem& server) { outcome = job.write(server); }, {.awaited = awaitedText(job)});
  if (!isTried) return false;
  if (outcome.isOldKeyGone && listShows(job.database)) {
    browser_.removeKey(*job.oldKey);
    // The next key would look chosen over a form that isn't its own.
    if (!outcome.isWritten) tab_.outlets.tableKeys.deselectAll();
  }
  if (outcome.isWritten) finishSave(job, keyPosition);
  if (outcome.message.empty()) return outcome.isWritten;
  if (server->wasClosedSince(began)) outcome.message = localizedString("You gave up waiting for this save.");
  server->showServerError(std::move(outcome.message), std::move(outcome.whatIsLeft));
  return outcome.isWritten;
}

std::string KeySaver::awaitedText(const Job& job) const {
  return replacingPlaceholder(localizedString("Waiting for the server to save the key '{0}'."), "{0}",
                              keyText(job.key.view(), tab_.keyForm()));
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
