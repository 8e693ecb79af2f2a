#pragma once

#include <QPoint>
#include <QString>
#include <QWidget>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {
class NSView;
}

namespace tarn::test {

// What a person does at the screen, for tests: the events are those of a real mouse and keyboard, and what they cause
// (posted blocks, layout, painting) has happened when a call returns.

// A press and a release of the button in the widget's middle, or at `at` in its coordinates.
void click(QWidget& widget, std::optional<QPoint> at = {}, Qt::MouseButton button = Qt::LeftButton,
           Qt::KeyboardModifiers modifiers = {});
void doubleClick(QWidget& widget, std::optional<QPoint> at = {});

// Keys go to whatever has the keyboard.
void type(std::string_view text);
void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});

// Opens the pop-up's list by a click and chooses the item by another.
void choose(QWidget& popUp, int index);
// How many items its list has.
int itemCount(const NSView& popUp);

// Handles what waits: posted blocks, events, layout and painting.
void settle();
// Handles events until `done` answers true; false if it never does within the limit.
bool waitUntil(const std::function<bool()>& done, std::chrono::milliseconds limit = std::chrono::seconds(10));

// The descendant of this object name; a test that asks for one that isn't there ends.
QWidget& named(const QWidget& root, const char* objectName);

// Shows a widget as a window of this size, and waits until it has the keyboard.
void show(QWidget& widget, QSize size = {});

// A picture of the widget, saved as a PNG of this name under "pictures" in the current folder.
void grab(QWidget& widget, const std::string& name);

// The open menu or list; nothing where there is none.
QWidget* openPopUp();

// Runs once, as soon as a modal window is up: call it before the code that raises one and waits for it.
void whenModal(std::function<void(QWidget& modal)> action);

// The dark palette of the pictures and tests, or the light one, for the whole program.
void useDarkPalette(bool dark);

}  // namespace tarn::test
