#pragma once

#include "platform/appkit/NSTableView.h"
#include "platform/appkit/table/TableHeader.h"
#include "platform/appkit/table/TableViewWidget.h"
#include "tests/support/widgets/Hand.h"

#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tarn::test {

using Log = std::vector<std::string>;

// A table of two columns, "name" and "score" (editable at once, as its filling says), above another control. Everything
// that the table says to anybody goes to `log`, in order.
class TableFixture : public testing::Test,
                     protected NSTableViewDataSource,
                     protected NSTableViewDelegate,
                     protected NSTableViewResponder,
                     protected NSTextFieldDelegate {
protected:
  TableFixture() {
    auto* layout = new QVBoxLayout(&window);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* child : std::initializer_list<QWidget*>{widget, other, button})
      layout->addWidget(child);
    button->setFocusPolicy(Qt::NoFocus);
    widget->setColumnTitles({"Name", "Score"});
    widget->setColumnIdentifiers({"nameColumn", "scoreColumn"});
    table.setTag(6);
    table.setDataSource(this);
    table.setDelegate(this);
    table.setResponder(this);
    table.setOpensCell([this](int row, int column) {
      open(row, column);
      log.push_back("open " + place(row, column));
    });
    show(window, {420, 320});
    other->setFocus();
    log.clear();
  }

  int numberOfRowsInTableView(const NSTableView& asking) override {
    EXPECT_EQ(&asking, &table);
    return rowCount;
  }

  void viewForTableColumn(NSTableView&, int column, int row, NSTableCellView& cell) override {
    ++fills;
    EXPECT_EQ(cell.stringValue(), "");
    EXPECT_EQ(cell.toolTip(), "");
    EXPECT_EQ(cell.tag(), 0);
    EXPECT_FALSE(cell.isEditable());
    cell.setStringValue(text(row, column));
    if (column == 1) {
      cell.setEditable(true);
      cell.setTag(7);
      cell.setDelegate(this);
    }
  }

  std::string text(int row, int column) const {
    const auto known = texts.find({row, column});
    return known == texts.end() ? (column == 0 ? "name" : "1") + std::to_string(row) : known->second;
  }

  void fill(int rows) {
    rowCount = rows;
    table.reloadData();
  }

  void tableViewSelectionIsChanging(NSTableView&) override { log.push_back("changing " + selection()); }
  void tableViewSelectionDidChange(NSTableView&) override { log.push_back("changed " + selection()); }
  void mouseDown(NSTableView&, int row, int column) override { log.push_back("mouse " + place(row, column)); }
  void resignFirstResponder(NSTableView&) override {
    std::string edited;
    for (const int row : table.rowsWithViews()) {
      for (int column = 0; column < 2; ++column) {
        NSTableCellView* cell = table.viewAtColumn(column, row, false);
        if (cell->isEdited()) edited += " " + cell->stringValue();
      }
    }
    log.push_back("resign" + edited);
  }
  void controlTextDidBeginEditing(int tag) override { log.push_back("begin " + std::to_string(tag)); }
  void controlTextDidEndEditing(const TextEdit& edit) override {
    EXPECT_EQ(edit.table, &table);
    EXPECT_EQ(edit.field, nullptr);
    log.push_back("end " + std::to_string(edit.tag) + " " + place(edit.row, edit.column) + " " + edit.text);
  }

  static std::string place(int row, int column) { return std::to_string(row) + "," + std::to_string(column); }
  std::string selection() const { return std::to_string(table.selectedRow()); }
  Log take() { return std::exchange(log, {}); }

  QWidget& cells() { return *widget->viewport(); }
  QPoint at(int row, int column) const { return widget->cellRect(row, column).center(); }

  NSTableCellView& cell(int row, int column) { return *table.viewAtColumn(column, row, false); }

  void open(int row, int column) {
    NSTableCellView& opened = cell(row, column);
    opened.setEditable(true);
    opened.setTag(column == 0 ? 6 : 7);
    opened.setDelegate(this);
    opened.becomeFirstResponder();
  }

  TextFieldWidget& editor() const { return *widget->findChild<TextFieldWidget*>(); }
  bool isOpen() const { return editor().isVisible(); }

  int rowCount = 0;
  int fills = 0;
  std::map<std::pair<int, int>, std::string> texts;
  Log log;
  QWidget window;
  TableViewWidget* widget = new TableViewWidget;
  QLineEdit* other = new QLineEdit;
  QPushButton* button = new QPushButton("Button");
  NSTableView table{widget};
};

}  // namespace tarn::test
