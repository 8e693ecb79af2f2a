#include "resources/MainLayout.h"

#include "platform/foundation/NSLocalizedString.h"
#include "ui_Main.h"

namespace tarn {

struct MainLayout::Widgets {
  Widgets() {
    ui.setupUi(&window);
    ui.mainSplitter->setSizes({264, 916});
    ui.mainSplitter->setStretchFactor(0, 1);
    ui.mainSplitter->setStretchFactor(1, 3);
    ui.serverSelection->setFocus();
  }

  QMainWindow window;
  Ui::Main ui;
};

MainLayout::MainLayout()
    : widgets_(std::make_unique<Widgets>()),
      window(&widgets_->window),
      btnNew(widgets_->ui.btnNew),
      btnEdit(widgets_->ui.btnEdit),
      btnConn(widgets_->ui.btnConn),
      btnClose(widgets_->ui.btnClose),
      btnRem(widgets_->ui.btnRem),
      myFavouriteScrollView(widgets_->ui.myFavouriteScrollView),
      serverSelection(widgets_->ui.serverSelection),
      mainTab(widgets_->ui.mainTab) {
  serverSelection.setPlaceholderString(
      localizedString("No connections yet. Press \"New Connection\" (+) above to begin."));
}

MainLayout::~MainLayout() = default;

}  // namespace tarn
