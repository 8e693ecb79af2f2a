#pragma once

#include "platform/appkit/NSTableView.h"
#include "platform/foundation/NSFormatter.h"

#include <memory>
#include <string>
#include <string_view>

namespace tarn {

class TableCell;

// What a cell needs of its table, which keeps the editor of the one open cell.
class TableCellHost {
public:
  virtual ~TableCellHost() = default;
  // The cell looks different now.
  virtual void cellChanged(const TableCell& cell) = 0;
  virtual void openCell(TableCell& cell) = 0;
  virtual bool isOpen(const TableCell& cell) const = 0;
  // All three for the cell that is open.
  virtual std::string openText() const = 0;
  virtual void setOpenText(std::string_view text) = 0;
  virtual bool isOpenTextEdited() const = 0;
};

// The light state of one cell in sight: no widget, unless it is open, and then that is its opener's.
class TableCell final : public NSTableCellView {
public:
  // The host outlives the cell.
  TableCell(TableCellHost& host, int column) : host_(host), column_(column) {}

  // Empty, not editable, without tag, delegate, formatter and tool tip: what a cell is before it is filled.
  void reset();

  int row() const { return row_; }
  void setRow(int row) { row_ = row; }
  int column() const { return column_; }
  // The text as last set by code or left by an edit, whether the cell is open or not.
  const std::string& text() const { return text_; }
  void setText(std::string text);
  NSTextFieldDelegate* delegate() const { return delegate_; }
  const NSFormatter* formatter() const { return formatter_.get(); }

  std::string stringValue() const override;
  void setStringValue(std::string_view text) override;
  bool isEditable() const override { return editable_; }
  void setEditable(bool editable) override { editable_ = editable; }
  int tag() const override { return tag_; }
  void setTag(int tag) override { tag_ = tag; }
  std::string toolTip() const override { return toolTip_; }
  void setToolTip(std::string_view text) override { toolTip_ = text; }
  void setDelegate(NSTextFieldDelegate* delegate) override { delegate_ = delegate; }
  void setFormatter(std::unique_ptr<NSFormatter> formatter) override { formatter_ = std::move(formatter); }
  void becomeFirstResponder() override { host_.openCell(*this); }
  bool isEdited() const override { return host_.isOpen(*this) && host_.isOpenTextEdited(); }

private:
  TableCellHost& host_;
  int row_ = -1;
  int column_;
  std::string text_;
  std::string toolTip_;
  bool editable_ = false;
  int tag_ = 0;
  NSTextFieldDelegate* delegate_ = nullptr;
  std::unique_ptr<NSFormatter> formatter_;
};

}  // namespace tarn
