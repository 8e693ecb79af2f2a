#pragma once

#include "platform/appkit/NSTableView.h"
#include "platform/appkit/table/TableHeader.h"
#include "platform/appkit/table/TableViewWidget.h"
#include "tests/appkit/Steps.h"

namespace tarn::test {

// A table of two columns, "name" and "score" (editable at once, as its filling says), which says all to `log`.
class TableFixture : public RowSteps<NSTableView, TableViewWidget>,
                     protected NSTableViewDataSource,
                     protected NSTableViewDelegate,
                     protected NSTableViewResponder,
                     protected NSTextFieldDelegate {
protected:
  TableFixture() {
    widget->setColumnTitles({"Name", "Score"});
    widget->setColumnIdentifiers({"nameColumn", "scoreColumn"});
    view.setDataSource(this);
    view.setDelegate(this);
    view.setResponder(this);
    view.setOpensCell([this](int row, int column) { open(row, column), log.add("open " + name(row, column)); });
    show(*widget);
    log.take();
  }

  int numberOfRowsInTableView(const NSTableView&) override { return rowCount; }
  void viewForTableColumn(NSTableView&, int column, int row, NSTableCellView& cell) override {
    ++fills;
    EXPECT_TRUE(cell.stringValue().empty() && cell.toolTip().empty() && cell.tag() == 0 && !cell.isEditable());
    cell.setStringValue(text(row, column));
    if (column == 1) makeEditable(cell, 7);
  }
  void tableViewSelectionIsChanging(NSTableView&) override { log.add("changing"); }
  void tableViewSelectionDidChange(NSTableView&) override { log.add("changed " + std::to_string(view.selectedRow())); }
  void mouseDown(NSTableView&, int row, int column) override { log.add("mouse " + name(row, column)); }
  void resignFirstResponder(NSTableView&) override { log.add("resign" + changedCells()); }
  void controlTextDidBeginEditing(int tag) override { log.add("begin " + std::to_string(tag)); }
  void controlTextDidEndEditing(const TextEdit& edit) override {
    EXPECT_TRUE(edit.table == &view && !edit.field);
    log.add("end " + std::to_string(edit.tag) + " " + name(edit.row, edit.column) + " " + edit.text);
    if (whenEnded) whenEnded();
  }

  static std::string name(int row, int column) { return std::to_string(row) + "/" + std::to_string(column); }
  std::string text(int row, int column) const {
    const auto known = texts.find({row, column});
    return known != texts.end() ? known->second : (column == 0 ? "name" : "1") + std::to_string(row);
  }
  void makeEditable(NSTableCellView& cell, int tag) {
    cell.setEditable(true);
    cell.setTag(tag);
    cell.setDelegate(this);
  }
  void fill(int rows) {
    rowCount = rows;
    view.reloadData();
  }
  NSTableCellView& cell(int row, int column) { return *view.viewAtColumn(column, row, false); }
  void open(int row, int column) {
    makeEditable(cell(row, column), 6 + column);
    cell(row, column).becomeFirstResponder();
  }
  TextFieldWidget& editor() const { return *widget->findChild<TextFieldWidget*>(); }

  // Each cell in sight that doesn't show the model's text, with a star while it is edited.
  std::string changedCells() {
    std::string changed;
    for (const int row : view.rowsWithViews()) {
      for (const int column : {0, 1}) {
        const std::string shown = cell(row, column).stringValue();
        if (shown == text(row, column)) continue;
        changed += " " + name(row, column) + "=" + shown + (cell(row, column).isEdited() ? "*" : "");
      }
    }
    return changed;
  }
  // The selected row, what has the keyboard (if it is a cell, its place), and the changed cells.
  std::string shown() override {
    const QPoint centre = editor().geometry().center();
    const std::string place = name(widget->rowAt(centre.y()), widget->columnAt(centre.x()));
    EXPECT_EQ(editor().isVisible(), editor().hasFocus());
    const std::string keyboard = editor().isVisible() ? place : other->hasFocus() ? "other" : "table";
    return std::to_string(view.selectedRow()) + " " + keyboard + changedCells();
  }
  QPoint at(const std::string& what) override {
    return widget->cellRect(std::stoi(what), std::stoi(what.substr(what.find('/') + 1))).center();
  }

  std::function<void()> whenEnded;
  int rowCount = 0;
  int fills = 0;
  std::map<std::pair<int, int>, std::string> texts;
};

}  // namespace tarn::test
