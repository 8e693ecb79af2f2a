#pragma once

#include "workbench/WorkbenchTab.h"
#include "workbench/keys/KeyList.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace tarn {

// The left side of a tab: the search field with its options, and the list of keys. Main queue only.
class KeyBrowser final : public NSTableViewDataSource, public NSTableViewDelegate {
public:
  explicit KeyBrowser(WorkbenchTab& tab);

  // Called when a row is selected.
  using KeySelected = std::function<void(const Bytes& key, int row)>;
  void setKeySelected(KeySelected keySelected) { keySelected_ = std::move(keySelected); }

  // Empties the list and asks the server for the keys that fit what the search field and its options say; an alert
  // where the text stands for no pattern.
  void search();
  // Selects the database, then searches if the server took it.
  void selectAndSearch(int database);

  void showKeys(std::vector<Bytes> keys);

  // Where a save of this key's value under any name is to show it: see KeyList.
  std::size_t positionOfSavedKey(const std::optional<Bytes>& oldKey) const { return keys_.positionOfSavedKey(oldKey); }
  void removeKey(const Bytes& key);
  // Lists a key that was saved, at this position if it isn't listed yet, and selects its row.
  void showSavedKey(const Bytes& key, std::size_t position);

  int numberOfRowsInTableView(const NSTableView& table) override;
  void viewForTableColumn(NSTableView& table, int column, int row, NSTableCellView& cell) override;
  void tableViewSelectionIsChanging(NSTableView&) override {}
  void tableViewSelectionDidChange(NSTableView& table) override;

private:
  // Takes the database that popDatabase shows now.
  void changeDb();
  void showFoundKeys(std::vector<Bytes> keys);

  WorkbenchTab& tab_;
  KeyList keys_;
  KeySelected keySelected_;
};

}  // namespace tarn
