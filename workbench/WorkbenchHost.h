#pragma once

#include "platform/foundation/InstalledHost.h"

namespace tarn {

class OperationTabViewController;

// What a tab asks of the window that holds it. Main queue. With no host installed the calls lapse.
class WorkbenchHost : public InstalledHost<WorkbenchHost> {
public:
  virtual ~WorkbenchHost() = default;

  // The tab's close button: closes the connection and takes the tab away. The tab may be gone afterwards.
  virtual void closeTab(OperationTabViewController& tab) = 0;
  // The tab's reconnect button.
  virtual void reconnect(OperationTabViewController& tab) = 0;
  // "New": opens the dialog that picks a value type.
  virtual void openTypeDialog() = 0;
};

}  // namespace tarn
