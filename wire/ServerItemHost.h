#pragma once

#include "platform/foundation/InstalledHost.h"

#include <memory>

namespace tarn {

class ServerItem;

// What a connection asks of the window that shows it. Every call comes on the main queue. With no host installed the
// calls lapse.
class ServerItemHost : public InstalledHost<ServerItemHost> {
public:
  virtual ~ServerItemHost() = default;

  // The server's row shows its status anew.
  virtual void reloadServerRow(const std::shared_ptr<ServerItem>& server) = 0;
  // The rows of the server's databases show their counts anew, and the selection stays.
  virtual void refreshServerRow(const std::shared_ptr<ServerItem>& server) = 0;
  // The status label of the server's tab, if it has one, shows the server's status.
  virtual void showStatusInTab(const std::shared_ptr<ServerItem>& server) = 0;
  // A reconnect that nobody asked for has ended: tree, status, list of databases and queue label follow. `connected`
  // tells how it ended.
  virtual void bringDatabasesUpToDate(const std::shared_ptr<ServerItem>& server, bool connected) = 0;
  // The wire stands on another database than before, by a line typed in the console: the server's tab shows it.
  virtual void showSelectedDatabase(const std::shared_ptr<ServerItem>& server) = 0;
};

}  // namespace tarn
