#include "benchmarks/workbench_benchmark_rows.h"

#include "benchmarks/workbench_benchmark_tab.h"
#include "codec/CharsetEnum.h"
#include "tests/support/widgets/Hand.h"
#include "workbench/RowActions.h"
#include "workbench/RowEditing.h"
#include "workbench/ValuePanes.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tarn::bench {

namespace {

constexpr int rowCount = 1'000'000;

// A tab without a server, whose rows come from here.
struct RowsTab {
  OperationTabLayout outlets;
  TabState state;
  TabQueue queue{outlets, state};
  ValuePanes panes{outlets};
  ValueTables tables{outlets, state, queue};
  RowEditing editing{outlets, state, queue, tables};
  RowActions actions{outlets, state, queue, tables, editing};

  NSTableView& table = outlets.valueDataSetTable;
};

std::shared_ptr<RowsTab> shownTab(const char* rowText) {
  auto tab = std::make_shared<RowsTab>();
  tab->queue.setTab(tab);
  tab->outlets.popValueDataCharset.removeAllItems();
  tab->outlets.popValueDataCharset.addItemsWithTitles(charsetTitles());
  std::vector<Bytes> rows;
  rows.reserve(rowCount);
  for (int i = 0; i < rowCount; ++i)
    rows.emplace_back(rowText + std::to_string(rowCount + i));
  tab->tables.setRows(tab->state.setValue, std::move(rows));
  tab->panes.showValuePane("List");
  test::show(*tab->outlets.view.widget(), {940, 700});
  tab->panes.doResize();
  tab->table.reloadData();
  paint(tab->table);
  return tab;
}

double addRow(RowsTab& tab) {
  return millisecondsOf([&] {
    tab.actions.addRow(tab.table);
    paint(tab.table);
  });
}

double deleteRow(RowsTab& tab) {
  return millisecondsOf([&] {
    tab.actions.deleteRows(tab.table);
    paint(tab.table);
  });
}

// From Enter to the painted table, with the row in its editor.
double commitCell(RowsTab& tab, const std::string& text) {
  const int row = tab.table.selectedRow();
  tab.editing.didDoubleClick(tab.table, row, 0);
  test::type(text);
  const double committed = millisecondsOf([&] {
    test::press(Qt::Key_Return);
    paint(tab.table);
  });
  const auto index = static_cast<std::size_t>(row);
  if (!tab.state.setValue.row(index).text.starts_with(text)) throw std::runtime_error("the cell wasn't committed");
  return committed;
}

double changeCharset(RowsTab& tab, const char* title) {
  tab.outlets.popValueDataCharset.selectItemWithTitle(title);
  return millisecondsOf([&] {
    tab.tables.changeCharset(tab.table);
    paint(tab.table);
  });
}

}  // namespace

void measureRows(BenchmarkReport& report) {
  const auto tab = shownTab("item of a list ");
  tab->table.selectRow(2);
  add(report, "adding a row near the top of 1,000,000", medianOfRounds([&] { return addRow(*tab); }), "ms", 50);
  add(report, "deleting it", medianOfRounds([&] { return deleteRow(*tab); }), "ms", 50);
  add(report, "committing a cell of 1,000,000 rows", medianOfRounds([&] { return commitCell(*tab, "typed"); }), "ms",
      5);
  const auto gbk = shownTab("\xD6\xD0\xCE\xC4");
  add(report, "1,000,000 rows from utf8 to GBK", medianOfRounds([&] {
        changeCharset(*gbk, "utf8");
        return changeCharset(*gbk, "GBK");
      }),
      "ms", 1500);
  add(report, "1,000,000 rows from GBK to utf8", medianOfRounds([&] {
        changeCharset(*gbk, "GBK");
        return changeCharset(*gbk, "utf8");
      }),
      "ms", 400);
}

}  // namespace tarn::bench
