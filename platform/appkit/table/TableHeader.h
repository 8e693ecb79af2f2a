#pragma once

#include "platform/appkit/NSTableView.h"

#include <QHeaderView>
#include <QStringList>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn {

class TableHeader;

// One column: what it is called and how wide it is meant to be.
class TableColumn final : public NSTableColumn {
public:
  TableColumn(TableHeader& header, int index, std::string identifier);

  std::string identifier() const override { return identifier_; }
  double width() const override;
  void setWidth(double points) override;
  void setMaxWidth(double points) override;
  std::string headerToolTip() const override { return headerToolTip_; }
  void setHeaderToolTip(std::string_view text) override { headerToolTip_ = text; }

private:
  friend class TableHeader;

  TableHeader& header_;
  int index_;
  std::string identifier_;
  std::optional<double> width_;  // none: an equal share of the table
  double maxWidth_ = 1e6;
  std::string headerToolTip_;
};

// The columns of a table and the header over them, where the user can drag their widths, each up to its maximum. On the
// screen the last column takes what the others leave, so that a scroll bar beside the rows hides no part of them.
class TableHeader final : public QHeaderView {
public:
  explicit TableHeader(QWidget* parent);
  ~TableHeader() override;

  QStringList identifiers() const;
  void setIdentifiers(const QStringList& identifiers);
  QStringList titles() const { return titles_; }
  void setTitles(const QStringList& titles);

  int columnCount() const { return static_cast<int>(columns_.size()); }
  TableColumn& column(int index) { return *columns_[static_cast<std::size_t>(index)]; }
  const TableColumn& column(int index) const { return *columns_[static_cast<std::size_t>(index)]; }

  // Gives the sections the widths of their columns.
  void applyWidths();

protected:
  void resizeEvent(QResizeEvent* event) override;

private:
  class Model;

  void sectionDragged(int index, int width);

  QStringList titles_;
  std::vector<std::unique_ptr<TableColumn>> columns_;
  std::unique_ptr<Model> model_;
  bool applying_ = false;
};

}  // namespace tarn
