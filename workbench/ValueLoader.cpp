#include "workbench/ValueLoader.h"

#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "workbench/StatusTexts.h"

#include <optional>
#include <utility>
#include <vector>

namespace tarn {

namespace {

std::optional<std::vector<Bytes>> replyOf(ServerItem& server, const Bytes& key, ValueType type) {
  switch (type) {
    case ValueType::string:
      break;
    case ValueType::list:
      return server.lrangeAll(key);
    case ValueType::set:
      return server.sscanAll(key);
    case ValueType::hash:
      return server.hscanAll(key);
    case ValueType::sortedSet:
      return server.zrangeAll(key);
  }
  return std::nullopt;
}

}  // namespace

class ValueLoader::Stages final {
public:
  Stages(ValueLoader& loader, const TabPoster& tab, int load) : loader_(&loader), tab_(tab), load_(load) {}

  // Posts `stage`, a call on the loader. If a newer load has started by the time that its turn comes, it only shows the
  // length of the queue.
  template <class Stage>
  void post(Stage stage) const {
    tab_.post([loader = loader_, load = load_, stage = std::move(stage)]() mutable {
      if (load == loader->newestLoad_) return stage(*loader);
      loader->tab_.queue.updateDealingQueueLabel();
    });
  }

private:
  ValueLoader* loader_;
  TabPoster tab_;
  int load_;
};

ValueLoader::ValueLoader(WorkbenchTab& tab, KeyForm& form, ValuePanes& panes) : tab_(tab), form_(form), panes_(panes) {
  tab_.outlets.btnReload.setAction([this] { reloadKeyValue(); });
}

void ValueLoader::selectKey(const Bytes& key, int row) {
  dropRunningLoads();
  tab_.isNew = false;
  tab_.type.reset();
  // What is typed from now on is no new name for the key that was shown before.
  tab_.loadedKey.reset();
  form_.blank("", "");
  form_.showType(unknownTypeText());
  panes_.string().empty();
  loadValue(key, row);
}

void ValueLoader::reloadKeyValue() {
  loadValue(form_.keyDataFromForm().value_or(Bytes()), -1);
}

void ValueLoader::loadValue(const Bytes& key, int row) {
  logLine("loadValueForCurrentKey begin");
  if (key.empty()) return;
  tab_.outlets.chkTranslate.setState(true);
  tab_.unseen.emplace();
  const int number = ++newestLoad_;
  tab_.queue.addInShownDatabase([this, number, key, row](ServerItem& server, const TabPoster& tab) {
    load(server, Stages(*this, tab, number), key, row);
    logLine("loadValueForCurrentKey end");
  });
}

// --- On the server's queue ---------------------------------------------------------------------------------------

void ValueLoader::load(ServerItem& server, const Stages& stages, const Bytes& key, int row) {
  const auto [typeKnown, word] = server.keyType(key);
  if (!typeKnown) return stages.post([](ValueLoader& loader) { loader.showBlankForm(); });

  const std::optional<ValueType> type = valueTypeOfWord(word);
  logLine("type:::" + word);
  stages.post([word = word](ValueLoader& loader) { loader.showKeyType(word); });
  if (!type) return stages.post([word = word, key](ValueLoader& loader) { loader.showUnsupportedType(word, key); });

  stages.post([key](ValueLoader& loader) { loader.form_.showKey(key); });
  const auto [ttlKnown, ttl] = server.keyTtl(key);
  if (!ttlKnown || !ttl) return stages.post([](ValueLoader& loader) { loader.showBlankForm(); });
  stages.post([ttl = *ttl, key, row](ValueLoader& loader) { loader.showKeyTtl(ttl, key, row); });

  if (*type == ValueType::string) return loadString(server, stages, key);
  loadRows(server, stages, key, *type);
}

void ValueLoader::loadString(ServerItem& server, const Stages& stages, const Bytes& key) {
  auto [found, value] = server.getValue(key);
  if (!found) return stages.post([](ValueLoader& loader) { loader.showNoValue(); });
  stages.post(
      [key, value = std::move(value)](ValueLoader& loader) mutable { loader.showStringValue(key, std::move(value)); });
}

void ValueLoader::loadRows(ServerItem& server, const Stages& stages, const Bytes& key, ValueType type) {
  std::optional<std::vector<Bytes>> reply = replyOf(server, key, type);
  if (!reply) return stages.post([](ValueLoader& loader) { loader.showNoValue(); });
  stages.post([key, type, rows = loadedRows(type, *std::move(reply))](ValueLoader& loader) mutable {
    loader.showRows(key, type, std::move(rows));
  });
}

// --- The stages, on the main queue -------------------------------------------------------------------------------

void ValueLoader::showKeyType(const std::string& word) {
  const std::optional<ValueType> type = valueTypeOfWord(word);
  logLine(type ? word : "not supported type");
  const std::string shown(type ? valueTypeTitle(*type) : word);
  if (type) tab_.outlets.popType.selectItemWithTitle(shown);
  tab_.type = type;
  form_.showType(typeText(shown));
  panes_.show(type);
  if (RowsPane* const pane = panes_.rowsOf(type)) {
    pane->forgetEditedRow();
    pane->empty();
  } else {
    panes_.string().empty();
  }
}

void ValueLoader::showUnsupportedType(const std::string& word, const Bytes& key) {
  form_.showType(unsupportedTypeText(word));
  form_.showTtl("", "");
  form_.showSizesUnknown();
  showStringPane();
  const std::string message = localizedString("No Data found on the Server for the key '{0}'.");
  showAlert(replacingPlaceholder(message, "{0}", keyText(key.view(), tab_.keyForm())));
}

void ValueLoader::showBlankForm() {
  form_.showType(unknownTypeText());
  form_.blank("", localizedString("(DisConnected)"));
  showStringPane();
}

void ValueLoader::showKeyTtl(const std::string& ttl, const Bytes& key, int row) {
  logLine("ttl:::" + ttl);
  form_.showTtl(ttl, ttlToolTip(ttl));
  if (ttl == "-2" && row >= 0) tab_.outlets.tableKeys.reloadDataForRowIndexes({row}, {0});
  form_.showKeySize(key);
}

void ValueLoader::showStringValue(const Bytes& key, Bytes value) {
  logLine("string get success main operation");
  showValueKey(key);
  form_.showDataSize(dataSizeText(value.size()));
  panes_.string().showValue(std::move(value));
  tab_.unseen.reset();
  tab_.queue.updateDealingQueueLabel();
  logLine("string get success main operation finished");
}

void ValueLoader::showNoValue() {
  form_.showDataSize(noDataSizeText());
  if (!panes_.rowsOf(tab_.type)) panes_.string().empty();
  tab_.queue.updateDealingQueueLabel();
}

void ValueLoader::showRows(const Bytes& key, ValueType type, LoadedRows rows) {
  showValueKey(key);
  const bool isComplete = rows.isComplete;
  tab_.unseen.reset();
  if (!isComplete) tab_.unseen.emplace(rows.scores.size());
  const std::string size = dataSizeText(rows.bytes, rows.count);
  RowsPane& pane = *panes_.rowsOf(type);
  pane.setRows(std::move(rows));
  if (!isComplete) return showAlert(localizedString("The return of 'zrange' is not correct(2199)"));
  form_.showDataSize(size);
  pane.reload();
  rowsShown_();
  tab_.queue.updateDealingQueueLabel();
}

void ValueLoader::showValueKey(const Bytes& key) {
  form_.showKey(key);
  tab_.loadedKey = key;
}

void ValueLoader::showStringPane() {
  panes_.string().empty();
  panes_.show(std::nullopt);
  tab_.queue.updateDealingQueueLabel();
}

}  // namespace tarn
