#pragma once

#include <QLabel>

namespace tarn {

// A label of plain text. A line that doesn't fit ends in an ellipsis, and the whole shows in the tool tip unless the
// label has one of its own; it never makes its window wider. With wordWrap on it is an ordinary label.
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
