#include "resources/OperationTabLayout.h"

#include "platform/appkit/Fonts.h"
#include "platform/foundation/NSLocalizedString.h"
#include "ui_OperationTab.h"

#include <QPointer>

namespace tarn {

namespace {

// Keys, values and the console, whose characters must not be mistaken for one another. Tables have such a face by
// themselves.
void useMonospacedFace(const Ui::OperationTab& ui) {
  const QFont face = monospacedFont(NSTableView::rowHeight);
  for (QWidget* widget : std::initializer_list<QWidget*>{
           ui.txtSearchKey, ui.txtKey, ui.txtTTL, ui.valueDataStringTxtView, ui.setValueTextView, ui.hashKeyTextView,
           ui.hashValueTextView, ui.sortedSetValueTextView, ui.sortedSetScoreTextField, ui.txtViewCli}) {
    widget->setFont(face);
  }
}

}  // namespace

struct OperationTabLayout::Widgets {
  Widgets() : root(new QWidget) {
    ui.setupUi(root);
    useMonospacedFace(ui);
    ui.browserSplitter->setSizes({272, 644});
    ui.browserSplitter->setStretchFactor(0, 1);
    ui.browserSplitter->setStretchFactor(1, 3);
    ui.consoleSplitter->setSizes({520, 160});
    ui.consoleSplitter->setStretchFactor(0, 1);
    ui.consoleSplitter->setStretchFactor(1, 0);
    ui.valueSplitter->setSizes({300, 140});
    ui.valueSplitter->setStretchFactor(0, 1);
    ui.valueSplitter->setStretchFactor(1, 0);
  }

  // The tab may be closed by one of its own buttons, which is then still on its way through the toolkit. A tab view
  // that showed the widgets and went first has taken them along.
  ~Widgets() {
    if (!root) return;
    root->hide();
    root->deleteLater();
  }

  QPointer<QWidget> root;
  Ui::OperationTab ui;
};

OperationTabLayout::OperationTabLayout()
    : widgets_(std::make_unique<Widgets>()),
      view(widgets_->root),
      labServerName(widgets_->ui.labServerName),
      labStatus(widgets_->ui.labStatus),
      labDealingQueue(widgets_->ui.labDealingQueue),
      btnReconnect(widgets_->ui.btnReconnect),
      btnClose(widgets_->ui.btnClose),
      activityBar(widgets_->ui.activityBar),
      txtSearchKey(widgets_->ui.txtSearchKey),
      btnSearchKeyClear(widgets_->ui.btnSearchKeyClear),
      chkExactly(widgets_->ui.chkExactly),
      popLimit(widgets_->ui.popLimit),
      tableKeys(widgets_->ui.tableKeys),
      popDatabase(widgets_->ui.popDatabase),
      popKeyDataCharset(widgets_->ui.popKeyDataCharset),
      labKey(widgets_->ui.labKey),
      labType(widgets_->ui.labType),
      popType(widgets_->ui.popType),
      txtKey(widgets_->ui.txtKey),
      txtTTL(widgets_->ui.txtTTL),
      labKeySize(widgets_->ui.labKeySize),
      labDataSize(widgets_->ui.labDataSize),
      chkTranslate(widgets_->ui.chkTranslate),
      btnSave(widgets_->ui.btnSave),
      btnNew(widgets_->ui.btnNew),
      btnDelete(widgets_->ui.btnDelete),
      btnReload(widgets_->ui.btnReload),
      popValueDataCharset(widgets_->ui.popValueDataCharset),
      valueDataStringScrollView(widgets_->ui.valueDataStringScrollView),
      valueDataStringTxtView(widgets_->ui.valueDataStringTxtView),
      valueDataSetScrollView(widgets_->ui.valueDataSetScrollView),
      valueDataSetTable(widgets_->ui.valueDataSetTable),
      setValueScrollView(widgets_->ui.setValueScrollView),
      setValueTextView(widgets_->ui.setValueTextView),
      setValueLabel(widgets_->ui.setValueLabel),
      valueDataHashScrollView(widgets_->ui.valueDataHashScrollView),
      valueDataHashTable(widgets_->ui.valueDataHashTable),
      hashKeyScrollView(widgets_->ui.hashKeyScrollView),
      hashKeyTextView(widgets_->ui.hashKeyTextView),
      hashKeyLabel(widgets_->ui.hashKeyLabel),
      hashValueScrollView(widgets_->ui.hashValueScrollView),
      hashValueTextView(widgets_->ui.hashValueTextView),
      hashValueLabel(widgets_->ui.hashValueLabel),
      valueDataSortedSetScrollView(widgets_->ui.valueDataSortedSetScrollView),
      valueDataSortedSetTable(widgets_->ui.valueDataSortedSetTable),
      sortedSetValueScrollView(widgets_->ui.sortedSetValueScrollView),
      sortedSetValueTextView(widgets_->ui.sortedSetValueTextView),
      sortedSetValueLabel(widgets_->ui.sortedSetValueLabel),
      sortedSetScoreTextField(widgets_->ui.sortedSetScoreTextField),
      sortedSetScoreLabel(widgets_->ui.sortedSetScoreLabel),
      btnDeleteSelectedRows(widgets_->ui.btnDeleteSelectedRows),
      btnAddRow(widgets_->ui.btnAddRow),
      cliScrollView(widgets_->ui.cliScrollView),
      txtViewCli(widgets_->ui.txtViewCli) {
  for (NSTableView* table : {&valueDataSetTable, &valueDataHashTable, &valueDataSortedSetTable}) {
    table->setPlaceholderString(localizedString("No rows. Choose a key on the left to read its value."));
  }
}

OperationTabLayout::~OperationTabLayout() = default;

}  // namespace tarn
