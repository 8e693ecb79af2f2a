#include "workbench/KeyBrowser.h"

#include "platform/foundation/NSAlert.h"
#include "workbench/SearchPattern.h"
#include "workbench/StatusTexts.h"

#include <charconv>
#include <cstdint>
#include <mutex>
#include <string>
#include <utility>

namespace tarn {

namespace {

constexpr int keysTableTag = 1;

std::int64_t limitFromTitle(const std::string& title) {
  std::int64_t limit = 0;
  std::from_chars(title.data(), title.data() + title.size(), limit);
  return limit;
}

}  // namespace

KeyBrowser::KeyBrowser(OperationTabLayout& outlets, TabState& state, TabQueue& queue, const KeyForm& form)
    : outlets_(outlets), state_(state), queue_(queue), form_(form) {
  outlets_.tableKeys.setTag(keysTableTag);
  outlets_.tableKeys.setDataSource(this);
  outlets_.tableKeys.setDelegate(this);
  outlets_.chkExactly.setState(false);
  outlets_.txtSearchKey.setAction([this] { search(); });
  outlets_.chkExactly.setAction([this] { search(); });
  outlets_.btnSearchKeyClear.setAction([this] { clearSearchKey(); });
  outlets_.popDatabase.setAction([this] { changeDb(); });
}

void KeyBrowser::search() {
  const std::string text = outlets_.txtSearchKey.stringValue();
  showKeys({});
  const TypedBytes pattern = searchPattern(text, outlets_.popKeyDataCharset.titleOfSelectedItem(),
                                           outlets_.chkExactly.state() ? Match::whole : Match::part);
  if (!pattern.hasValue()) {
    if (!pattern.alert().empty()) showAlert(pattern.alert());
    return;
  }
  const std::int64_t limit = limitFromTitle(outlets_.popLimit.titleOfSelectedItem());
  queue_.addInShownDatabase(
      [this, glob = pattern.value(), limit, database = state_.database](ServerItem& server, const TabPoster& tab) {
        tab.post([this] { queue_.updateDealingQueueLabel(); });
        tab.post([this, database, keys = server.scanKeys(glob, limit, false)]() mutable {
          // The keys of another database never stand under the name of this one, not even if this one can't be
          // selected.
          if (database == state_.database) showFoundKeys(std::move(keys));
          queue_.updateDealingQueueLabel();
        });
      });
}

void KeyBrowser::showFoundKeys(std::vector<Bytes> keys) {
  const std::size_t count = keys.size();
  showKeys(std::move(keys));
  outlets_.tableKeys.tableColumn(0).setHeaderToolTip(countShownText(count));
}

void KeyBrowser::clearSearchKey() {
  outlets_.txtSearchKey.setStringValue("");
}

void KeyBrowser::changeDb() {
  const int before = std::exchange(state_.database, outlets_.popDatabase.indexOfSelectedItem());
  if (before != state_.database) showKeys({});
  queue_.addSelect(state_.database, [this](bool selected) {
    if (selected) search();
  });
}

void KeyBrowser::showKeys(std::vector<Bytes> keys) {
  const std::lock_guard lock(state_.keysLock);
  queue_.dispose(std::exchange(state_.keys, std::move(keys)));
  outlets_.tableKeys.reloadData();
}

int KeyBrowser::numberOfRowsInTableView(const NSTableView&) {
  return static_cast<int>(state_.keys.size());
}

void KeyBrowser::viewForTableColumn(NSTableView&, int, int row, NSTableCellView& cell) {
  const auto index = static_cast<std::size_t>(row);
  if (index < state_.keys.size()) cell.setStringValue(form_.keyDisplayText(state_.keys[index]));
}

void KeyBrowser::tableViewSelectionIsChanging(NSTableView&) {}

void KeyBrowser::tableViewSelectionDidChange(NSTableView& table) {
  const int row = table.selectedRow();
  if (row >= 0 && row < numberOfRowsInTableView(table)) keySelected_(row);
}

}  // namespace tarn
