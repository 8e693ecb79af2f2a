#include "favourites/FavouritesStore.h"
#include "tests/favourites/FavouritesFixture.h"

namespace tarn::test {

class FavouritesStoreTest : public FavouritesTest {
protected:
  std::vector<std::string> namesInStore() {
    std::vector<std::string> names;
    for (const auto& server : FavouritesStore().loadFavourites())
      names.push_back(server->connectionName());
    return names;
  }

  NSManagedObjectContext::Objects records() {
    return storeHost.context().executeFetchRequest("ServerItemStorage").value();
  }
};

TEST_F(FavouritesStoreTest, GivesBackWhatWasStored) {
  const auto stored = makeServer("naïve ★", 6380, "p'a\"ss");
  stored->setServerIp("redis.example");
  stored->setDefaultCharset("GBK");
  FavouritesStore().insertRecord(*stored);
  store("second", 1);

  EXPECT_EQ(namesInStore(), (std::vector<std::string>{"naïve ★", "second"}));
  const auto loaded = FavouritesStore().loadFavourites().front();
  EXPECT_EQ(loaded->serverId(), stored->serverId());
  EXPECT_EQ(loaded->serverIp(), "redis.example");
  EXPECT_EQ(loaded->serverPort(), 6380);
  EXPECT_EQ(loaded->auth(), "p'a\"ss");
  EXPECT_EQ(loaded->defaultCharset(), "GBK");
  // Empty, and not absent.
  EXPECT_EQ(records()[1]->stringForKey("auth"), "");
}

TEST_F(FavouritesStoreTest, ChangesAndDeletesByTheIdAlone) {
  store("twin", 1);
  store("twin", 2);
  const auto loaded = FavouritesStore().loadFavourites();
  FavouritesStore favourites;

  loaded[1]->setConnectionName("other");
  loaded[1]->setServerPort(3);
  favourites.changeRecord(*loaded[1]);
  EXPECT_EQ(namesInStore(), (std::vector<std::string>{"twin", "other"}));
  EXPECT_EQ(records()[1]->uuidForKey("serverId"), loaded[1]->serverId());
  EXPECT_EQ(records()[1]->integerForKey("serverPort"), 3);

  favourites.deleteRecord(loaded[0]->serverId());
  EXPECT_EQ(namesInStore(), std::vector<std::string>{"other"});
}

TEST_F(FavouritesStoreTest, SavesOnceTheEventIsOverAndOnlyChanges) {
  FavouritesStore favourites;
  favourites.saveIfChanged();
  NSOperationQueue::mainQueue().drain();
  EXPECT_EQ(storeHost.saves(), 0);

  favourites.insertRecord(*makeServer("new", 1));
  favourites.saveIfChanged();
  EXPECT_EQ(storeHost.saves(), 0);
  NSOperationQueue::mainQueue().drain();
  EXPECT_EQ(storeHost.saves(), 1);
}

TEST_F(FavouritesStoreTest, AFavouriteWithoutACharsetGetsUtf8AndStaysAsItIs) {
  store("plain", 1);
  records()[0]->setValueForKey("defaultCharset", {});
  storeHost.saveContext();

  EXPECT_EQ(FavouritesStore().loadFavourites()[0]->defaultCharset(), "utf8");
  EXPECT_FALSE(storeHost.context().hasChanges());
  EXPECT_FALSE(records()[0]->stringForKey("defaultCharset"));
}

TEST_F(FavouritesStoreTest, ARecordWithoutARequiredFieldIsLeftOutAndLeftInTheStore) {
  for (const char* key : {"serverId", "connectionName", "serverIp", "serverPort", "auth"}) {
    store(key, 1);
    records().back()->setValueForKey(key, {});
  }
  store("whole", 1);

  EXPECT_EQ(namesInStore(), std::vector<std::string>{"whole"});
  EXPECT_EQ(records().size(), 6U);
}

}  // namespace tarn::test
