#include "favourites/FavouritesTree.h"
#include "platform/foundation/NSAlert.h"
#include "tests/support/RedisServer.h"
#include "tests/support/program/ProgramTest.h"

namespace tarn::test {

using FavouritesTreeTest = ProgramTest;

TEST_F(FavouritesTreeTest, ShowsStatusByIconAndDatabasesWithTheirCounts) {
  MainLayout layout;
  const auto root = std::make_shared<MyFavouriteItem>();
  const auto server = std::make_shared<ServerItem>();
  server->setConnectionName("local");
  const auto db = std::make_shared<DbItem>(3, server);
  db->setKeysCount("(12)");
  FavouritesTree tree(layout.serverSelection, root);
  const auto shown = [&](const NSItem& item) {
    const NSOutlineCell cell = tree.viewForItem(item);
    return Texts{cell.image.isNone() ? "" : cell.image.name(), cell.text, cell.toolTip,
                 tree.isItemExpandable(item) ? "expandable" : ""};
  };

  EXPECT_EQ(shown(root), (Texts{"", "My Favourite", "", "expandable"}));
  EXPECT_EQ(shown(db), (Texts{"db", "db3(12)", "db3", ""}));
  for (const auto& [status, image] :
       {std::pair(ConnectionStatus::notConnected, "server"), std::pair(ConnectionStatus::connected, "server-running"),
        std::pair(ConnectionStatus::disConnected, "server-disconnected"),
        std::pair(ConnectionStatus::connecting, "server-connecting")}) {
    server->setConnectionStatus(status);
    EXPECT_EQ(shown(server), (Texts{image, "local", "local", "expandable"}));
  }
  EXPECT_FALSE(tree.shouldShowOutlineCellForItem(root));
  EXPECT_TRUE(tree.shouldShowOutlineCellForItem(server));

  // A list that is replaced while it is read stays whole.
  server->setDbs({std::make_shared<DbItem>(0, server), std::make_shared<DbItem>(1, server)});
  ASSERT_EQ(tree.numberOfChildrenOfItem(server), 2);
  server->setDbs({});
  EXPECT_NE(tree.childOfItem(1, server), nullptr);
  EXPECT_EQ(tree.numberOfChildrenOfItem(server), 0);
}

TEST_F(FavouritesTreeTest, ACommandWithoutTheServersThatItNeedsSaysSo) {
  store("local", 1);
  store("other", 2);
  openWindow();
  const auto message = [this](const NSButton& button, const std::vector<int>& rows) {
    selectRows(rows);
    alerts.clear();
    click(button);
    if (alerts.shown().empty()) return std::string();
    EXPECT_EQ(alerts.shown()[0].style, static_cast<int>(NSAlert::Style::informational));
    return alerts.messages()[0];
  };
  const std::string many =
      " Selected Connection, you should choose one or more than one connection(s) In the 'My "
      "Favourite' list. And not db.";
  EXPECT_EQ(message(window().btnConn, {0}), "To (Re)Connect" + many);
  EXPECT_EQ(message(window().btnClose, {}), "To Close" + many);
  EXPECT_EQ(message(window().btnRem, {0}), "To Remove" + many);
  for (const auto& rows : {std::vector<int>{}, {0}, {1, 2}}) {
    EXPECT_EQ(message(window().btnEdit, rows),
              "To Edit Connection, you should choose one and only one connection In the 'My Favourite' list. And not "
              "db.");
  }
  EXPECT_EQ(content().newConnectionWindowController(), nullptr);
  // The root doesn't count beside a server.
  EXPECT_EQ(message(window().btnEdit, {0, 1}), "");
  EXPECT_TRUE(form().window.isVisible());
}

TEST_F(FavouritesTreeTest, CountsFollowTheServerAndTheSelectionStays) {
  const RedisServer redis({"--databases", "3"});
  redis.command({"set", "a", "1"}, 1);
  store("local", redis.port());
  openWindow();
  connect();
  selectRows({3});
  waitFor([&] { return rows()[3] == "db1(1)"; }, [&] { return rows()[3]; });
  EXPECT_EQ(window().serverSelection.selectedRowIndexes(), std::vector<int>{3});

  // A database alone is no server.
  content().clickCloseConnections();
  EXPECT_EQ(alerts.shown().size(), 1U);
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::connected);
  EXPECT_EQ(tabLabels(), Texts());
}

}  // namespace tarn::test
