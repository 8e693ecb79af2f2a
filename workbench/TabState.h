#pragma once

#include "platform/foundation/Bytes.h"
#include "wire/ServerItem.h"
#include "workbench/ValueColumn.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tarn {

// What the panes of one tab share. Main queue only.
struct TabState {
  std::shared_ptr<ServerItem> server;

  // The database that popDatabase shows, or showed before it was emptied: what is read and written is this one.
  int database = 0;

  // The raw names in tableKeys, in their order. `keysLock` is held across a change and the reload that shows it.
  std::mutex keysLock;
  std::vector<Bytes> keys;

  // "String", "Set", "List", "Hash", "SortedSet"; the server's word where no pane knows it; empty while nothing is
  // loaded.
  std::string currentType;
  Bytes currentValueData;
  // The title under which the text of a String was last shown.
  std::string oldValueDataCharset;

  // The rows of a list or set, of a hash, and of a sorted set, whose scores stay text as the server wrote them.
  ValueColumn setValue;
  ValueColumn hashKey;
  ValueColumn hashVal;
  ValueColumn sortedSetValue;
  std::vector<std::string> sortedSetScore;
  // The row in the editors under its table, or -1.
  int currentDataRow = -1;

  // The form holds a key that isn't on the server yet.
  bool isNew = false;
  // The key whose value the form shows.
  std::optional<Bytes> oldKeyData;
};

}  // namespace tarn
