#include "resources/SponsorLayout.h"

#include "resources/FormWindow.h"
#include "ui_Sponsor.h"

namespace tarn {

struct SponsorLayout::Widgets {
  Widgets() { ui.setupUi(&window); }

  FormWindow window;
  Ui::Sponsor ui;
};

SponsorLayout::SponsorLayout()
    : widgets_(std::make_unique<Widgets>()),
      window(&widgets_->window),
      btnSponsor1(widgets_->ui.btnSponsor1),
      btnSponsor2(widgets_->ui.btnSponsor2),
      btnSponsor3(widgets_->ui.btnSponsor3),
      btnSponsor4(widgets_->ui.btnSponsor4),
      btnSponsor5(widgets_->ui.btnSponsor5) {}

SponsorLayout::~SponsorLayout() = default;

}  // namespace tarn
