#pragma once

#include "favourites/FavouritesStore.h"
#include "favourites/MainViewController.h"
#include "favourites/StoreHost.h"
#include "platform/coredata/NSPersistentContainer.h"
#include "tests/support/AlertRecorder.h"
#include "tests/support/TemporaryDataHome.h"

#include <QModelIndex>
#include <QTreeView>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::test {

// A store as the program has it, in the data folder in force.
class OpenStore final : public StoreHost {
public:
  OpenStore();
  ~OpenStore() override;

  NSManagedObjectContext& context() override { return container_.viewContext(); }
  void saveContext() override;
  int saves() const { return saves_; }

private:
  NSPersistentContainer container_;
  int saves_ = 0;
};

// The main window over a store of its own, with a hand for the tree. Alerts answer themselves.
class FavouritesTest : public testing::Test {
protected:
  static std::shared_ptr<ServerItem> makeServer(const std::string& name, int port, const std::string& password = "");
  // Stores a favourite; before the window opens.
  void store(const std::string& name, int port, const std::string& password = "");

  void openWindow();
  MainViewController& window() { return *window_; }
  // The favourite of this place in the list.
  std::shared_ptr<ServerItem> server(std::size_t place = 0);
  // Nothing if there is none.
  ConnectionTabs::Tab tabOf(std::size_t place = 0) { return window_->tabForServer(*server(place)); }
  std::vector<std::string> tabLabels();
  std::string selectedTabLabel();

  // The texts of all rows in sight.
  std::vector<std::string> rows();
  std::vector<int> selectedRows() { return window_->outlets().serverSelection.selectedRowIndexes(); }
  void clickRow(int row, Qt::KeyboardModifiers modifiers = {});
  void clickTriangle(int row);
  // By code, so that no tab opens.
  void selectRow(int row) { window_->outlets().serverSelection.selectRowIndexes({row}); }

  bool waitForStatus(ConnectionStatus status, std::size_t place = 0);
  // Until nothing runs or waits on the server's queue, and what it posted has run.
  bool waitForIdle(std::size_t place = 0);
  // Until the tab of the first favourite lists this many keys.
  bool waitForKeys(int count);
  // Expands the first favourite and waits for its databases.
  void connect();

  TemporaryDataHome dataHome;
  AlertRecorder alerts;
  OpenStore storeHost;

private:
  QTreeView& tree();
  QModelIndex indexOfRow(int row);

  std::optional<MainViewController> window_;
};

}  // namespace tarn::test
