#pragma once

class QFocusEvent;
class QWidget;

namespace tarn {

// True if the window lost the keyboard or a menu or a pop-up's list took it: the focus comes back afterwards.
bool leavesForMoment(const QFocusEvent& event);

// True if this loss of focus takes the keyboard from `area`, the widget with all that lies in it, to another control of
// its window; false if only the window loses activation, a menu opens, or a container of the area takes it.
bool leavesForOtherControl(const QFocusEvent& event, const QWidget& area);

}  // namespace tarn
