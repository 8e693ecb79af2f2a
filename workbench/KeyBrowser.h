#pragma once

#include "workbench/KeyForm.h"
#include "workbench/TabQueue.h"
#include "workbench/TabState.h"

#include <functional>
#include <vector>

namespace tarn {

// The left side of a tab: the search field with its options, and the list of keys. Main queue only.
class KeyBrowser final : public NSTableViewDataSource, public NSTableViewDelegate {
public:
  KeyBrowser(OperationTabLayout& outlets, TabState& state, TabQueue& queue, const KeyForm& form);

  // Called when a row is selected.
  void setKeySelected(std::function<void(int row)> keySelected) { keySelected_ = std::move(keySelected); }

  // Empties the list and asks the server for the keys that fit what the search field and its options say; an alert
  // where the text stands for no pattern.
  void search();
  void clearSearchKey();
  // Selects the database that popDatabase shows now, then searches.
  void changeDb();

  void showKeys(std::vector<Bytes> keys);

  int numberOfRowsInTableView(const NSTableView& table) override;
  void viewForTableColumn(NSTableView& table, int column, int row, NSTableCellView& cell) override;
  void tableViewSelectionIsChanging(NSTableView& table) override;
  void tableViewSelectionDidChange(NSTableView& table) override;

private:
  void showFoundKeys(std::vector<Bytes> keys);

  OperationTabLayout& outlets_;
  TabState& state_;
  TabQueue& queue_;
  const KeyForm& form_;
  std::function<void(int row)> keySelected_;
};

}  // namespace tarn
