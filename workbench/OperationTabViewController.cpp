#include "workbench/OperationTabViewController.h"

#include "codec/CharsetEnum.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSTimer.h"
#include "workbench/ConsolePane.h"
#include "workbench/KeyBrowser.h"
#include "workbench/KeyDeleter.h"
#include "workbench/KeyForm.h"
#include "workbench/KeySaver.h"
#include "workbench/RowActions.h"
#include "workbench/RowEditing.h"
#include "workbench/StatusTexts.h"
#include "workbench/StringPane.h"
#include "workbench/TabQueue.h"
#include "workbench/TabState.h"
#include "workbench/ValueLoader.h"
#include "workbench/ValuePanes.h"
#include "workbench/ValueTables.h"
#include "workbench/WorkbenchHost.h"

#include <utility>

namespace tarn {

namespace {

constexpr double resizeDelay = 0.1;

}  // namespace

// The outlets come first, since all else points at them.
struct OperationTabViewController::Private {
  OperationTabLayout outlets;
  TabState state;
  TabQueue queue{outlets, state};
  KeyForm form{outlets};
  StringPane string{outlets, state};
  ValuePanes panes{outlets};
  ValueTables tables{outlets, state, queue};
  RowEditing editing{outlets, state, queue, tables};
  RowActions rowActions{outlets, state, queue, tables, editing};
  ValueLoader loader{outlets, state, queue, form, string, panes, tables};
  KeyBrowser browser{outlets, state, queue, form};
  KeySaver saver{outlets, state, queue, form, string, editing};
  KeyDeleter deleter{outlets, state, queue, form, string, panes};
  ConsolePane console{outlets, state};
};

OperationTabViewController::OperationTabViewController() : d_(std::make_shared<Private>()) {
  d_->queue.setTab(d_);
  OperationTabLayout& outlets = d_->outlets;

  outlets.btnClose.setAction([this] {
    if (WorkbenchHost* host = WorkbenchHost::installed()) host->closeTab(*this);
  });
  outlets.btnReconnect.setAction([this] {
    if (WorkbenchHost* host = WorkbenchHost::installed()) host->reconnect(*this);
  });
  outlets.btnNew.setAction([] {
    if (WorkbenchHost* host = WorkbenchHost::installed()) host->openTypeDialog();
  });
  // Both ask, and the tab may be closed behind a question.
  outlets.btnSave.setAction([tab = std::weak_ptr(d_)] {
    if (const auto alive = tab.lock()) alive->saver.save();
  });
  outlets.btnSave.setKeyEquivalent("Ctrl+S");
  outlets.btnDelete.setAction([tab = std::weak_ptr(d_)] {
    if (const auto alive = tab.lock()) alive->deleter.deleteKey();
  });
  outlets.popKeyDataCharset.setAction([this] { changeKeyDataCharset(); });
  outlets.popValueDataCharset.setAction([this] { changeValueDataCharset(); });
  outlets.chkTranslate.setAction([this] { translateSlash(); });
  d_->browser.setKeySelected([loader = &d_->loader](int row) { loader->selectKey(row); });
  d_->loader.setRowsShown([this] { doResizeLater(); });

  outlets.chkTranslate.setState(false);
  outlets.popValueDataCharset.removeAllItems();
  outlets.popValueDataCharset.addItemsWithTitles(charsetTitles());
  d_->state.oldValueDataCharset = outlets.popValueDataCharset.titleOfSelectedItem();
}

OperationTabViewController::~OperationTabViewController() = default;

NSView& OperationTabViewController::view() {
  return d_->outlets.view;
}

OperationTabLayout& OperationTabViewController::outlets() {
  return d_->outlets;
}

const std::shared_ptr<ServerItem>& OperationTabViewController::server() const {
  return d_->state.server;
}

void OperationTabViewController::open(std::shared_ptr<ServerItem> server) {
  d_->state.server = std::move(server);
  updateStatusLabel();
  fillDatabases();
  resetWorkbenchView();
}

void OperationTabViewController::showServerName(const std::string& text) {
  d_->outlets.labServerName.setStringValue(text);
}

void OperationTabViewController::updateStatusLabel() {
  if (server()) showStatus(server()->connectionStatus());
}

void OperationTabViewController::showStatus(ConnectionStatus status) {
  d_->outlets.labStatus.setStringValue(serverStatusText(status));
  d_->outlets.tableKeys.setPlaceholderString(noKeysText(status));
}

void OperationTabViewController::updateDealingQueueLabel() {
  d_->queue.updateDealingQueueLabel();
}

void OperationTabViewController::showConnection(ConnectionStatus status) {
  showStatus(status);
  if (status == ConnectionStatus::connected) {
    selectShownDatabaseAgain();
  } else {
    d_->outlets.popDatabase.removeAllItems();
  }
}

void OperationTabViewController::fillDatabases() {
  d_->outlets.popDatabase.removeAllItems();
  const int count = static_cast<int>(server()->dbs()->size());
  for (int index = 0; index < count; ++index) {
    d_->outlets.popDatabase.addItemWithTitle("db" + std::to_string(index));
  }
  if (count > 0) selectDatabase(shownDatabase() < count ? shownDatabase() : 0);
}

void OperationTabViewController::selectShownDatabaseAgain() {
  if (!server()) return;
  const int before = shownDatabase();
  fillDatabases();
  // The first database is there, and selected on a new connection, also where the server doesn't say how many it has.
  if (before > 0 && before >= static_cast<int>(server()->dbs()->size())) return startAnewOnFirstDatabase();
  if (before == server()->currentDbIdx()) return;
  d_->queue.addSelect(before, [this, before](bool selected) {
    if (!selected && shownDatabase() == before) startAnewOnFirstDatabase();
  });
}

void OperationTabViewController::startAnewOnFirstDatabase() {
  selectDatabase(0);
  resetWorkbenchView();
}

void OperationTabViewController::showDatabase(int index) {
  if (shownDatabase() == index) return;
  // What the form shows belongs to the other database, and a save would write it into this one.
  resetWorkbenchView();
  selectDatabase(index);
}

void OperationTabViewController::switchDatabase(int index) {
  showDatabase(index);
  d_->queue.addSelect(index, [this](bool selected) {
    if (selected) search();
  });
}

void OperationTabViewController::selectDatabase(int index) {
  d_->outlets.popDatabase.selectItemAtIndex(index);
  d_->state.database = index;
}

int OperationTabViewController::shownDatabase() const {
  return d_->state.database;
}

std::shared_ptr<void> OperationTabViewController::beginWork() {
  return d_->queue.beginWork();
}

void OperationTabViewController::resetWorkbenchView() {
  if (!server()) return;
  OperationTabLayout& outlets = d_->outlets;
  const std::string charset = server()->defaultCharset();
  outlets.popKeyDataCharset.removeAllItems();
  outlets.popKeyDataCharset.addItemsWithTitles(charsetTitles());
  outlets.popKeyDataCharset.selectItemWithTitle(charset);
  outlets.labKey.setStringValue(keyLabelText(charset));

  d_->loader.dropRunningLoads();
  d_->browser.showKeys({});
  d_->state.currentType.clear();
  outlets.txtSearchKey.setStringValue("");
  d_->form.emptyKey();
  d_->form.showTtl("", "");
  d_->form.showSizesUnknown();
  outlets.chkTranslate.setState(false);
  outlets.chkExactly.setState(false);
  d_->string.empty();
  d_->panes.showValuePane("");
}

void OperationTabViewController::resetFormForNewKey() {
  d_->loader.dropRunningLoads();
  d_->form.emptyKey();
  d_->form.showTtl("-1", ttlToolTip("-1"));
  d_->string.blank();
  d_->tables.emptyAllTables();
  doResizeLater();
  d_->form.showSizesUnknown();
  d_->outlets.chkTranslate.setState(false);
}

void OperationTabViewController::newKeyTypeChosen(const std::string& title) {
  TabState& state = d_->state;
  d_->outlets.labType.setStringValue(newTypeText(title));
  d_->form.showSizesUnknown();
  state.currentType = typeOfNewKeyTitle(title);
  if (isValueType(state.currentType)) {
    d_->outlets.tableKeys.deselectAll();
    state.oldKeyData.reset();
  }
  d_->panes.showValuePane(state.currentType);
  state.isNew = true;
  resetFormForNewKey();
}

void OperationTabViewController::search() {
  d_->browser.search();
}

void OperationTabViewController::doResize() {
  d_->panes.doResize();
}

void OperationTabViewController::doResizeLater() {
  NSTimer::scheduledTimerWithTimeInterval(
      resizeDelay, false, [panes = &d_->panes, tab = d_->queue.poster()] { tab.post([panes] { panes->doResize(); }); });
}

void OperationTabViewController::changeKeyDataCharset() {
  d_->outlets.labKey.setStringValue(keyLabelText(d_->outlets.popKeyDataCharset.titleOfSelectedItem()));
  resetFormForNewKey();
  search();
}

void OperationTabViewController::changeValueDataCharset() {
  OperationTabLayout& outlets = d_->outlets;
  if (!outlets.valueDataStringScrollView.isHidden()) return d_->string.changeCharset();
  if (!outlets.valueDataSetScrollView.isHidden()) {
    d_->tables.changeCharset(outlets.valueDataSetTable);
  } else if (!outlets.valueDataHashScrollView.isHidden()) {
    d_->tables.changeCharset(outlets.valueDataHashTable);
  } else {
    d_->tables.changeCharset(outlets.valueDataSortedSetTable);
  }
  doResizeLater();
}

void OperationTabViewController::translateSlash() {
  d_->form.translateKey();
  // A text in an open cell was typed while the box said otherwise.
  d_->editing.endCellEdits(!d_->outlets.chkTranslate.state());
  d_->tables.reloadAllTables();
  commitEditing();
}

}  // namespace tarn
