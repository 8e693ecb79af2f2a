#pragma once

#include "platform/appkit/NSOutlineView.h"

#include <QAbstractItemModel>

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace tarn {

// What the outline shows: a copy of the data source's tree as it was at the last expand or reload, holding each item
// strongly, and which of its items are expanded. The children of a collapsed item are those of its last expansion, if
// there was one, so that what was expanded below it is so again. An item is in the tree once.
class OutlineModel final : public QAbstractItemModel {
public:
  OutlineModel();
  ~OutlineModel() override;

  void setDataSource(NSOutlineViewDataSource* source) { source_ = source; }
  void setDelegate(NSOutlineViewDelegate* delegate) { delegate_ = delegate; }

  void reloadAll();
  // Does nothing for an unknown item.
  void reload(const NSItem& item, bool reloadChildren);

  // Asks for the item's children and shows them. False if it isn't here, is expanded, or can't be.
  bool expand(const NSItem& item);
  bool collapse(const NSItem& item);
  bool isExpanded(const NSItem& item) const;

  // The rows in order, those below collapsed items not counted.
  int shownRowCount() const;
  NSItem itemAtRow(int row) const;
  int rowForItem(const NSItem& item) const;

  // Invalid and nothing where there is none.
  QModelIndex indexOf(const NSItem& item) const;
  NSItem itemAt(const QModelIndex& index) const;

  // What the row shows, asked for at the first look since the last reload.
  const NSOutlineCell& cellAt(const QModelIndex& index) const;
  bool hasTriangle(const QModelIndex& index) const;
  bool isExpandable(const QModelIndex& index) const;
  // True while there is nothing below the first row.
  bool isRootEmpty() const;

  QModelIndex index(int row, int column, const QModelIndex& parent) const override;
  QModelIndex parent(const QModelIndex& index) const override;
  int rowCount(const QModelIndex& parent) const override;
  int columnCount(const QModelIndex& parent) const override;
  bool hasChildren(const QModelIndex& parent) const override;
  QVariant data(const QModelIndex& index, int role) const override;

private:
  struct Node;
  using Children = std::vector<std::unique_ptr<Node>>;

  Node* nodeOf(const NSItem& item) const;
  Node& nodeAt(const QModelIndex& index) const;
  QModelIndex indexOf(const Node& node) const;
  std::vector<NSItem> askForChildren(const Node& node) const;
  std::unique_ptr<Node> makeNode(Node& parent, NSItem item);
  void askAbout(Node& node);
  void loadChildren(Node& node);
  void removeMissing(Node& node, const std::vector<NSItem>& items);
  void insertAndMove(Node& node, const std::vector<NSItem>& items);
  void forget(const Node& node);
  static void renumber(Node& node, std::size_t from);
  static void countShown(Node& node);

  NSOutlineViewDataSource* source_ = nullptr;
  NSOutlineViewDelegate* delegate_ = nullptr;
  std::unordered_map<const NSObject*, Node*> nodes_;
  std::unique_ptr<Node> top_;
};

}  // namespace tarn
