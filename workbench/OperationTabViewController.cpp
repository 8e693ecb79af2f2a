#include "workbench/OperationTabViewController.h"

#include "platform/foundation/NSTimer.h"
#include "workbench/ConsolePane.h"
#include "workbench/KeyDeleter.h"
#include "workbench/StatusTexts.h"
#include "workbench/ValueLoader.h"
#include "workbench/WorkbenchHost.h"
#include "workbench/WorkbenchTab.h"
#include "workbench/keys/KeyBrowser.h"
#include "workbench/keys/KeyForm.h"
#include "workbench/save/KeySaver.h"
#include "workbench/value/ValuePanes.h"

#include <optional>
#include <utility>

namespace tarn {

namespace {

constexpr double resizeDelay = 0.1;

}  // namespace

// The shared part comes first, since all else points at it.
struct OperationTabViewController::Private {
  WorkbenchTab tab;
  KeyForm form{tab};
  ValuePanes panes{tab};
  ValueLoader loader{tab, form, panes};
  KeyBrowser browser{tab};
  KeySaver saver{tab, browser, form, panes};
  KeyDeleter deleter{tab, browser, form, panes};
  ConsolePane console{tab};

  void resizePanesLater() {
    NSTimer::scheduledTimerWithTimeInterval(resizeDelay, false, [panes = &panes, poster = tab.queue.poster()] {
      poster.post([panes] { panes->doResize(); });
    });
  }
};

OperationTabViewController::OperationTabViewController() : d_(std::make_shared<Private>()) {
  d_->tab.queue.setTab(d_);
  OperationTabLayout& outlets = d_->tab.outlets;

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
  d_->browser.setKeySelected([loader = &d_->loader](const Bytes& key, int row) { loader->selectKey(key, row); });
  d_->saver.setFormSaved([d = d_.get()] {
    // A load that still runs may bring what the server held before.
    d->loader.dropRunningLoads();
    d->tab.unseen.reset();
  });
  d_->loader.setRowsShown([d = d_.get()] { d->resizePanesLater(); });
  outlets.chkTranslate.setState(false);
}

OperationTabViewController::~OperationTabViewController() = default;

NSView& OperationTabViewController::view() {
  return d_->tab.outlets.view;
}

OperationTabLayout& OperationTabViewController::outlets() {
  return d_->tab.outlets;
}

const std::shared_ptr<ServerItem>& OperationTabViewController::server() const {
  return d_->tab.queue.server();
}

void OperationTabViewController::open(std::shared_ptr<ServerItem> server) {
  d_->tab.queue.setServer(std::move(server));
  updateStatusLabel();
  fillDatabases();
  resetWorkbenchView();
}

void OperationTabViewController::showServerName(const std::string& text) {
  d_->tab.outlets.labServerName.setStringValue(text);
}

void OperationTabViewController::updateStatusLabel() {
  if (server()) showStatus(server()->connectionStatus());
}

void OperationTabViewController::showStatus(ConnectionStatus status) {
  d_->tab.outlets.labStatus.setStringValue(serverStatusText(status));
  d_->tab.outlets.tableKeys.setPlaceholderString(noKeysText(status));
}

void OperationTabViewController::updateDealingQueueLabel() {
  d_->tab.queue.updateDealingQueueLabel();
}

void OperationTabViewController::showConnection(ConnectionStatus status) {
  showStatus(status);
  if (status == ConnectionStatus::connected) {
    selectShownDatabaseAgain();
  } else {
    d_->tab.outlets.popDatabase.removeAllItems();
  }
}

void OperationTabViewController::fillDatabases() {
  d_->tab.outlets.popDatabase.removeAllItems();
  const int count = static_cast<int>(server()->dbs()->size());
  for (int index = 0; index < count; ++index) {
    d_->tab.outlets.popDatabase.addItemWithTitle("db" + std::to_string(index));
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
  // The parts of a tab may outlive it behind an alert of theirs.
  d_->tab.queue.addSelect(before, [weak = weak_from_this(), before](bool selected) {
    const auto self = weak.lock();
    if (self && !selected && self->shownDatabase() == before) self->startAnewOnFirstDatabase();
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
  d_->browser.selectAndSearch(index);
}

void OperationTabViewController::selectDatabase(int index) {
  d_->tab.outlets.popDatabase.selectItemAtIndex(index);
  d_->tab.queue.setDatabase(index);
}

int OperationTabViewController::shownDatabase() const {
  return d_->tab.queue.database();
}

std::shared_ptr<void> OperationTabViewController::beginWork() {
  return d_->tab.queue.beginWork();
}

void OperationTabViewController::resetWorkbenchView() {
  if (!server()) return;
  OperationTabLayout& outlets = d_->tab.outlets;
  const std::string charset = server()->defaultCharset();
  outlets.popKeyDataCharset.removeAllItems();
  outlets.popKeyDataCharset.addItemsWithTitles(textFormNames());
  outlets.popKeyDataCharset.selectItemWithTitle(charset);
  outlets.labKey.setStringValue(keyLabelText(charset));

  d_->loader.dropRunningLoads();
  d_->browser.showKeys({});
  d_->tab.type.reset();
  outlets.txtSearchKey.setStringValue("");
  d_->form.blank("", "");
  outlets.chkTranslate.setState(false);
  outlets.chkExactly.setState(false);
  d_->panes.string().empty();
  d_->panes.show(std::nullopt);
}

void OperationTabViewController::resetFormForNewKey() {
  d_->loader.dropRunningLoads();
  d_->form.blank("-1", ttlToolTip("-1"));
  d_->panes.string().blank();
  d_->panes.emptyRows();
  doResizeLater();
  d_->tab.outlets.chkTranslate.setState(false);
}

void OperationTabViewController::newKeyTypeChosen(ValueType type) {
  WorkbenchTab& tab = d_->tab;
  d_->form.showType(newTypeText(valueTypeTitle(type)));
  tab.type = type;
  tab.outlets.tableKeys.deselectAll();
  tab.loadedKey.reset();
  d_->panes.show(type);
  tab.isNew = true;
  tab.unseen.reset();
  resetFormForNewKey();
}

void OperationTabViewController::search() {
  d_->browser.search();
}

void OperationTabViewController::doResize() {
  d_->panes.doResize();
}

void OperationTabViewController::doResizeLater() {
  d_->resizePanesLater();
}

void OperationTabViewController::changeKeyDataCharset() {
  d_->tab.outlets.labKey.setStringValue(keyLabelText(d_->tab.outlets.popKeyDataCharset.titleOfSelectedItem()));
  resetFormForNewKey();
  if (!d_->tab.isNew) {
    d_->panes.string().empty();
    d_->tab.unseen.emplace();
  }
  search();
}

void OperationTabViewController::changeValueDataCharset() {
  if (d_->panes.changeCharset()) doResizeLater();
}

void OperationTabViewController::translateSlash() {
  d_->form.translateKey();
  // A text in an open cell was typed while the box said otherwise.
  d_->panes.endCellEdits(!d_->tab.outlets.chkTranslate.state());
  d_->panes.reloadRows();
  commitEditing();
}

}  // namespace tarn
