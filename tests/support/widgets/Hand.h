#pragma once

#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTableView.h"

#include <QPoint>
#include <QString>
#include <QWidget>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::test {

// What a person does at the screen, for tests: the events are those of a real mouse and keyboard, and what they cause
// (posted blocks, layout, painting) has happened when a call returns.

// In the widget's middle, or at `at` in its coordinates.
void click(QWidget& widget, std::optional<QPoint> at = {}, Qt::MouseButton button = Qt::LeftButton,
           Qt::KeyboardModifiers modifiers = {});
void click(const NSView& view);
void doubleClick(QWidget& widget, std::optional<QPoint> at = {});

// Keys go to whatever has the keyboard.
void type(std::string_view text);
void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
// One after the other: names as menus show them ("Ctrl+Shift+Left"), or text to type behind an apostrophe.
void keys(const char* script);

// Opens the pop-up's list by a click and chooses the item by another.
void choose(NSPopUpButton& popUp, const std::string& title);
// How many items its list has.
int itemCount(const NSView& popUp);

// What the table shows in a column, in all its rows.
std::vector<std::string> texts(NSTableView& table, int column = 0);

// Handles what waits: posted blocks, events, layout and painting.
void settle();
// Handles events until `done` answers true; false if it never does within ten seconds.
bool waitUntil(const std::function<bool()>& done);

// Shows a widget as a window of this size, and waits until it has the keyboard.
void show(QWidget& widget, QSize size = {});
// Runs once, as soon as a modal window is up: call it before the code that raises one and waits for it.
void whenModal(std::function<void(QWidget& modal)> action);
// A dark palette, or the usual light one, for the whole program.
void useDarkPalette(bool dark);

}  // namespace tarn::test
