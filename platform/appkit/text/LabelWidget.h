#pragma once

#include <QLabel>

namespace tarn {

// A label of plain text. It asks for room for its whole line, and is made narrower only where its layout has no room,
// a short text not at all, so that a long one never makes its window wider. A line that doesn't fit ends in an
// ellipsis, and the whole shows in the tool tip unless the label has one of its own. With wordWrap on it is an ordinary
// label.
class LabelWidget final : public QLabel {
  Q_OBJECT

public:
  explicit LabelWidget(QWidget* parent = nullptr);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

private:
  // What of the text can show at all, with marks for its control characters.
  QString shownText() const;
  bool isElided() const;
};

}  // namespace tarn
