#include "platform/appkit/outline/OutlineModel.h"

#include "platform/appkit/ImageIcon.h"
#include "platform/appkit/Utf8.h"

#include <QSize>

#include <algorithm>
#include <unordered_set>

namespace tarn {

struct OutlineModel::Node {
  NSItem item;
  Node* parent = nullptr;
  int row = 0;
  bool expandable = false;
  bool triangle = false;
  bool expanded = false;
  int shown = 0;  // rows in sight below this one
  std::optional<NSOutlineCell> cell;
  Children children;
};

OutlineModel::OutlineModel() : top_(std::make_unique<Node>()) {
  top_->expandable = true;
  top_->expanded = true;
}

OutlineModel::~OutlineModel() = default;

void OutlineModel::reloadAll() {
  loadChildren(*top_);
}

void OutlineModel::reload(const NSItem& item, bool reloadChildren) {
  Node* node = nodeOf(item);
  if (!node) return;
  askAbout(*node);
  if (reloadChildren && node->expanded) loadChildren(*node);
  const QModelIndex index = indexOf(*node);
  emit dataChanged(index, index);
}

bool OutlineModel::expand(const NSItem& item) {
  Node* node = nodeOf(item);
  if (!node || node->expanded || !node->expandable) return false;
  node->expanded = true;
  loadChildren(*node);
  return true;
}

bool OutlineModel::collapse(const NSItem& item) {
  Node* node = nodeOf(item);
  if (!node || !node->expanded) return false;
  node->expanded = false;
  countShown(*node);
  return true;
}

bool OutlineModel::isExpanded(const NSItem& item) const {
  const Node* node = nodeOf(item);
  return node && node->expanded;
}

int OutlineModel::shownRowCount() const {
  return top_->shown;
}

NSItem OutlineModel::itemAtRow(int row) const {
  if (row < 0 || row >= top_->shown) return nullptr;
  const Node* node = top_.get();
  for (std::size_t child = 0; child < node->children.size();) {
    const Node& next = *node->children[child];
    if (row == 0) return next.item;
    if (row <= next.shown) {
      node = &next;
      child = 0;
      --row;
    } else {
      row -= 1 + next.shown;
      ++child;
    }
  }
  return nullptr;
}

int OutlineModel::rowForItem(const NSItem& item) const {
  const Node* node = nodeOf(item);
  if (!node) return -1;
  int row = 0;
  for (; node->parent; node = node->parent) {
    if (!node->parent->expanded) return -1;
    for (int before = 0; before < node->row; ++before) {
      row += 1 + node->parent->children[static_cast<std::size_t>(before)]->shown;
    }
    if (node->parent->parent) ++row;
  }
  return row;
}

QModelIndex OutlineModel::indexOf(const NSItem& item) const {
  const Node* node = nodeOf(item);
  return node ? indexOf(*node) : QModelIndex();
}

NSItem OutlineModel::itemAt(const QModelIndex& index) const {
  return nodeAt(index).item;
}

const NSOutlineCell& OutlineModel::cellAt(const QModelIndex& index) const {
  Node& node = nodeAt(index);
  if (!node.cell) node.cell = delegate_ && node.item ? delegate_->viewForItem(node.item) : NSOutlineCell();
  return *node.cell;
}

bool OutlineModel::hasTriangle(const QModelIndex& index) const {
  const Node& node = nodeAt(index);
  return node.expandable && node.triangle;
}

bool OutlineModel::isExpandable(const QModelIndex& index) const {
  return nodeAt(index).expandable;
}

bool OutlineModel::isRootEmpty() const {
  return top_->children.empty() || top_->children.front()->children.empty();
}

QModelIndex OutlineModel::index(int row, int column, const QModelIndex& parent) const {
  const Node& node = nodeAt(parent);
  if (column != 0 || row < 0 || row >= static_cast<int>(node.children.size())) return {};
  return createIndex(row, 0, node.children[static_cast<std::size_t>(row)].get());
}

QModelIndex OutlineModel::parent(const QModelIndex& index) const {
  const Node* parent = nodeAt(index).parent;
  return parent ? indexOf(*parent) : QModelIndex();
}

int OutlineModel::rowCount(const QModelIndex& parent) const {
  return static_cast<int>(nodeAt(parent).children.size());
}

int OutlineModel::columnCount(const QModelIndex&) const {
  return 1;
}

bool OutlineModel::hasChildren(const QModelIndex& parent) const {
  return nodeAt(parent).expandable;
}

QVariant OutlineModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
      return toQString(cellAt(index).text);
    case Qt::DecorationRole:
      return imageIcon(cellAt(index).image);
    case Qt::ToolTipRole:
      return toQString(cellAt(index).toolTip);
    case Qt::SizeHintRole:
      return QSize(0, NSOutlineView::rowHeight);
    default:
      return {};
  }
}

OutlineModel::Node* OutlineModel::nodeOf(const NSItem& item) const {
  const auto found = nodes_.find(item.get());
  return found == nodes_.end() ? nullptr : found->second;
}

OutlineModel::Node& OutlineModel::nodeAt(const QModelIndex& index) const {
  return index.isValid() ? *static_cast<Node*>(index.internalPointer()) : *top_;
}

QModelIndex OutlineModel::indexOf(const Node& node) const {
  return node.parent ? createIndex(node.row, 0, &node) : QModelIndex();
}

std::vector<NSItem> OutlineModel::askForChildren(const Node& node) const {
  std::vector<NSItem> items;
  if (!source_) return items;
  const int count = source_->numberOfChildrenOfItem(node.item);
  std::unordered_set<const NSObject*> seen;
  for (int index = 0; index < count; ++index) {
    NSItem item = source_->childOfItem(index, node.item);
    if (item && seen.insert(item.get()).second) items.push_back(std::move(item));
  }
  return items;
}

std::unique_ptr<OutlineModel::Node> OutlineModel::makeNode(Node& parent, NSItem item) {
  auto node = std::make_unique<Node>();
  node->item = std::move(item);
  node->parent = &parent;
  nodes_[node->item.get()] = node.get();
  askAbout(*node);
  return node;
}

void OutlineModel::askAbout(Node& node) {
  node.cell.reset();
  node.expandable = source_ && source_->isItemExpandable(node.item);
  node.triangle = delegate_ && delegate_->shouldShowOutlineCellForItem(node.item);
}

void OutlineModel::loadChildren(Node& node) {
  const std::vector<NSItem> items = node.expandable ? askForChildren(node) : std::vector<NSItem>();
  node.expanded = node.expanded && node.expandable;
  removeMissing(node, items);
  for (const auto& child : node.children)
    askAbout(*child);
  insertAndMove(node, items);
  countShown(node);
  for (const auto& child : node.children) {
    if (child->expanded) loadChildren(*child);
  }
  if (!node.children.empty()) emit dataChanged(indexOf(*node.children.front()), indexOf(*node.children.back()));
}

void OutlineModel::removeMissing(Node& node, const std::vector<NSItem>& items) {
  std::unordered_set<const NSObject*> wanted;
  for (const NSItem& item : items)
    wanted.insert(item.get());
  const auto isMissing = [&wanted](const std::unique_ptr<Node>& child) { return !wanted.contains(child->item.get()); };

  // From the end, one run of neighbours at a time.
  for (std::size_t end = node.children.size(); end > 0;) {
    if (!isMissing(node.children[end - 1])) {
      --end;
      continue;
    }
    std::size_t begin = end - 1;
    while (begin > 0 && isMissing(node.children[begin - 1]))
      --begin;
    beginRemoveRows(indexOf(node), static_cast<int>(begin), static_cast<int>(end) - 1);
    const auto first = node.children.begin() + static_cast<std::ptrdiff_t>(begin);
    const auto last = node.children.begin() + static_cast<std::ptrdiff_t>(end);
    std::for_each(first, last, [this](const auto& child) { forget(*child); });
    node.children.erase(first, last);
    renumber(node, begin);
    endRemoveRows();
    end = begin;
  }
}

void OutlineModel::insertAndMove(Node& node, const std::vector<NSItem>& items) {
  std::unordered_set<const NSObject*> here;
  for (const auto& child : node.children)
    here.insert(child->item.get());

  for (std::size_t at = 0; at < items.size();) {
    const auto position = node.children.begin() + static_cast<std::ptrdiff_t>(at);
    if (at < node.children.size() && (*position)->item == items[at]) {
      ++at;
    } else if (here.contains(items[at].get())) {
      const auto from =
          std::find_if(position, node.children.end(), [&](const auto& child) { return child->item == items[at]; });
      const int source = (*from)->row;
      beginMoveRows(indexOf(node), source, source, indexOf(node), static_cast<int>(at));
      std::rotate(position, from, from + 1);
      renumber(node, at);
      endMoveRows();
      ++at;
    } else {
      Children added;
      std::size_t end = at;
      for (; end < items.size() && !here.contains(items[end].get()); ++end)
        added.push_back(makeNode(node, items[end]));
      beginInsertRows(indexOf(node), static_cast<int>(at), static_cast<int>(end) - 1);
      node.children.insert(position, std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
      renumber(node, at);
      endInsertRows();
      at = end;
    }
  }
}

void OutlineModel::forget(const Node& node) {
  for (const auto& child : node.children)
    forget(*child);
  const auto known = nodes_.find(node.item.get());
  if (known != nodes_.end() && known->second == &node) nodes_.erase(known);
}

void OutlineModel::renumber(Node& node, std::size_t from) {
  for (std::size_t row = from; row < node.children.size(); ++row)
    node.children[row]->row = static_cast<int>(row);
}

void OutlineModel::countShown(Node& node) {
  for (Node* above = &node; above; above = above->parent) {
    above->shown = 0;
    if (!above->expanded) continue;
    for (const auto& child : above->children)
      above->shown += 1 + child->shown;
  }
}

}  // namespace tarn
