#include "favourites/FavouritesTree.h"
#include "platform/foundation/NSAlert.h"
#include "tests/support/program/Program.h"

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
    return (cell.image.isNone() ? "" : cell.image.name()) + "|" + cell.text + "|" + cell.toolTip;
  };
  EXPECT_EQ(shown(root), "|My Favourite|");
  EXPECT_EQ(shown(db), "db|db3(12)|db3");
  using enum ConnectionStatus;
  for (const auto& [status, image] :
       {std::pair(notConnected, "server"), std::pair(connected, "server-running"),
        std::pair(disConnected, "server-disconnected"), std::pair(connecting, "server-connecting")}) {
    server->setConnectionStatus(status);
    EXPECT_EQ(shown(server), image + std::string("|local|local"));
  }
  EXPECT_FALSE(tree.shouldShowOutlineCellForItem(root));
  EXPECT_FALSE(tree.isItemExpandable(db));

  // A list that is replaced while it is read stays whole.
  server->setDbs({std::make_shared<DbItem>(0, server), std::make_shared<DbItem>(1, server)});
  ASSERT_EQ(tree.numberOfChildrenOfItem(server), 2);
  server->setDbs({});
  EXPECT_NE(tree.childOfItem(1, server), nullptr);
  EXPECT_EQ(tree.numberOfChildrenOfItem(server), 0);
}

TEST_F(FavouritesTreeTest, ACommandWithoutTheServersThatItNeedsSaysSo) {
  open({{"local", 1}, {"other", 2}});
  const std::string inList = " In the 'My Favourite' list. And not db.";
  const std::string many = " Selected Connection, you should choose one or more than one connection(s)" + inList;
  const std::string one = "To Edit Connection, you should choose one and only one connection" + inList;
  MainLayout& w = window();
  // The root doesn't count beside a server.
  // clang-format off
  const std::tuple<NSButton&, std::vector<int>, std::string> cases[] = {
      {w.btnConn, {0}, "To (Re)Connect" + many}, {w.btnClose, {}, "To Close" + many}, {w.btnRem, {0}, "To Remove" + many},
      {w.btnEdit, {}, one}, {w.btnEdit, {0}, one}, {w.btnEdit, {1, 2}, one}, {w.btnEdit, {0, 1}, ""}};
  // clang-format on
  for (const auto& [button, selected, message] : cases) {
    EXPECT_EQ(content().newConnectionWindowController(), nullptr);
    selectRows(selected);
    alerts.clear();
    click(button);
    EXPECT_EQ(alerts.messages(), message.empty() ? Texts() : Texts{message});
    for (const auto& alert : alerts.shown())
      EXPECT_EQ(alert.style, static_cast<int>(NSAlert::Style::informational));
  }
  EXPECT_TRUE(form().window.widget()->isVisible());
}

}  // namespace tarn::test
