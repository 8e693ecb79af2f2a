#include "benchmarks/workbench_benchmark_rows.h"

#include "benchmarks/workbench_benchmark_tab.h"
#include "tests/support/widgets/Hand.h"
#include "workbench/value/ValuePanes.h"

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
  WorkbenchTab tab;
  ValuePanes panes{tab};

  NSTableView& table = tab.outlets.valueDataSetTable;
  RowsPane& pane = *panes.rowsOf(ValueType::list);
};

std::shared_ptr<RowsTab> shownTab(const char* rowText) {
  auto tab = std::make_shared<RowsTab>();
  tab->tab.queue.setTab(tab);
  std::vector<Bytes> rows;
  rows.reserve(rowCount);
  for (int i = 0; i < rowCount; ++i)
    rows.emplace_back(rowText + std::to_string(rowCount + i));
  tab->pane.setRows(loadedRows(ValueType::list, std::move(rows)));
  tab->panes.show(ValueType::list);
  test::show(*tab->tab.outlets.view.widget(), {940, 700});
  tab->panes.doResize();
  tab->pane.reload();
  paint(tab->table);
  return tab;
}

double addRow(RowsTab& tab) {
  return millisecondsOf([&] {
    tab.pane.addRow();
    paint(tab.table);
  });
}

double deleteRow(RowsTab& tab) {
  return millisecondsOf([&] {
    tab.pane.deleteSelectedRow();
    paint(tab.table);
  });
}

// From Enter to the painted table, with the row in its editor.
double commitCell(RowsTab& tab, const std::string& text) {
  const int row = tab.table.selectedRow();
  tab.pane.mouseDown(tab.table, row, 0);
  tab.pane.mouseDown(tab.table, row, 0);
  test::type(text);
  const double committed = millisecondsOf([&] {
    test::press(Qt::Key_Return);
    paint(tab.table);
  });
  const auto index = static_cast<std::size_t>(row);
  if (!tab.pane.rows().columns().front().text(index).starts_with(text))
    throw std::runtime_error("the cell wasn't committed");
  return committed;
}

double changeCharset(RowsTab& tab, const char* title) {
  tab.tab.outlets.popValueDataCharset.selectItemWithTitle(title);
  return millisecondsOf([&] {
    tab.pane.changeCharset();
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
