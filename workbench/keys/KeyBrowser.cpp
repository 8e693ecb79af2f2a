#include "workbench/keys/KeyBrowser.h"

#include "platform/foundation/DisposeInBackground.h"
#include "platform/foundation/NSAlert.h"
#include "workbench/StatusTexts.h"
#include "workbench/text/SearchPattern.h"
#include "workbench/text/TypedText.h"

#include <charconv>
#include <cstdint>
#include <string>

namespace tarn {

namespace {

std::int64_t limitFromTitle(const std::string& title) {
  std::int64_t limit = 0;
  std::from_chars(title.data(), title.data() + title.size(), limit);
  return limit;
}

}  // namespace

KeyBrowser::KeyBrowser(WorkbenchTab& tab) : tab_(tab) {
  OperationTabLayout& outlets = tab_.outlets;
  outlets.tableKeys.setDataSource(this);
  outlets.tableKeys.setDelegate(this);
  outlets.chkExactly.setState(false);
  outlets.txtSearchKey.setAction([this] { search(); });
  outlets.chkExactly.setAction([this] { search(); });
  outlets.btnSearchKeyClear.setAction([this] { tab_.outlets.txtSearchKey.setStringValue(""); });
  outlets.popDatabase.setAction([this] { changeDb(); });
}

void KeyBrowser::search() {
  OperationTabLayout& outlets = tab_.outlets;
  showKeys({});
  const BytesOrAlert pattern = searchPattern(outlets.txtSearchKey.stringValue(), tab_.keyForm(),
                                             outlets.chkExactly.state() ? Match::whole : Match::part);
  if (!pattern.hasValue()) {
    if (!pattern.alert().empty()) showAlert(pattern.alert());
    return;
  }
  const std::int64_t limit = limitFromTitle(outlets.popLimit.titleOfSelectedItem());
  tab_.queue.addInShownDatabase([this, glob = pattern.value(), limit, database = tab_.queue.database()](
                                    ServerItem& server, const TabPoster& tab) {
    tab.post([this, database, keys = server.scanKeys(glob, limit, false)]() mutable {
      // The keys of another database never stand under the name of this one, not even if this one can't be selected.
      if (database == tab_.queue.database()) showFoundKeys(std::move(keys));
      tab_.queue.updateDealingQueueLabel();
    });
  });
}

void KeyBrowser::showFoundKeys(std::vector<Bytes> keys) {
  showKeys(std::move(keys));
  tab_.outlets.tableKeys.tableColumn(0).setHeaderToolTip(countShownText(keys_.size()));
}

void KeyBrowser::changeDb() {
  const int database = tab_.outlets.popDatabase.indexOfSelectedItem();
  if (database != tab_.queue.database()) showKeys({});
  tab_.queue.setDatabase(database);
  selectAndSearch(database);
}

void KeyBrowser::selectAndSearch(int database) {
  tab_.queue.addSelect(database, [this](bool selected) {
    if (selected) search();
  });
}

void KeyBrowser::showKeys(std::vector<Bytes> keys) {
  std::vector<Bytes> before = keys_.assign(std::move(keys));
  const std::size_t count = before.size();
  disposeInBackground(std::move(before), count);
  tab_.outlets.tableKeys.reloadData();
}

void KeyBrowser::removeKey(const Bytes& key) {
  keys_.remove(key);
  tab_.outlets.tableKeys.reloadData();
}

void KeyBrowser::showSavedKey(const Bytes& key, std::size_t position) {
  const std::size_t row = keys_.insert(key, position);
  tab_.outlets.tableKeys.reloadData();
  tab_.outlets.tableKeys.selectRow(static_cast<int>(row));
}

int KeyBrowser::numberOfRowsInTableView(const NSTableView&) {
  return static_cast<int>(keys_.size());
}

void KeyBrowser::viewForTableColumn(NSTableView&, int, int row, NSTableCellView& cell) {
  const auto position = static_cast<std::size_t>(row);
  if (position < keys_.size()) cell.setStringValue(keyText(keys_.at(position).view(), tab_.keyForm()));
}

void KeyBrowser::tableViewSelectionDidChange(NSTableView& table) {
  const int row = table.selectedRow();
  if (row < 0 || static_cast<std::size_t>(row) >= keys_.size()) return;
  // A copy: what follows may change the list.
  const Bytes key = keys_.at(static_cast<std::size_t>(row));
  keySelected_(key, row);
}

}  // namespace tarn
