#pragma once

#include "platform/appkit/NSViewController.h"
#include "resources/OperationTabLayout.h"
#include "wire/ServerItem.h"
#include "workbench/value/ValueType.h"

#include <memory>
#include <string>

namespace tarn {

// The tab of one connection: owns the outlets, the state that the panes share, the start-up and the labels. Main queue
// only. Background blocks hold its insides weakly: it may go at any time.
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
  // Opens the tab on a connection: its status and databases as they are, and a fresh form.
  void open(std::shared_ptr<ServerItem> server);

  // The tab's labels. The status is the server's own.
  void showServerName(const std::string& text);
  void updateStatusLabel();
  void updateDealingQueueLabel();

  // The connection has come to this status, which may differ from the server's own where a password was refused. While
  // connected popDatabase lists the server's databases: the one that it showed before is shown and selected again;
  // where that can't be, the first one is shown and the form starts anew. Else it is empty.
  void showConnection(ConnectionStatus status);

  // The connection stands on this database: popDatabase shows it, and the form starts anew if it showed another one.
  void showDatabase(int index);
  // The same, then selects the database on the connection and lists its keys.
  void switchDatabase(int index);
  // Shows the database with this index in popDatabase, and changes nothing else.
  void selectDatabase(int index);
  // The database that all work of the tab reads: what popDatabase shows, or showed before it was emptied.
  int shownDatabase() const;

  // Work that a user waits for, and that isn't the tab's own, such as a connect: the activity bar counts it until the
  // last copy of the token goes, on whatever thread.
  std::shared_ptr<void> beginWork();

  // The state of a fresh connection.
  void resetWorkbenchView();
  // The type dialog was confirmed: an empty form of this type, for a key that comes to exist with its first save.
  void newKeyTypeChosen(ValueType type);
  // Starts the key search for what the form says.
  void search();

  // Fits the columns of the value tables to their panes; doResizeLater() does so 0.1 seconds from now.
  void doResize();
  void doResizeLater();

private:
  struct Private;

  void showStatus(ConnectionStatus status);
  void fillDatabases();
  void selectShownDatabaseAgain();
  void startAnewOnFirstDatabase();
  // Empties the key form and all value panes.
  void resetFormForNewKey();
  void changeKeyDataCharset();
  void changeValueDataCharset();
  void translateSlash();

  // Shared only with a step of a background block while it runs.
  std::shared_ptr<Private> d_;
};

}  // namespace tarn
