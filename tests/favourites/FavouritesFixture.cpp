#include "tests/favourites/FavouritesFixture.h"

#include "favourites/ServerItemModel.h"
#include "resources/Resources.h"
#include "tests/support/widgets/Hand.h"

namespace tarn::test {

OpenStore::OpenStore() : container_("ServerItemModel", serverItemModel) {
  EXPECT_TRUE(loadResources());
  const auto error = container_.loadPersistentStores();
  EXPECT_FALSE(error) << error->description();
  StoreHost::install(this);
}

OpenStore::~OpenStore() {
  StoreHost::install(nullptr);
}

void OpenStore::saveContext() {
  ++saves_;
  const auto error = context().save();
  EXPECT_FALSE(error) << error->description();
}

std::shared_ptr<ServerItem> FavouritesTest::makeServer(const std::string& name, int port, const std::string& password) {
  auto server = std::make_shared<ServerItem>();
  server->setConnectionName(name);
  server->setServerIp("127.0.0.1");
  server->setServerPort(port);
  server->setAuth(password);
  server->setDefaultCharset("utf8");
  return server;
}

void FavouritesTest::store(const std::string& name, int port, const std::string& password) {
  FavouritesStore().insertRecord(*makeServer(name, port, password));
  storeHost.saveContext();
}

void FavouritesTest::openWindow() {
  window_.emplace();
  show(*window_->window().widget(), QSize(1180, 760));
}

std::shared_ptr<ServerItem> FavouritesTest::server(std::size_t place) {
  return window_->myFavourite()->servers.at(place);
}

std::vector<std::string> FavouritesTest::tabLabels() {
  std::vector<std::string> labels;
  for (const auto& item : window_->outlets().mainTab.tabViewItems())
    labels.push_back(item->label());
  return labels;
}

std::string FavouritesTest::selectedTabLabel() {
  const auto item = window_->outlets().mainTab.selectedTabViewItem();
  return item ? item->label() : std::string();
}

QTreeView& FavouritesTest::tree() {
  return *qobject_cast<QTreeView*>(window_->outlets().serverSelection.widget());
}

QModelIndex FavouritesTest::indexOfRow(int row) {
  QModelIndex index = tree().model()->index(0, 0);
  for (int above = 0; above < row; ++above)
    index = tree().indexBelow(index);
  return index;
}

std::vector<std::string> FavouritesTest::rows() {
  settle();
  std::vector<std::string> texts;
  for (QModelIndex index = indexOfRow(0); index.isValid(); index = tree().indexBelow(index))
    texts.push_back(index.data(Qt::DisplayRole).toString().toStdString());
  return texts;
}

void FavouritesTest::clickRow(int row, Qt::KeyboardModifiers modifiers) {
  click(*tree().viewport(), tree().visualRect(indexOfRow(row)).center(), Qt::LeftButton, modifiers);
}

void FavouritesTest::clickTriangle(int row) {
  const QRect cell = tree().visualRect(indexOfRow(row));
  click(*tree().viewport(), QPoint(cell.left() - tree().indentation() / 2, cell.center().y()));
}

bool FavouritesTest::waitForStatus(ConnectionStatus status, std::size_t place) {
  return waitUntil([&] { return server(place)->connectionStatus() == status; });
}

bool FavouritesTest::waitForIdle(std::size_t place) {
  const auto isIdle = [&] { return server(place)->operationQueue().operationCount() == 0; };
  // What the last block has posted may queue the next one.
  const bool idle = waitUntil([&] {
    if (!isIdle()) return false;
    settle();
    return isIdle();
  });
  settle();
  return idle;
}

bool FavouritesTest::waitForKeys(int count) {
  return waitUntil([&] { return tabOf()->outlets().tableKeys.numberOfRows() == count; }) && waitForIdle();
}

void FavouritesTest::connect() {
  clickTriangle(1);
  ASSERT_TRUE(waitForStatus(ConnectionStatus::connected));
  ASSERT_TRUE(waitForIdle());
}

}  // namespace tarn::test
