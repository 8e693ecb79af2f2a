#pragma once

#include "platform/appkit/NSTableView.h"
#include "platform/appkit/table/TableHeader.h"
#include "platform/appkit/table/TableViewWidget.h"
#include "tests/appkit/Keys.h"

#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <map>

namespace tarn::test {

// A table of two columns, "name" and "score" (editable at once, as its filling
// says), above another control and a button. Everything that the table says
// goes to `log`.
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
    table.setDataSource(this);
    table.setDelegate(this);
    table.setResponder(this);
    table.setOpensCell([this](int row, int column) {
      open(row, column);
      log.add("open " + cellName(row, column));
    });
    show(window, {420, 320});
    other->setFocus();
    log.take();
  }

  int numberOfRowsInTableView(const NSTableView&) override { return rowCount; }
  void viewForTableColumn(NSTableView&, int column, int row, NSTableCellView& cell) override {
    ++fills;
    EXPECT_TRUE(cell.stringValue().empty() && cell.toolTip().empty() && cell.tag() == 0 && !cell.isEditable());
    const auto known = texts.find({row, column});
    cell.setStringValue(known != texts.end() ? known->second : (column == 0 ? "name" : "1") + std::to_string(row));
    if (column == 0) return;
    cell.setEditable(true);
    cell.setTag(7);
    cell.setDelegate(this);
  }
  void tableViewSelectionIsChanging(NSTableView&) override { log.add("changing"); }
  void tableViewSelectionDidChange(NSTableView&) override { log.add("changed " + std::to_string(table.selectedRow())); }
  void mouseDown(NSTableView&, int row, int column) override { log.add("mouse " + cellName(row, column)); }
  void resignFirstResponder(NSTableView&) override {
    std::string edited;
    for (const int row : table.rowsWithViews())
      for (int column = 0; column < 2; ++column)
        if (cell(row, column).isEdited()) edited += " " + cell(row, column).stringValue();
    log.add("resign" + edited);
  }
  void controlTextDidBeginEditing(int tag) override { log.add("begin " + std::to_string(tag)); }
  void controlTextDidEndEditing(const TextEdit& edit) override {
    EXPECT_TRUE(edit.table == &table && !edit.field);
    log.add("end " + std::to_string(edit.tag) + " " + cellName(edit.row, edit.column) + " " + edit.text);
  }

  static std::string cellName(int row, int column) { return std::to_string(row) + "/" + std::to_string(column); }
  void fill(int rows) {
    rowCount = rows;
    table.reloadData();
  }
  QWidget& cells() { return *widget->viewport(); }
  QPoint at(int row, int column) const { return widget->cellRect(row, column).center(); }
  NSTableCellView& cell(int row, int column) { return *table.viewAtColumn(column, row, false); }
  void open(int row, int column) {
    NSTableCellView& opened = cell(row, column);
    opened.setEditable(true);
    opened.setTag(6 + column);
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
