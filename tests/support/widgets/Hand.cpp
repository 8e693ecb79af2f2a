#include "tests/support/widgets/Hand.h"

#include "platform/foundation/NSOperationQueue.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QKeySequence>
#include <QStyle>
#include <QTest>
#include <QTimer>

#include <stdexcept>

namespace tarn::test {

namespace {

QWidget& keyboardOwner() {
  if (QWidget* popUp = QApplication::activePopupWidget()) {
    return popUp->focusWidget() ? *popUp->focusWidget() : *popUp;
  }
  if (QWidget* focused = QApplication::focusWidget()) return *focused;
  if (QWidget* window = QApplication::activeWindow()) return *window;
  throw std::runtime_error("no window has the keyboard");
}

}  // namespace

void click(QWidget& widget, std::optional<QPoint> at, Qt::MouseButton button, Qt::KeyboardModifiers modifiers) {
  QTest::mouseClick(&widget, button, modifiers, at.value_or(widget.rect().center()));
  settle();
}

void click(const NSView& view) {
  click(*view.widget());
}

void doubleClick(QWidget& widget, std::optional<QPoint> at) {
  QTest::mouseClick(&widget, Qt::LeftButton, {}, at.value_or(widget.rect().center()));
  QTest::mouseDClick(&widget, Qt::LeftButton, {}, at.value_or(widget.rect().center()));
  settle();
}

void type(std::string_view text) {
  for (const QChar character : QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))) {
    QTest::sendKeyEvent(QTest::Click, &keyboardOwner(), Qt::Key_unknown, QString(character), Qt::NoModifier);
  }
  settle();
}

void press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
  QTest::keyClick(&keyboardOwner(), key, modifiers);
  settle();
}

void keys(const char* script) {
  for (const QString& key : QString::fromUtf8(script).split(u' ', Qt::SkipEmptyParts)) {
    const QKeyCombination chord = QKeySequence(key)[0];
    key.startsWith(u'\'') ? type(key.mid(1).toStdString()) : press(chord.key(), chord.keyboardModifiers());
  }
}

void choose(NSPopUpButton& popUp, const std::string& title) {
  auto& box = dynamic_cast<QComboBox&>(*popUp.widget());
  // The list ignores a release that comes sooner than a double click after the press that opened it.
  const int interval = QApplication::doubleClickInterval();
  QApplication::setDoubleClickInterval(0);
  click(box);
  QApplication::setDoubleClickInterval(interval);
  const QModelIndex item = box.model()->index(box.findText(QString::fromStdString(title)), box.modelColumn());
  if (!item.isValid() || !box.view()->isVisible()) throw std::runtime_error("no open list with " + title);
  box.view()->scrollTo(item);
  click(*box.view()->viewport(), box.view()->visualRect(item).center());
}

int itemCount(const NSView& popUp) {
  return dynamic_cast<QComboBox&>(*popUp.widget()).count();
}

std::vector<std::string> texts(NSTableView& table, int column) {
  std::vector<std::string> shown;
  for (int row = 0; row < table.numberOfRows(); ++row)
    shown.push_back(table.viewAtColumn(column, row, true)->stringValue());
  return shown;
}

void settle() {
  for (int turn = 0; turn < 5; ++turn) {
    NSOperationQueue::mainQueue().drain();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
  }
}

bool waitUntil(const std::function<bool()>& done) {
  QElapsedTimer timer;
  timer.start();
  while (!done()) {
    if (timer.elapsed() > 10'000) return false;
    QApplication::processEvents(QEventLoop::AllEvents, 20);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTest::qSleep(1);
  }
  return true;
}

void show(QWidget& widget, QSize size) {
  if (size.isValid()) widget.resize(size);
  widget.show();
  widget.activateWindow();
  if (!QTest::qWaitForWindowActive(&widget)) throw std::runtime_error("the window doesn't come up");
  settle();
}

void whenModal(std::function<void(QWidget& modal)> action) {
  auto* timer = new QTimer(QApplication::instance());
  QObject::connect(timer, &QTimer::timeout, [timer, action = std::move(action)] {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible() || QApplication::activeWindow() != modal) return;
    timer->stop();
    timer->deleteLater();
    action(*modal);
  });
  timer->start(1);
}

void useDarkPalette(bool dark) {
  QApplication::setPalette(dark ? QPalette(QColor(0x36, 0x39, 0x3e), QColor(0x1f, 0x21, 0x24))
                                : QApplication::style()->standardPalette());
}

}  // namespace tarn::test
