#pragma once

#include "codec/CharsetEnum.h"
#include "tests/support/AlertRecorder.h"
#include "tests/workbench/TableHands.h"
#include "workbench/RowActions.h"
#include "workbench/RowEditing.h"
#include "workbench/ValuePanes.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn::test {

using Texts = std::vector<std::string>;
using Rows = std::vector<Bytes>;

// A tab on the screen, with its rows in reach and without a server.
class RowsFixture : public ::testing::Test {
protected:
  struct Tab {
    OperationTabLayout outlets;
    TabState state;
    TabQueue queue{outlets, state};
    ValuePanes panes{outlets};
    ValueTables tables{outlets, state, queue};
    RowEditing editing{outlets, state, queue, tables};
    RowActions actions{outlets, state, queue, tables, editing};
  };

  RowsFixture() {
    tab->queue.setTab(tab);
    outlets.popValueDataCharset.removeAllItems();
    outlets.popValueDataCharset.addItemsWithTitles(charsetTitles());
    outlets.chkTranslate.setState(true);
    show(*outlets.view.widget(), {900, 900});
  }

  void showPane(const char* type) {
    tab->panes.showValuePane(type);
    tab->panes.doResize();
    tab->tables.tableForType(type)->reloadData();
    settle();
  }
  void showList(Rows rows) {
    tab->tables.setRows(state.setValue, std::move(rows));
    showPane("List");
  }
  void showHash(Rows fields, Rows values) {
    tab->tables.setRows(state.hashKey, std::move(fields));
    tab->tables.setRows(state.hashVal, std::move(values));
    showPane("Hash");
  }
  void showSortedSet(Rows members, Texts scores) {
    tab->tables.setRows(state.sortedSetValue, std::move(members));
    tab->tables.setScores(std::move(scores));
    showPane("SortedSet");
  }

  // The keyboard goes to another control.
  void leave() {
    outlets.txtKey.becomeFirstResponder();
    settle();
  }
  static NSTableCellView& cell(NSTableView& table, int row, int column) {
    return *table.viewAtColumn(column, row, true);
  }
  static Texts texts(const ValueColumn& rows) {
    Texts result;
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
      result.push_back(rows.row(row).text);
    return result;
  }

  AlertRecorder alerts;
  std::shared_ptr<Tab> tab = std::make_shared<Tab>();
  OperationTabLayout& outlets = tab->outlets;
  TabState& state = tab->state;
  NSTableView& setTable = outlets.valueDataSetTable;
  NSTableView& hashTable = outlets.valueDataHashTable;
  NSTableView& sortedSetTable = outlets.valueDataSortedSetTable;
};

}  // namespace tarn::test
