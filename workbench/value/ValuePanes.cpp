#include "workbench/value/ValuePanes.h"

#include "platform/foundation/NSLocalizedString.h"

namespace tarn {

namespace {

RowsPane::Controls controlsOfList(OperationTabLayout& outlets) {
  return {outlets.valueDataSetTable,
          outlets.valueDataSetScrollView,
          {{2, 1.0, &outlets.setValueTextView}},
          {&outlets.setValueScrollView, &outlets.setValueLabel},
          nullptr,
          localizedString("SetTable快捷菜单")};
}

RowsPane::Controls controlsOfHash(OperationTabLayout& outlets) {
  return {outlets.valueDataHashTable,
          outlets.valueDataHashScrollView,
          {{4, 0.5, &outlets.hashKeyTextView}, {5, 0.5, &outlets.hashValueTextView}},
          {&outlets.hashKeyScrollView, &outlets.hashKeyLabel, &outlets.hashValueScrollView, &outlets.hashValueLabel},
          nullptr,
          localizedString("HashTable快捷菜单")};
}

RowsPane::Controls controlsOfSortedSet(OperationTabLayout& outlets) {
  return {outlets.valueDataSortedSetTable,
          outlets.valueDataSortedSetScrollView,
          {{6, 0.7, &outlets.sortedSetValueTextView}, {7, 0.3, nullptr}},
          {&outlets.sortedSetValueScrollView, &outlets.sortedSetValueLabel, &outlets.sortedSetScoreTextField,
           &outlets.sortedSetScoreLabel},
          &outlets.sortedSetScoreTextField,
          localizedString("SortedSet快捷菜单")};
}

}  // namespace

ValuePanes::ValuePanes(WorkbenchTab& tab)
    : tab_(tab),
      string_(tab),
      rows_{{{tab, controlsOfList(tab.outlets)},
             {tab, controlsOfHash(tab.outlets)},
             {tab, controlsOfSortedSet(tab.outlets)}}} {
  tab_.outlets.popValueDataCharset.removeAllItems();
  tab_.outlets.popValueDataCharset.addItemsWithTitles(textFormNames());
  tab_.outlets.btnDeleteSelectedRows.setAction([this] {
    if (shown_) shown_->deleteSelectedRow();
  });
  tab_.outlets.btnAddRow.setAction([this] {
    if (shown_) shown_->addRow();
  });
  show(std::nullopt);
}

void ValuePanes::show(std::optional<ValueType> type) {
  showPane(rowsOf(type));
  tab_.outlets.btnDeleteSelectedRows.setHidden(!shown_);
  tab_.outlets.btnAddRow.setHidden(!shown_);
}

void ValuePanes::showString() {
  showPane(nullptr);
}

void ValuePanes::showPane(RowsPane* rows) {
  shown_ = rows;
  string_.setHidden(shown_ != nullptr);
  for (RowsPane& pane : rows_)
    pane.setHidden(&pane != shown_);
}

RowsPane* ValuePanes::rowsOf(std::optional<ValueType> type) {
  if (!type) return nullptr;
  switch (*type) {
    case ValueType::string:
      break;
    case ValueType::list:
    case ValueType::set:
      return &rows_[0];
    case ValueType::hash:
      return &rows_[1];
    case ValueType::sortedSet:
      return &rows_[2];
  }
  return nullptr;
}

bool ValuePanes::changeCharset() {
  if (shown_) {
    shown_->changeCharset();
  } else {
    string_.changeCharset();
  }
  return shown_ != nullptr;
}

void ValuePanes::emptyRows() {
  for (RowsPane& pane : rows_)
    pane.empty();
}

void ValuePanes::reloadRows() {
  for (RowsPane& pane : rows_)
    pane.reload();
}

void ValuePanes::commitCells() {
  for (RowsPane& pane : rows_)
    pane.commitCells();
}

void ValuePanes::endCellEdits(bool translates) {
  for (RowsPane& pane : rows_)
    pane.endCellEdits(translates);
}

void ValuePanes::doResize() {
  for (RowsPane& pane : rows_)
    pane.fitColumns();
}

}  // namespace tarn
