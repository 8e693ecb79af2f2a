#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/table/TableHeader.h"
#include "platform/appkit/table/TableViewWidget.h"
#include "platform/appkit/text/ElidedLine.h"
#include "tests/appkit/Steps.h"

#include <QAccessible>
#include <QComboBox>

namespace tarn::test {
namespace {

// A table of two columns, "name" and "score" (editable at once, as its filling says), which says all to `log`.
class Table : public RowSteps<NSTableView, TableViewWidget>,
              protected NSTableViewDataSource,
              protected NSTableViewDelegate,
              protected NSTableViewResponder,
              protected NSTextFieldDelegate {
protected:
  Table() {
    widget->setColumnTitles({"Name", "Score"});
    widget->setColumnIdentifiers({"nameColumn", "scoreColumn"});
    view.setDataSource(this);
    view.setDelegate(this);
    view.setResponder(this);
    view.setOpensCell([this](int row, int column) { open(row, column), log.add("open " + name(row, column)); });
    show(*widget);
    log.take();
    fill(100);
    const auto onCell = [](const std::function<void(int row, int column)>& act) {
      return [act](const std::string& what) { act(std::stoi(what), std::stoi(what.substr(what.find('/') + 1))); };
    };
    verbs["fill"] = onCell([this](int rows, int) { fill(rows); });
    verbs["select"] = onCell([this](int row, int) { row < 0 ? view.deselectAll() : view.selectRow(row); });
    verbs["scroll"] = onCell([this](int row, int) { view.scrollRowToVisible(row); });
    verbs["open"] = onCell([this](int row, int column) { open(row, column); });
    verbs["try"] = onCell([this](int row, int column) { cell(row, column).becomeFirstResponder(); });
    verbs["set"] = onCell([this](int row, int column) { cell(row, column).setStringValue("set"); });
    verbs["reload"] = onCell([this](int row, int column) { view.reloadDataForRowIndexes({row}, {column}); });
    // An edit under way, and nothing said of it.
    verbs["edit"] = onCell([this](int row, int column) {
      fill(100), other->setFocus(), view.selectRow(row), open(row, column), type("x"), log.take();
    });
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

}  // namespace

TEST_F(Table, MakesAndRecyclesCellsForTheRowsInSightOnly) {
  fills = 0;
  fill(10'000'000);
  const int inSight = area().height() / NSTableView::rowHeight + 2;
  EXPECT_LE(fills, 2 * inSight);
  cell(0, 0).setEditable(true);
  cell(0, 0).setToolTip("tip");
  run({{"scroll 9999999; click 9999999/0", "changing, changed 9999999, mouse 9999999/0", "9999999 table"}});
  EXPECT_LE(view.rowsWithViews().size(), std::size_t(inSight));
  view.scrollRowToVisible(0);
  EXPECT_TRUE(!cell(0, 0).isEditable() && cell(0, 0).toolTip().empty());
  // On demand also one out of sight, which then stays the row's.
  NSTableCellView* const far = view.viewAtColumn(1, 500, true);
  EXPECT_EQ(far->stringValue(), "1500");
  view.scrollRowToVisible(500);
  EXPECT_EQ(view.viewAtColumn(1, 500, false), far);
  for (const auto& [row, column] : {std::pair{10'000'000, 1}, {500, 2}, {-1, 0}})
    EXPECT_EQ(view.viewAtColumn(column, row, true), nullptr);
}

TEST_F(Table, SaysEachChangeOfTheSelectionOnceAndAReloadSaysNone) {
  const std::string page = std::to_string(area().height() / NSTableView::rowHeight - 1);
  const std::string last = "0," + std::to_string(area().height() - 1);
  texts[{2, 0}] = "model's";
  // clang-format off
  run({{"select 3", "changed 3", "3 other 2/0=name2"},
       {"reload 99/0; reload 2/0; select 3; select 100", "", "3 other"},
       {"select 4; select -1", "changed 4, changed -1", "-1 other"},
       {"click 2/0", "changing, changed 2, mouse 2/0", "2 table"},
       {"click 2/0; again 2/0", "mouse 2/0, mouse 2/0", "2 table"},
       {"ctrl 2/0", "changing, changed -1, mouse 2/0", "-1 table"},
       {"key Down Down Up Up", "changing, changed 0, changing, changed 1, changing, changed 0", "0 table"},
       {"key PgDown", "changing, changed " + page, page + " table"},
       {"key PgUp End Down; menu", "changing, changed 0, changing, changed 99, " + last + ", chosen", "99 table"},
       {"select -1; key Up Home", "changed -1, changing, changed 99, changing, changed 0", "0 table"},
       {"right 2/0", "changing, changed 2", "2 table"},
       {"menu 3/0", "changing, changed 3, there, chosen", "3 table"},
       {"menu", "0,71, chosen", "3 table"},
       {"bottom; menu", "there, chosen", "3 table"},
       {"key Tab", "resign", "3 other"},
       {"fill 4; click 5/0", "mouse -1/-1", "3 table"},
       {"fill 3", "", "-1 table"},
       {"fill 0; key Down PgUp; look", "new", "-1 table"},
       {"say Nothing; look; fill 3; look; say; look", "new, new, same", "-1 table"},
       {"select 1; look; leave; look", "changed 1, new, resign, new", "1 other"}});
  // clang-format on
}

TEST_F(Table, EditsCellsByKeysAndClicks) {
  // clang-format off
  run({{"try 1/0", "", "-1 other"},
       {"open 1/0; key 'ab; open 1/0; key 'c", "begin 6", "-1 1/0 1/0=abc*"},
       {"edit 1/0; key Return", "end 6 1/0 x", "1 table 1/0=x"},
       {"open 1/0; key Return", "", "1 table 1/0=x"},
       {"edit 1/0; key Escape", "", "1 table"},
       {"edit 1/0; key Tab", "end 6 1/0 x, open 1/1", "1 1/1 1/0=x"},
       {"key Tab", "changing, changed 2, open 2/0", "2 2/0 1/0=x"},
       {"edit 1/0; key Shift+Backtab", "end 6 1/0 x, changing, changed 0, open 0/1", "0 0/1 1/0=x"},
       {"edit 1/0; leave", "resign 1/0=x*, end 6 1/0 x", "1 other 1/0=x"},
       {"edit 1/0; click 3/0", "end 6 1/0 x, changing, changed 3, mouse 3/0", "3 table 1/0=x"},
       {"edit 1/0; click 2/1", "end 6 1/0 x, changing, changed 2, mouse 2/1", "2 2/1 1/0=x"},
       {"edit 1/0; open 2/1", "end 6 1/0 x", "1 2/1 1/0=x"},
       {"edit 1/0; set 1/0; key Return", "", "1 table 1/0=set"},
       {"edit 1/0; fill 100", "", "1 table"},
       {"edit 1/0; reload 1/0", "", "1 table"},
       {"select -1; key F2", "changed -1", "-1 table"},
       {"select 50; key F2", "changed 50, open 50/0", "50 50/0"},
       {"key Return Return Escape Enter", "open 50/0, open 50/0", "50 50/0"},
       {"scroll 99; open 99/1; key Tab", "", "50 table"}});
  // clang-format on
  // The bytes of a cell that is edited, but not changed by it.
  const std::string exact = texts[{0, 0}] = toUtf8(treacherousTexts);
  fill(1);
  run({{"open 0/0; key Ctrl+A Ctrl+X Ctrl+V Return", "begin 6, end 6 0/0 " + exact, "-1 table"}});
  struct NoA final : NSFormatter {
    bool isPartialStringValid(std::string_view text) const override { return !text.ends_with('a'); }
  };
  cell(0, 0).setFormatter(std::make_unique<NoA>());
  cell(0, 0).setStringValue("code's a");
  run({{"open 0/0", "", "-1 0/0 0/0=code's a"},
       {"key 'xay; open 0/1; key 'a", "begin 6, end 6 0/0 xy, begin 7", "-1 0/1 0/0=xy 0/1=a*"}});
  // The table may go in its own message.
  whenEnded = [&] { widget->deleteLater(); };
  keys("Return");
}

TEST_F(Table, AnOpenCellStaysOpenUnderAnInactiveWindowAMenuOrAPopUpAndOutOfSight) {
  QComboBox box;
  NSPopUpButton popUp{&box};
  box.setFocusPolicy(Qt::NoFocus);
  popUp.addItemsWithTitles({"a", "b"});
  window.layout()->addWidget(&box);
  QWidget second;
  verbs["window"] = [&](auto&) { test::show(second, {80, 60}); };
  verbs["back"] = [&](auto&) { second.close(), test::show(window); };
  verbs["pop"] = [&](auto&) { popUpMenu(NSMenu("Menu"), window, window.pos()), settle(), press(Qt::Key_Escape); };
  verbs["choose"] = [&](auto&) { choose(popUp, "b"), waitUntil([&] { return editor().hasFocus(); }); };
  verbs["move"] = [&](auto&) { other->setFocus(); };
  run({{"edit 1/0; window; back; pop; choose", "", "1 1/0 1/0=x*"}, {"bottom; key 'y", "", "1 -1/0 1/0=xy*"}});
  EXPECT_EQ(view.rowsWithViews().front(), 1);
  EXPECT_FALSE(area().rect().intersects(editor().geometry()));
  // But the focus may move behind an inactive window.
  run({{"window; move; back", "end 6 1/0 xy", "1 other 1/0=xy"}});
}

TEST_F(Table, SaysCutTextsInToolTipsAndAllToScreenReaders) {
  texts[{0, 0}] = "<b>" + std::string(1 << 20, 'l');
  fill(3);
  cell(2, 0).setToolTip("its own & only");
  const QString cut = toolTipOf(area(), at("0/0"));
  EXPECT_TRUE(cut.contains("&lt;b&gt;lll") && cut.size() < 3000);
  EXPECT_EQ(toolTipOf(area(), at("1/0")) + toolTipOf(area(), at("5/0")), QString());
  EXPECT_TRUE(toolTipOf(area(), at("2/0")).contains(QStringLiteral("its own &amp; only")));
  fill(100);
  view.tableColumn(0).setHeaderToolTip("Count Shown:5");
  EXPECT_EQ(widget->header().model()->headerData(0, Qt::Horizontal, Qt::ToolTipRole), "Count Shown:5");
  QAccessibleTableInterface* spoken = QAccessible::queryAccessibleInterface(widget)->tableInterface();
  EXPECT_EQ(spoken->cellAt(70, 1)->text(QAccessible::Name), "170");
  EXPECT_TRUE(spoken->rowCount() == 100 && !spoken->cellAt(100, 0));
  spoken->selectRow(4);
  EXPECT_EQ(log.take(), "changing, changed 4");
}

TEST(ElidedLine, PaintsNoMoreThanFits) {
  const QFontMetrics metrics{QFont()};
  // Accents have no width.
  EXPECT_LT(elidedLine(toUtf8("a" + QString(100'000, QChar(0x301))), metrics, 300).size(), 1000);
  EXPECT_LE(metrics.horizontalAdvance(elidedLine(std::string(100'000'000, 'x'), metrics, 300)), 300);
  EXPECT_EQ(elidedLine("short", metrics, 300) + elidedLine("text", metrics, 0), "short");
}

}  // namespace tarn::test
