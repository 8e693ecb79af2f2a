#pragma once

namespace tarn {

class TableViewWidget;

// From now on screen readers find the rows and cells of every TableViewWidget.
void installTableAccessibility();

// Both notify the screen reader, if there is one.
void announceReload(TableViewWidget& table);
void announceSelection(TableViewWidget& table);

}  // namespace tarn
