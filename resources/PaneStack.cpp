#include "resources/PaneStack.h"

#include <QChildEvent>

namespace tarn {

template <typename Size>
QSize PaneStack::largest(Size sizeOf) const {
  QSize largest(0, 0);
  for (const QWidget* pane : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    largest = largest.expandedTo(sizeOf(*pane));
  }
  return largest;
}

QSize PaneStack::sizeHint() const {
  return largest([](const QWidget& pane) { return pane.sizeHint(); });
}

QSize PaneStack::minimumSizeHint() const {
  return largest([](const QWidget& pane) { return pane.minimumSizeHint(); });
}

void PaneStack::resizeEvent(QResizeEvent*) {
  placePanes();
}

void PaneStack::childEvent(QChildEvent* event) {
  if (event->added()) placePanes();
}

void PaneStack::placePanes() {
  for (QWidget* pane : findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
    pane->setGeometry(rect());
}

}  // namespace tarn
