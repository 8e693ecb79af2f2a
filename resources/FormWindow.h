#pragma once

#include <QCloseEvent>
#include <QDialog>

namespace tarn {

// A small window beside the main one. Escape closes it as its close button does; Enter presses its default button.
class FormWindow final : public QDialog {
public:
  void reject() override { close(); }

protected:
  void closeEvent(QCloseEvent* event) override { event->accept(); }
};

}  // namespace tarn
