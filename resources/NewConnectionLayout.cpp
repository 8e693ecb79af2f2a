#include "resources/NewConnectionLayout.h"

#include "resources/FormWindow.h"
#include "ui_NewConnection.h"

namespace tarn {

struct NewConnectionLayout::Widgets {
  Widgets() { ui.setupUi(&window); }

  FormWindow window;
  Ui::NewConnection ui;
};

NewConnectionLayout::NewConnectionLayout()
    : widgets_(std::make_unique<Widgets>()),
      window(&widgets_->window),
      txtCnnName(widgets_->ui.txtCnnName),
      txtIp(widgets_->ui.txtIp),
      txtPort(widgets_->ui.txtPort),
      txtAuth(widgets_->ui.txtAuth),
      txtAuthToShow(widgets_->ui.txtAuthToShow),
      btnShowAuth(widgets_->ui.btnShowAuth),
      popDefaultCharset(widgets_->ui.popDefaultCharset),
      btnTestConnection(widgets_->ui.btnTestConnection),
      btnCancel(widgets_->ui.btnCancel),
      btnSave(widgets_->ui.btnSave) {}

NewConnectionLayout::~NewConnectionLayout() = default;

}  // namespace tarn
