#include "workbench/ValuePanes.h"

#include <initializer_list>

namespace tarn {

namespace {

void fitColumns(const NSView& scrollView, NSTableView& table, std::initializer_list<double> shares) {
  constexpr double frameAndScroller = 8.0;
  const double width = scrollView.frame().width - frameAndScroller;
  int column = 0;
  for (const double share : shares) {
    table.tableColumn(column).setMaxWidth(share * width);
    table.tableColumn(column).setWidth(share * width);
    ++column;
  }
}

}  // namespace

ValuePanes::ValuePanes(OperationTabLayout& outlets) : outlets_(outlets) {
  showValuePane("");
}

void ValuePanes::showValuePane(std::string_view type) {
  const bool rows = type == "List" || type == "Set";
  const bool hash = type == "Hash";
  const bool sortedSet = type == "SortedSet";

  outlets_.valueDataStringScrollView.setHidden(rows || hash || sortedSet);

  outlets_.valueDataSetScrollView.setHidden(!rows);
  outlets_.setValueScrollView.setHidden(!rows);
  outlets_.setValueLabel.setHidden(!rows);

  outlets_.valueDataHashScrollView.setHidden(!hash);
  outlets_.hashKeyScrollView.setHidden(!hash);
  outlets_.hashKeyLabel.setHidden(!hash);
  outlets_.hashValueScrollView.setHidden(!hash);
  outlets_.hashValueLabel.setHidden(!hash);

  outlets_.valueDataSortedSetScrollView.setHidden(!sortedSet);
  outlets_.sortedSetValueScrollView.setHidden(!sortedSet);
  outlets_.sortedSetValueLabel.setHidden(!sortedSet);
  outlets_.sortedSetScoreTextField.setHidden(!sortedSet);
  outlets_.sortedSetScoreLabel.setHidden(!sortedSet);

  outlets_.btnDeleteSelectedRows.setHidden(!rows && !hash && !sortedSet);
  outlets_.btnAddRow.setHidden(!rows && !hash && !sortedSet);
}

void ValuePanes::doResize() {
  fitColumns(outlets_.valueDataSetScrollView, outlets_.valueDataSetTable, {1.0});
  fitColumns(outlets_.valueDataHashScrollView, outlets_.valueDataHashTable, {0.5, 0.5});
  fitColumns(outlets_.valueDataSortedSetScrollView, outlets_.valueDataSortedSetTable, {0.7, 0.3});
}

}  // namespace tarn
