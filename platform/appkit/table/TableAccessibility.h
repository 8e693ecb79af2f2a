#pragma once

namespace tarn {

class TableViewWidget;

// From now on screen readers find the rows and cells of every TableViewWidget.
void installTableAccessibility();

// Tells screen readers, where one listens.
void tellTableReloaded(TableViewWidget& table);
void tellTableSelectionChanged(TableViewWidget& table);

}  // namespace tarn
