#include "workbench/keys/KeyDeleter.h"

#include "workbench/StatusTexts.h"
#include "workbench/save/SaveQuestions.h"
#include "workbench/text/TypedText.h"

#include <optional>

namespace tarn {

KeyDeleter::KeyDeleter(WorkbenchTab& tab, KeyBrowser& browser, KeyForm& form, ValuePanes& panes)
    : tab_(tab), browser_(browser), form_(form), panes_(panes) {}

void KeyDeleter::deleteKey() {
  const std::optional<Bytes> key = form_.keyDataFromForm();
  if (!key || key->empty()) return;
  const int database = tab_.queue.database();
  if (!askToDelete(keyText(key->view(), tab_.keyForm()))) return;
  tab_.queue.addInDatabase(database, [this, key = *key, database](ServerItem& server, const TabPoster& tab) {
    if (server.deleteKey(key)) return tab.post([this, key, database] { removeDeletedKey(key, database); });
    tab.post([this] { tab_.queue.updateDealingQueueLabel(); });
  });
}

void KeyDeleter::removeDeletedKey(const Bytes& key, int database) {
  OperationTabLayout& outlets = tab_.outlets;
  // The list may be another database's by now.
  if (tab_.queue.database() == database) {
    browser_.removeKey(key);
    // The next key would look chosen over a blank form.
    outlets.tableKeys.deselectAll();
  }
  form_.emptyKey();
  outlets.txtTTL.setStringValue("");
  outlets.labType.setStringValue(typeText(""));
  outlets.labKeySize.setStringValue(keySizeText(0));
  outlets.labDataSize.setStringValue(dataSizeText(0));
  panes_.showString();
  panes_.string().blank();
  tab_.queue.updateDealingQueueLabel();
}

}  // namespace tarn
