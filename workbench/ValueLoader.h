#pragma once

#include "workbench/KeyForm.h"
#include "workbench/LoadedRows.h"
#include "workbench/StringPane.h"
#include "workbench/TabQueue.h"
#include "workbench/TabState.h"
#include "workbench/ValuePanes.h"
#include "workbench/ValueTables.h"

#include <functional>
#include <string>
#include <vector>

namespace tarn {

// From a key to a filled form. A load asks for type, TTL and value, one after the other, on the server's queue; each
// reply is a stage that fills its part of the form at once. A stage of a load that isn't the tab's newest any more is
// dropped, so that the value of one key never stands under another's name. Main queue only.
class ValueLoader final {
public:
  ValueLoader(OperationTabLayout& outlets, TabState& state, TabQueue& queue, KeyForm& form, StringPane& string,
              ValuePanes& panes, ValueTables& tables);

  // Called when a value's rows are on show.
  void setRowsShown(std::function<void()> rowsShown) { rowsShown_ = std::move(rowsShown); }

  // Blanks the form and loads the key of this row of tableKeys.
  void selectKey(int row);
  // Loads the key that the form names.
  void reloadKeyValue();
  // `row` is the row selected in tableKeys, or -1 for the key of the form.
  void loadValueForCurrentKey(int row);
  // What running loads still bring is dropped.
  void dropRunningLoads() { ++newestLoad_; }

private:
  // Posts the stages of one load. Used on the server's queue.
  class Stages;

  static void load(ServerItem& server, const Stages& stages, const Bytes& key, int row);
  static void loadValue(ServerItem& server, const Stages& stages, const Bytes& key, std::string_view type);

  void showKeyType(const std::string& word);
  void showUnsupportedType(const std::string& word, const Bytes& key);
  void showBlankForm();
  void showKeyTtl(const std::string& ttl, const Bytes& key, int row);
  void showStringValue(const Bytes& key, Bytes value);
  void showNoString();
  void showListValue(const Bytes& key, std::vector<Bytes> rows, std::size_t bytes);
  void showHashValue(const Bytes& key, HashRows rows);
  void showSortedSetValue(const Bytes& key, SortedSetRows rows);
  void showRows(NSTableView& table, std::size_t bytes, std::size_t count);
  void showValueKey(const Bytes& key);
  void showStringPane();

  OperationTabLayout& outlets_;
  TabState& state_;
  TabQueue& queue_;
  KeyForm& form_;
  StringPane& string_;
  ValuePanes& panes_;
  ValueTables& tables_;
  std::function<void()> rowsShown_;
  int newestLoad_ = 0;
};

}  // namespace tarn
