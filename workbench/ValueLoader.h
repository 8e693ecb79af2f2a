#pragma once

#include "workbench/WorkbenchTab.h"
#include "workbench/keys/KeyForm.h"
#include "workbench/value/LoadedRows.h"
#include "workbench/value/ValuePanes.h"

#include <functional>
#include <string>

namespace tarn {

// From a key to a filled form. A load asks for type, TTL and value, one after the other, on the server's queue; each
// reply is a stage that fills its part of the form at once. A stage of a load that isn't the tab's newest any more is
// dropped, so that the value of one key never stands under another's name. Main queue only.
class ValueLoader final {
public:
  ValueLoader(WorkbenchTab& tab, KeyForm& form, ValuePanes& panes);

  // Called when a value's rows are on show.
  void setRowsShown(std::function<void()> rowsShown) { rowsShown_ = std::move(rowsShown); }

  // Blanks the form and loads the key of this row of tableKeys.
  void selectKey(const Bytes& key, int row);
  // What running loads still bring is dropped. A value that a load would have brought stays unseen.
  void dropRunningLoads() { ++newestLoad_; }

private:
  // Posts the stages of one load. Used on the server's queue.
  class Stages;

  // Loads the key that the form names.
  void reloadKeyValue();
  // `row` is that of the key in tableKeys, or -1 for the key of the form.
  void loadValue(const Bytes& key, int row);
  static void load(ServerItem& server, const Stages& stages, const Bytes& key, int row);
  static void loadString(ServerItem& server, const Stages& stages, const Bytes& key);
  static void loadRows(ServerItem& server, const Stages& stages, const Bytes& key, ValueType type);

  void showKeyType(const std::string& word);
  void showUnsupportedType(const std::string& word, const Bytes& key);
  void showBlankForm();
  void showKeyTtl(const std::string& ttl, const Bytes& key, int row);
  void showStringValue(const Bytes& key, Bytes value);
  void showNoValue();
  void showRows(const Bytes& key, ValueType type, LoadedRows rows);
  void showValueKey(const Bytes& key);
  void showStringPane();

  WorkbenchTab& tab_;
  KeyForm& form_;
  ValuePanes& panes_;
  std::function<void()> rowsShown_;
  int newestLoad_ = 0;
};

}  // namespace tarn
