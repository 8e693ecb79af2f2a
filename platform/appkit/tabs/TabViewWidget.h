#pragma once

#include <QPointer>
#include <QWidget>

#include <vector>

class QLabel;
class QStackedWidget;

namespace tarn {

class TabBarWidget;

// The widget of NSTabView: the row of tabs and, below it, one page a tab. A page taken away stays where it is until the
// event under way has ended, so that one that comes back within it is neither hidden nor painted in between.
class TabViewWidget final : public QWidget {
  Q_OBJECT
  Q_PROPERTY(QString placeholderText READ placeholderText WRITE setPlaceholderText)

public:
  explicit TabViewWidget(QWidget* parent = nullptr);

  TabBarWidget& bar() const { return *bar_; }

  // Shown while there is no tab.
  QString placeholderText() const;
  void setPlaceholderText(const QString& text);

  // A page stays its owner's, which may delete it at any time.
  void addPage(QWidget* page);
  void removePage(QWidget* page);
  // Null shows the placeholder.
  void showPage(QWidget* page);

protected:
  bool event(QEvent* event) override;

private:
  void settle();

  TabBarWidget* bar_;
  QStackedWidget* pages_;
  QLabel* empty_;
  std::vector<QPointer<QWidget>> leaving_;
  QPointer<QWidget> shown_;
  bool settling_ = false;  // until the end of the event
};

}  // namespace tarn
