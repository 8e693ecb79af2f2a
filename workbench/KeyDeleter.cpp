#include "workbench/KeyDeleter.h"

#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "workbench/text/TypedText.h"

#include <optional>
#include <string_view>

namespace tarn {

namespace {

bool askToDelete(std::string_view key) {
  const std::string message = localizedString("Are you sure to Delete the kev-value with key:'{0}'?");
  return askUser(replacingPlaceholder(message, "{0}", key), {},
                 {localizedString("Confirm"), localizedString("Cancel")}) == NSAlert::firstButtonReturn;
}

}  // namespace

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
  // The list may be another database's by now.
  if (tab_.queue.database() == database) {
    browser_.removeKey(key);
    // The next key would look chosen over a blank form.
    tab_.outlets.tableKeys.deselectAll();
  }
  form_.showDeletedKey();
  panes_.showString();
  panes_.string().blank();
  tab_.queue.updateDealingQueueLabel();
}

}  // namespace tarn
