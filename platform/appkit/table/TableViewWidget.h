#pragma once

#include "platform/appkit/NSTableView.h"
#include "platform/appkit/RowView.h"
#include "platform/appkit/table/TableCellEditor.h"
#include "platform/appkit/table/TableCells.h"

#include <QAbstractScrollArea>
#include <QFont>
#include <QStringList>

namespace tarn {

class TableHeader;

// Who stands behind a table's widget: fills its cells and is notified of what the user does.
class TableViewClient {
public:
  virtual ~TableViewClient() = default;

  virtual void fillCell(TableCell& cell) = 0;
  virtual void selectionChanged(bool byUser) = 0;
  // A press of the left button has been handled; -1 beside the cells.
  virtual void pressed(int row, int column) = 0;
  // The focus leaves the table and its cells for another control of the window.
  virtual void willLoseFocus() = 0;
  virtual void editDidEnd(TableCell& cell) = 0;
  // A key asks for this cell to open. False if no cell of this table opens by keys.
  virtual bool opensCell(int row, int column) = 0;
};

// The widget behind NSTableView. A layout promotes a QAbstractScrollArea to it and tells its columns by two properties
// of type string list, from left to right: `columnIdentifiers` (not translatable), which also says how many columns
// there are, and `columnTitles` (translatable), what the header shows over each. Either may be set first.
//
// All rows have one height, so a row costs nothing before it comes into sight. It selects one row or none.
class TableViewWidget final : public RowView<QAbstractScrollArea>,
                              private TableCellHost,
                              private TableCellEditorClient {
  Q_OBJECT
  Q_PROPERTY(QStringList columnIdentifiers READ columnIdentifiers WRITE setColumnIdentifiers)
  Q_PROPERTY(QStringList columnTitles READ columnTitles WRITE setColumnTitles)

public:
  explicit TableViewWidget(QWidget* parent = nullptr);
  ~TableViewWidget() override;

  QStringList columnIdentifiers() const;
  void setColumnIdentifiers(const QStringList& identifiers);
  QStringList columnTitles() const;
  void setColumnTitles(const QStringList& titles);
  TableHeader& header() { return *header_; }
  const TableHeader& header() const { return *header_; }

  // May be null.
  void setClient(TableViewClient* client) { client_ = client; }

  int rowCount() const { return rowCount_; }
  // Drops an open edit without a message, takes the new count and fills the cells in sight anew.
  void reload(int rowCount);
  // Drops an open edit in this cell without a message, and fills the cell anew if there is one.
  void reloadCell(int row, int column);

  // -1 where none is selected.
  int selectedRow() const { return selectedRow_; }
  // Notifies the client if it changes anything.
  void selectRow(int row, bool byUser);
  void scrollRowToVisible(int row);

  TableCells& cells() { return cells_; }
  // Row and column of the open cell are -1 while there is none.
  int openRow() const { return editor_.row(); }
  int openColumn() const { return editor_.column(); }
  // What the cell shows, in sight or not, without making it.
  std::string textAt(int row, int column);

  // In the viewport's coordinates; it may lie outside.
  QRect cellRect(int row, int column) const;
  // -1 beside the rows and columns.
  int rowAt(int y) const;
  int columnAt(int x) const;

protected:
  std::string toolTipAt(const QPoint& position) const override;
  QRect currentRowRect() const override { return selectedRow_ < 0 ? QRect() : cellRect(selectedRow_, 0); }
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

private:
  // TableCellHost
  void cellChanged(const TableCell& cell) override;
  void openCell(TableCell& cell) override;
  bool isOpen(const TableCell& cell) const override { return editor_.isOpen(cell); }
  std::string openText() const override { return editor_.text(); }
  void setOpenText(std::string_view text) override { editor_.setText(text); }
  bool isOpenTextEdited() const override { return editor_.isEdited(); }

  // TableCellEditorClient
  std::string modelText(int row, int column) override;
  void editorWillLoseFocus() override;
  void editDidEnd(TableCell& cell) override;
  void editorClosed(int row, int column, TextFieldWidget::End how) override;

  void updateGeometries();
  void showCellsInSight();
  void placeEditor();
  void fitFont();
  void openNextCell(int row, int column, int step);
  void paintRow(QPainter& painter, int row) const;

  TableHeader* header_;
  TableViewClient* client_ = nullptr;
  TableCells cells_;
  TableCellEditor editor_;
  QFont cellFont_;
  int rowCount_ = 0;
  int selectedRow_ = -1;
};

}  // namespace tarn
