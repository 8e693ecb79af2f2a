#include "platform/appkit/table/TableHeader.h"

#include "platform/appkit/Utf8.h"

#include <QAbstractTableModel>

#include <algorithm>
#include <functional>

namespace tarn {

TableColumn::TableColumn(TableHeader& header, int index, std::string identifier)
    : header_(header), index_(index), identifier_(std::move(identifier)) {}

double TableColumn::width() const {
  return width_.value_or(header_.sectionSize(index_));
}

void TableColumn::setWidth(double points) {
  width_ = std::min(points, maxWidth_);
  header_.applyWidths();
}

void TableColumn::setMaxWidth(double points) {
  maxWidth_ = points;
  if (width_ && *width_ > maxWidth_) width_ = maxWidth_;
  header_.applyWidths();
}

// What the header view shows over each column.
class TableHeader::Model final : public QAbstractTableModel {
public:
  explicit Model(const TableHeader& header) : header_(header) {}

  int rowCount(const QModelIndex&) const override { return 0; }
  int columnCount(const QModelIndex&) const override { return header_.columnCount(); }
  QVariant data(const QModelIndex&, int) const override { return {}; }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (orientation != Qt::Horizontal || section < 0 || section >= header_.columnCount()) return {};
    if (role == Qt::DisplayRole) return header_.titles_.value(section);
    if (role == Qt::ToolTipRole) return toQString(header_.column(section).headerToolTip());
    if (role == Qt::TextAlignmentRole) return int(Qt::AlignLeft | Qt::AlignVCenter);
    return {};
  }

  void changeColumns(const std::function<void()>& change) {
    beginResetModel();
    change();
    endResetModel();
  }

  void titlesChanged() {
    if (header_.columnCount() > 0) emit headerDataChanged(Qt::Horizontal, 0, header_.columnCount() - 1);
  }

private:
  const TableHeader& header_;
};

TableHeader::TableHeader(QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent), model_(std::make_unique<Model>(*this)) {
  setModel(model_.get());
  setStretchLastSection(true);
  setSectionsClickable(false);
  setHighlightSections(false);
  setTextElideMode(Qt::ElideRight);
  setMinimumSectionSize(24);
  setFocusPolicy(Qt::NoFocus);
  connect(this, &QHeaderView::sectionResized, this,
          [this](int index, int, int width) { sectionDragged(index, width); });
}

TableHeader::~TableHeader() {
  setModel(nullptr);
}

QStringList TableHeader::identifiers() const {
  QStringList identifiers;
  for (const auto& column : columns_)
    identifiers += QString::fromStdString(column->identifier());
  return identifiers;
}

void TableHeader::setIdentifiers(const QStringList& identifiers) {
  model_->changeColumns([&] {
    columns_.clear();
    for (const QString& identifier : identifiers) {
      columns_.push_back(std::make_unique<TableColumn>(*this, columnCount(), identifier.toStdString()));
    }
  });
  applyWidths();
}

void TableHeader::setTitles(const QStringList& titles) {
  titles_ = titles;
  model_->titlesChanged();
}

void TableHeader::applyWidths() {
  applying_ = true;
  const int count = columnCount();
  // The last one stretches by itself.
  for (int index = 0; index + 1 < count; ++index) {
    const double wanted = column(index).width_.value_or(viewport()->width() / count);
    resizeSection(index, std::max(minimumSectionSize(), static_cast<int>(std::min(wanted, 1e6))));
  }
  applying_ = false;
}

void TableHeader::resizeEvent(QResizeEvent* event) {
  QHeaderView::resizeEvent(event);
  applyWidths();
}

void TableHeader::sectionDragged(int index, int width) {
  if (applying_ || index >= columnCount() - 1) return;
  TableColumn& dragged = column(index);
  dragged.width_ = std::min(static_cast<double>(width), dragged.maxWidth_);
  if (dragged.maxWidth_ < width) applyWidths();
}

}  // namespace tarn
