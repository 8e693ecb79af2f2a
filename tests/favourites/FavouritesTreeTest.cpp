#include "favourites/FavouritesTree.h"
#include "platform/foundation/NSAlert.h"
#include "tests/favourites/FavouritesFixture.h"
#include "tests/support/RedisServer.h"
#include "tests/support/widgets/Hand.h"

namespace tarn::test {

using FavouritesTreeTest = FavouritesTest;
using Texts = std::vector<std::string>;

TEST_F(FavouritesTreeTest, ShowsStatusByIconAndDatabasesWithTheirCounts) {
  MainLayout layout;
  const auto root = std::make_shared<MyFavouriteItem>();
  const auto server = makeServer("local", 1);
  root->servers = {server};
  const auto db = std::make_shared<DbItem>(3, server);
  FavouritesTree tree(layout.serverSelection, root);

  EXPECT_EQ(tree.viewForItem(root).text, "My Favourite");
  EXPECT_TRUE(tree.viewForItem(root).image.isNone());
  EXPECT_EQ(tree.viewForItem(root).toolTip, "");
  EXPECT_FALSE(tree.shouldShowOutlineCellForItem(root));

  for (const auto& [status, image] :
       {std::pair(ConnectionStatus::notConnected, "server"), std::pair(ConnectionStatus::connected, "server-running"),
        std::pair(ConnectionStatus::disConnected, "server-disconnected"),
        std::pair(ConnectionStatus::connecting, "server-connecting")}) {
    server->setConnectionStatus(status);
    EXPECT_EQ(tree.viewForItem(server).image.name(), image);
  }
  EXPECT_EQ(tree.viewForItem(server).text, "local");
  EXPECT_EQ(tree.viewForItem(server).toolTip, "local");
  EXPECT_TRUE(tree.isItemExpandable(server));
  EXPECT_TRUE(tree.shouldShowOutlineCellForItem(server));

  EXPECT_EQ(tree.viewForItem(db).text, "db3(0)");
  db->setKeysCount("(12)");
  EXPECT_EQ(tree.viewForItem(db).text, "db3(12)");
  EXPECT_EQ(tree.viewForItem(db).toolTip, "db3");
  EXPECT_EQ(tree.viewForItem(db).image.name(), "db");
  EXPECT_FALSE(tree.isItemExpandable(db));

  // A list that is replaced while it is read stays whole.
  server->setDbs({std::make_shared<DbItem>(0, server), std::make_shared<DbItem>(1, server)});
  ASSERT_EQ(tree.numberOfChildrenOfItem(server), 2);
  server->setDbs({});
  EXPECT_NE(tree.childOfItem(1, server), nullptr);
  EXPECT_EQ(tree.numberOfChildrenOfItem(server), 0);
}

TEST_F(FavouritesTreeTest, WithoutASelectedServerEachCommandSaysWhatItNeeds) {
  openWindow();
  EXPECT_EQ(rows(), Texts{"My Favourite"});
  clickRow(0);
  auto& outlets = window().outlets();
  Texts needs;
  for (const auto& [button, what] : {std::pair(&outlets.btnConn, "(Re)Connect"), std::pair(&outlets.btnClose, "Close"),
                                     std::pair(&outlets.btnRem, "Remove")}) {
    click(*button->widget());
    needs.push_back(std::string("To ") + what +
                    " Selected Connection, you should choose one or more than one connection(s) In the 'My Favourite' "
                    "list. And not db.");
  }
  EXPECT_EQ(alerts.messages(), needs);
  for (const auto& alert : alerts.shown())
    EXPECT_EQ(alert.style, static_cast<int>(NSAlert::Style::informational));
  EXPECT_EQ(tabLabels(), Texts());
}

TEST_F(FavouritesTreeTest, CountsFollowTheServerAndTheSelectionStays) {
  const RedisServer redis({"--databases", "3"});
  redis.command({"set", "a", "1"}, 1);
  store("local", redis.port());
  openWindow();
  connect();
  EXPECT_EQ(rows(), (Texts{"My Favourite", "local", "db0(0)", "db1(0)", "db2(0)"}));
  selectRow(3);

  EXPECT_TRUE(waitUntil([&] { return rows()[3] == "db1(1)"; }));
  EXPECT_EQ(selectedRows(), std::vector<int>{3});

  // A database alone is no server.
  window().clickCloseConnections();
  EXPECT_EQ(alerts.shown().size(), 1U);
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::connected);
  EXPECT_EQ(tabLabels(), Texts());
}

}  // namespace tarn::test
