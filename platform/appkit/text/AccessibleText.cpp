#include "platform/appkit/text/AccessibleText.h"

#include "platform/appkit/text/TextFieldWidget.h"
#include "platform/appkit/text/TextInputWidget.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace tarn {

namespace {

// The name is the widget's accessible name, whatever its text is.
class AccessibleText final : public QAccessibleWidget, public QAccessibleTextInterface {
public:
  explicit AccessibleText(TextInputWidget* widget) : QAccessibleWidget(widget, QAccessible::EditableText) {}

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }

  QString text(QAccessible::Text kind) const override {
    if (kind == QAccessible::Value) return isSecret() ? QString() : input().text(0, longestValue);
    return QAccessibleWidget::text(kind);
  }

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.editable = true;
    state.selectableText = true;
    state.multiLine = !qobject_cast<TextFieldWidget*>(widget());
    state.passwordEdit = isSecret();
    return state;
  }

  int characterCount() const override { return int(input().textLength()); }
  int cursorPosition() const override { return int(input().caret()); }
  void setCursorPosition(int position) override { setSelection(0, position, position); }
  int selectionCount() const override { return input().hasSelection() ? 1 : 0; }
  void selection(int, int* start, int* end) const override {
    *start = int(input().selectionStart());
    *end = int(input().selectionEnd());
  }
  void addSelection(int start, int end) override { setSelection(0, start, end); }
  void removeSelection(int) override { setSelection(0, cursorPosition(), cursorPosition()); }
  void setSelection(int, int start, int end) override {
    if (start >= 0 && end >= 0) input().setSelection(std::size_t(start), std::size_t(end));
  }
  QString text(int start, int end) const override {
    if (isSecret() || start < 0 || end < start) return {};
    return input().text(std::size_t(start), std::size_t(end - start));
  }
  QString attributes(int, int* start, int* end) const override {
    *start = 0;
    *end = characterCount();
    return {};
  }
  QRect characterRect(int) const override { return {}; }
  int offsetAtPoint(const QPoint& point) const override {
    return int(input().positionAt(input().mapFromGlobal(point)));
  }
  void scrollToSubstring(int start, int) override { setCursorPosition(start); }

private:
  static constexpr std::size_t longestValue = 4000;

  TextInputWidget& input() const { return *static_cast<TextInputWidget*>(widget()); }
  bool isSecret() const {
    const auto* field = qobject_cast<TextFieldWidget*>(widget());
    return field && field->isSecure();
  }
};

QAccessibleInterface* makeAccessibleText(const QString&, QObject* object) {
  auto* input = qobject_cast<TextInputWidget*>(object);
  return input ? new AccessibleText(input) : nullptr;
}

}  // namespace

void installAccessibleText() {
  QAccessible::installFactory(makeAccessibleText);
}

}  // namespace tarn
