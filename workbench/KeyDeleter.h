#pragma once

#include "workbench/WorkbenchTab.h"
#include "workbench/keys/KeyBrowser.h"
#include "workbench/keys/KeyForm.h"
#include "workbench/value/ValuePanes.h"

namespace tarn {

// Deletes the key that the form names, which needn't be the one selected in the list. Main queue only.
class KeyDeleter final {
public:
  KeyDeleter(WorkbenchTab& tab, KeyBrowser& browser, KeyForm& form, ValuePanes& panes);

  // Asks, and then deletes on the server's queue.
  void deleteKey();

private:
  void removeDeletedKey(const Bytes& key, int database);

  WorkbenchTab& tab_;
  KeyBrowser& browser_;
  KeyForm& form_;
  ValuePanes& panes_;
};

}  // namespace tarn
