#pragma once

#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSOutlineView.h"
#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSWindow.h"

#include <memory>

namespace tarn {

// The main window: the favourites on the left, the tabs on the right. Owns all of it; every control has the name of its
// field.
class MainLayout final {
private:
  struct Widgets;
  std::unique_ptr<Widgets> widgets_;

public:
  MainLayout();
  ~MainLayout();

  NSWindow window;
  NSButton btnNew;
  NSButton btnEdit;
  NSButton btnConn;
  NSButton btnClose;
  NSButton btnRem;
  NSView myFavouriteScrollView;
  NSOutlineView serverSelection;
  NSTabView mainTab;
};

}  // namespace tarn
