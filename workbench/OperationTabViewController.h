#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/appkit/NSViewController.h"
#include "platform/foundation/Bytes.h"
#include "resources/OperationTabLayout.h"
#include "wire/ServerItem.h"

namespace tarn {

// The tab of one connection: owns the outlets, the state that the panes share, the start-up and the labels. Main queue
// only; background blocks hold it weakly, so it is made with std::make_shared.
class OperationTabViewController final : public NSViewController,
                                         public std::enable_shared_from_this<OperationTabViewController> {
public:
  OperationTabViewController();
  ~OperationTabViewController() override;

  NSView& view() override;

  // The outlets, by their names.
  OperationTabLayout& outlets();

  // The connection of this tab; nothing until the tab opens.
  const std::shared_ptr<ServerItem>& server() const;
  void setServer(std::shared_ptr<ServerItem> server);

  // The tab's labels.
  void showServerName(const std::string& text);
  void updateStatusLabel();
  void showStatus(ConnectionStatus status);
  void updateDealingQueueLabel();

  // popDatabase: "db0", "db1", ... one for each database of the server; or none.
  void fillDatabases();
  void emptyDatabases();
  // Shows the database with this index in popDatabase, without a message to anyone.
  void selectDatabase(int index);
  int shownDatabase() const;

  // The state of a fresh connection.
  void resetWorkbenchView();
  // Empties the key form and all value panes.
  void resetFormForNewKey();
  // Starts the key search for what the form says.
  void search();

  // Fits the columns of the value tables to their panes; `doResizeLater` 0.1 seconds from now.
  void doResize();
  void doResizeLater();

private:
  struct Private;
  std::unique_ptr<Private> d_;
};

}  // namespace tarn
