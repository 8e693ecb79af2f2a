#include "workbench/KeyDeleter.h"

#include "workbench/KeyPlace.h"
#include "workbench/SaveQuestions.h"
#include "workbench/StatusTexts.h"

#include <mutex>
#include <optional>

namespace tarn {

KeyDeleter::KeyDeleter(OperationTabLayout& outlets, TabState& state, TabQueue& queue, KeyForm& form, StringPane& string,
                       ValuePanes& panes)
    : outlets_(outlets), state_(state), queue_(queue), form_(form), string_(string), panes_(panes) {}

void KeyDeleter::deleteKey() {
  const std::optional<Bytes> key = form_.keyDataFromForm();
  if (!key || key->empty()) return;
  const int database = state_.database;
  if (!askToDelete(form_.keyDisplayText(*key))) return;
  queue_.addInDatabase(database, [this, key = *key, database](ServerItem& server, const TabPoster& tab) {
    tab.post([this] { queue_.updateDealingQueueLabel(); });
    if (server.deleteKey(key)) return tab.post([this, key, database] { removeDeletedKey(key, database); });
    tab.post([this] { queue_.updateDealingQueueLabel(); });
  });
}

void KeyDeleter::removeDeletedKey(const Bytes& key, int database) {
  // The list may be another database's by now.
  if (state_.database == database) {
    {
      const std::lock_guard lock(state_.keysLock);
      removeKey(state_.keys, key);
      outlets_.tableKeys.reloadData();
    }
    // The next key would look chosen over a blank form.
    outlets_.tableKeys.deselectAll();
  }
  form_.emptyKey();
  outlets_.txtTTL.setStringValue("");
  outlets_.labType.setStringValue(typeText(""));
  outlets_.labKeySize.setStringValue(keySizeText(0));
  outlets_.labDataSize.setStringValue(dataSizeText(0));
  const bool rowButtonsWereHidden = outlets_.btnAddRow.isHidden();
  panes_.showValuePane("");
  outlets_.btnAddRow.setHidden(rowButtonsWereHidden);
  outlets_.btnDeleteSelectedRows.setHidden(rowButtonsWereHidden);
  string_.blank();
  queue_.updateDealingQueueLabel();
}

}  // namespace tarn
