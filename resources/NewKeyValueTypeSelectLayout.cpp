#include "resources/NewKeyValueTypeSelectLayout.h"

#include "resources/FormWindow.h"
#include "ui_NewKeyValueTypeSelect.h"

namespace tarn {

struct NewKeyValueTypeSelectLayout::Widgets {
  Widgets() { ui.setupUi(&window); }

  FormWindow window;
  Ui::NewKeyValueTypeSelect ui;
};

NewKeyValueTypeSelectLayout::NewKeyValueTypeSelectLayout()
    : widgets_(std::make_unique<Widgets>()),
      window(&widgets_->window),
      popValueType(widgets_->ui.popValueType),
      btnConfirm(widgets_->ui.btnConfirm),
      btnCancel(widgets_->ui.btnCancel) {}

NewKeyValueTypeSelectLayout::~NewKeyValueTypeSelectLayout() = default;

}  // namespace tarn
