#include "workbench/ValueLoader.h"

#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "workbench/StatusTexts.h"

#include <optional>
#include <utility>

namespace tarn {

class ValueLoader::Stages final {
public:
  Stages(ValueLoader& loader, const TabPoster& tab, int load) : loader_(&loader), tab_(tab), load_(load) {}

  // Posts `stage`, a call on the loader. If a newer load has started by the time that its turn comes, it only shows the
  // length of the queue.
  template <class Stage>
  void post(Stage stage) const {
    tab_.post([loader = loader_, load = load_, stage = std::move(stage)]() mutable {
      if (load == loader->newestLoad_) return stage(*loader);
      loader->queue_.updateDealingQueueLabel();
    });
  }

private:
  ValueLoader* loader_;
  TabPoster tab_;
  int load_;
};

ValueLoader::ValueLoader(OperationTabLayout& outlets, TabState& state, TabQueue& queue, KeyForm& form,
                         StringPane& string, ValuePanes& panes, ValueTables& tables)
    : outlets_(outlets), state_(state), queue_(queue), form_(form), string_(string), panes_(panes), tables_(tables) {
  outlets_.btnReload.setAction([this] { reloadKeyValue(); });
}

void ValueLoader::selectKey(int row) {
  dropRunningLoads();
  state_.isNew = false;
  state_.currentType.clear();
  form_.emptyKey();
  form_.showTtl("", "");
  outlets_.labType.setStringValue(unknownTypeText());
  form_.showSizesUnknown();
  string_.empty();
  loadValueForCurrentKey(row);
}

void ValueLoader::reloadKeyValue() {
  loadValueForCurrentKey(-1);
}

void ValueLoader::loadValueForCurrentKey(int row) {
  logLine("loadValueForCurrentKey begin");
  std::optional<Bytes> key;
  if (row < 0) {
    key = form_.keyDataFromForm();
  } else if (const int selected = outlets_.tableKeys.selectedRow();
             selected >= 0 && static_cast<std::size_t>(selected) < state_.keys.size()) {
    key = state_.keys[static_cast<std::size_t>(selected)];
  }
  if (!key || key->empty()) return;
  outlets_.chkTranslate.setState(true);
  const int number = ++newestLoad_;
  queue_.addInShownDatabase([this, number, key = *key, row](ServerItem& server, const TabPoster& tab) {
    load(server, Stages(*this, tab, number), key, row);
    logLine("loadValueForCurrentKey end");
  });
}

// --- On the server's queue ---------------------------------------------------------------------------------------

void ValueLoader::load(ServerItem& server, const Stages& stages, const Bytes& key, int row) {
  stages.post([](ValueLoader& loader) { loader.queue_.updateDealingQueueLabel(); });
  const auto [typeKnown, word] = server.keyType(key);
  if (!typeKnown) return stages.post([](ValueLoader& loader) { loader.showBlankForm(); });

  const std::string_view type = valueTypeTitle(word);
  logLine("type:::" + word);
  stages.post([word = word](ValueLoader& loader) { loader.showKeyType(word); });
  if (type.empty())
    return stages.post([word = word, key](ValueLoader& loader) { loader.showUnsupportedType(word, key); });

  stages.post([key](ValueLoader& loader) { loader.form_.showKey(key); });
  const auto [ttlKnown, ttl] = server.keyTtl(key);
  if (!ttlKnown || !ttl) return stages.post([](ValueLoader& loader) { loader.showBlankForm(); });
  stages.post([ttl = *ttl, key, row](ValueLoader& loader) { loader.showKeyTtl(ttl, key, row); });

  loadValue(server, stages, key, type);
}

void ValueLoader::loadValue(ServerItem& server, const Stages& stages, const Bytes& key, std::string_view type) {
  if (type == "String") {
    auto [found, value] = server.getValue(key);
    if (!found) return stages.post([](ValueLoader& loader) { loader.showNoString(); });
    return stages.post([key, value = std::move(value)](ValueLoader& loader) mutable {
      loader.showStringValue(key, std::move(value));
    });
  }
  if (type == "Hash") {
    return stages.post([key, rows = hashRows(server.hscanAll(key))](ValueLoader& loader) mutable {
      loader.showHashValue(key, std::move(rows));
    });
  }
  if (type == "SortedSet") {
    return stages.post([key, rows = sortedSetRows(server.zrangeAll(key))](ValueLoader& loader) mutable {
      loader.showSortedSetValue(key, std::move(rows));
    });
  }
  std::vector<Bytes> rows = type == "List" ? server.lrangeAll(key) : server.sscanAll(key);
  const std::size_t bytes = byteCount(rows);
  stages.post([key, bytes, rows = std::move(rows)](ValueLoader& loader) mutable {
    loader.showListValue(key, std::move(rows), bytes);
  });
}

// --- The stages, on the main queue -------------------------------------------------------------------------------

void ValueLoader::showKeyType(const std::string& word) {
  const std::string type(valueTypeTitle(word));
  logLine(type.empty() ? "not supported type" : word);
  if (!type.empty()) outlets_.popType.selectItemWithTitle(type);
  state_.currentType = type.empty() ? word : type;
  outlets_.labType.setStringValue(typeText(state_.currentType));
  panes_.showValuePane(type);
  if (NSTableView* table = tables_.tableForType(type)) {
    state_.currentDataRow = -1;
    tables_.emptyTable(*table);
  } else {
    string_.empty();
  }
}

void ValueLoader::showUnsupportedType(const std::string& word, const Bytes& key) {
  outlets_.labType.setStringValue(unsupportedTypeText(word));
  form_.showTtl("", "");
  showStringPane();
  const std::string message = localizedString("No Data found on the Server for the key '{0}'.");
  showAlert(replacingPlaceholder(message, "{0}", form_.keyDisplayText(key)));
}

void ValueLoader::showBlankForm() {
  outlets_.labType.setStringValue(unknownTypeText());
  form_.emptyKey();
  form_.showTtl("", localizedString("(DisConnected)"));
  showStringPane();
}

void ValueLoader::showKeyTtl(const std::string& ttl, const Bytes& key, int row) {
  logLine("ttl:::" + ttl);
  form_.showTtl(ttl, ttlToolTip(ttl));
  if (ttl == "-2" && row >= 0) outlets_.tableKeys.reloadDataForRowIndexes({row}, {0});
  form_.showKeySize(key);
}

void ValueLoader::showStringValue(const Bytes& key, Bytes value) {
  logLine("string get success main operation");
  showValueKey(key);
  state_.currentValueData = std::move(value);
  outlets_.labDataSize.setStringValue(dataSizeText(state_.currentValueData.size()));
  string_.showValueData();
  queue_.updateDealingQueueLabel();
  logLine("string get success main operation finished");
}

void ValueLoader::showNoString() {
  outlets_.labDataSize.setStringValue(noDataSizeText());
  string_.empty();
  queue_.updateDealingQueueLabel();
}

void ValueLoader::showListValue(const Bytes& key, std::vector<Bytes> rows, std::size_t bytes) {
  showValueKey(key);
  const std::size_t count = rows.size();
  tables_.setRows(state_.setValue, std::move(rows));
  showRows(outlets_.valueDataSetTable, bytes, count);
}

void ValueLoader::showHashValue(const Bytes& key, HashRows rows) {
  showValueKey(key);
  const std::size_t count = rows.fields.size();
  tables_.setRows(state_.hashKey, std::move(rows.fields));
  tables_.setRows(state_.hashVal, std::move(rows.values));
  showRows(outlets_.valueDataHashTable, rows.bytes, count);
}

void ValueLoader::showSortedSetValue(const Bytes& key, SortedSetRows rows) {
  showValueKey(key);
  tables_.setRows(state_.sortedSetValue, std::move(rows.members));
  tables_.setScores(std::move(rows.scores));
  if (!rows.complete) return showAlert(localizedString("The return of 'zrange' is not correct(2199)"));
  showRows(outlets_.valueDataSortedSetTable, rows.bytes, rows.elements);
}

void ValueLoader::showRows(NSTableView& table, std::size_t bytes, std::size_t count) {
  outlets_.labDataSize.setStringValue(dataSizeText(bytes, count));
  table.reloadData();
  rowsShown_();
  queue_.updateDealingQueueLabel();
}

void ValueLoader::showValueKey(const Bytes& key) {
  form_.showKey(key);
  state_.oldKeyData = key;
}

void ValueLoader::showStringPane() {
  form_.showSizesUnknown();
  string_.empty();
  panes_.showValuePane("");
  queue_.updateDealingQueueLabel();
}

}  // namespace tarn
