#include "shell/AppDelegate.h"

#include "favourites/ServerItemModel.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"

#include <utility>

namespace tarn {

namespace {

AppDelegate* sharedDelegate = nullptr;

}  // namespace

AppDelegate* AppDelegate::shared() {
  return sharedDelegate;
}

AppDelegate::AppDelegate() {
  sharedDelegate = this;
  StoreHost::install(this);
}

AppDelegate::~AppDelegate() {
  StoreHost::install(nullptr);
  sharedDelegate = nullptr;
}

NSPersistentContainer& AppDelegate::persistentContainer() {
  if (!persistentContainer_) {
    persistentContainer_.emplace("ServerItemModel", serverItemModel);
    if (const auto error = persistentContainer_->loadPersistentStores()) {
      logLine("Unresolved error " + error->description() + ", " + error->userInfo());
      // Behind the current event, so that it stands in front of the window and not before it.
      postAlert(replacingPlaceholders(
          localizedString("The favourites in '{0}' can not be opened: {1}. The file is left as it is, and until this "
                          "is mended no favourite can be shown or saved."),
          error->file, localizedString(error->reason.c_str())));
    }
  }
  return *persistentContainer_;
}

void AppDelegate::clickedSponsor() {
  if (sponsorWC_) sponsorWC_->window().close();
  sponsorWC_ = std::make_unique<SponsorWC>(std::make_shared<SponsorVC>());
  sponsorWC_->showWindow();
  sponsorWC_->content().outlets().btnSponsor1.becomeFirstResponder();
}

NSManagedObjectContext& AppDelegate::context() {
  return persistentContainer().viewContext();
}

void AppDelegate::saveContext() {
  const auto error = context().save();
  if (!error) return;
  logLine("Failure to save context: " + error->description());
  showAlert(replacingPlaceholders(localizedString("The change of your favourites could not be saved in '{0}': {1}."),
                                  error->file, localizedString(error->reason.c_str())));
}

}  // namespace tarn
