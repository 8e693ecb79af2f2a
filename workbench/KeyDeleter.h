#pragma once

#include "workbench/KeyForm.h"
#include "workbench/StringPane.h"
#include "workbench/TabQueue.h"
#include "workbench/TabState.h"
#include "workbench/ValuePanes.h"

namespace tarn {

// Deletes the key that the form names, which needn't be the one selected in the list. Main queue only.
class KeyDeleter final {
public:
  KeyDeleter(OperationTabLayout& outlets, TabState& state, TabQueue& queue, KeyForm& form, StringPane& string,
             ValuePanes& panes);

  // Asks, and then deletes on the server's queue.
  void deleteKey();

private:
  void removeDeletedKey(const Bytes& key, int database);

  OperationTabLayout& outlets_;
  TabState& state_;
  TabQueue& queue_;
  KeyForm& form_;
  StringPane& string_;
  ValuePanes& panes_;
};

}  // namespace tarn
