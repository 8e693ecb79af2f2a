#pragma once

#include "favourites/StoreHost.h"
#include "platform/coredata/NSPersistentContainer.h"
#include "shell/SponsorVC.h"

#include <memory>
#include <optional>

namespace tarn {

// The program's own object: owns the store of the favourites, made step by step on first use. While it lives it is
// `shared`, and the host of the store. Main thread only.
class AppDelegate final : public StoreHost {
public:
  AppDelegate();
  AppDelegate(const AppDelegate&) = delete;
  AppDelegate& operator=(const AppDelegate&) = delete;
  ~AppDelegate() override;

  // The one that lives, or nothing.
  static AppDelegate* shared();

  // The first call opens the store. If that fails there is a line in the log and, once, an alert, and no favourites.
  NSManagedObjectContext& context() override;
  // A failure is a line in the log and an alert; the store then is as it was before.
  void saveContext() override;

  // The menu item of the tips: a fresh window, in place of the one that is there.
  void clickedSponsor();
  // Nothing until it was shown first.
  SponsorWC* sponsorWC() { return sponsorWC_.get(); }

  // Quit: nothing is asked, and nothing is left to save.
  bool applicationShouldTerminate() const { return true; }

private:
  NSPersistentContainer& persistentContainer();

  std::optional<NSPersistentContainer> persistentContainer_;
  std::unique_ptr<SponsorWC> sponsorWC_;
};

}  // namespace tarn
