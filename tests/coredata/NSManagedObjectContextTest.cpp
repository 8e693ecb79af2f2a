#include "platform/coredata/NSManagedObjectContext.h"
#include "tests/coredata/StoreFixture.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>

namespace tarn::test {
namespace {

class ManagedObjectContext : public StoreFixture {};

TEST_F(ManagedObjectContext, KeepsRecordsBetweenRuns) {
  NSUUID identity;
  {
    const auto store = openStore();
    NSManagedObjectContext& context = store->viewContext();
    const auto object = insertFavourite(context, "local ‹中文› \"'");
    identity = *object->uuidForKey("serverId");
    object->setValueForKey("auth", std::string("a\0b", 3));
    EXPECT_FALSE(context.save());
  }
  EXPECT_EQ(sql("SELECT serverId, serverIp, serverPort, typeof(defaultCharset) FROM ServerItemStorage"),
            identity.uuidString() + "|127.0.0.1|6379|null");
  EXPECT_EQ(sql("SELECT count(counter) FROM UseCounter"), "0");
  const auto store = openStore();
  const auto found = favourites(store->viewContext());
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0]->uuidForKey("serverId"), identity);
  EXPECT_EQ(found[0]->stringForKey("connectionName"), "local ‹中文› \"'");
  EXPECT_EQ(found[0]->stringForKey("auth"), std::string("a\0b", 3));
  EXPECT_EQ(found[0]->integerForKey("serverPort"), 6379);
  EXPECT_EQ(found[0]->stringForKey("defaultCharset"), std::nullopt);
  EXPECT_FALSE(store->viewContext().hasChanges());
}

TEST_F(ManagedObjectContext, FetchesChangesThatAreNotSaved) {
  const auto store = openStore();
  NSManagedObjectContext& context = store->viewContext();
  const auto first = insertFavourite(context, "first");
  insertFavourite(context, "second");
  EXPECT_EQ(namesOf(context), "first second ");
  ASSERT_FALSE(context.save());
  first->setValueForKey("connectionName", "changed");
  insertFavourite(context, "third");
  context.deleteObject(favourites(context)[1]);
  EXPECT_EQ(namesOf(context), "changed third ");
  EXPECT_EQ(sql("SELECT connectionName FROM ServerItemStorage"), "first\nsecond");
  ASSERT_FALSE(context.save());
  EXPECT_EQ(sql("SELECT connectionName FROM ServerItemStorage"), "changed\nthird");

  NSFetchRequest request = favouritesRequest(context);
  request.setPredicate(NSPredicate::predicateWithFormat("serverId=%@", *first->uuidForKey("serverId")));
  EXPECT_EQ(context.executeFetchRequest(request), NSManagedObjectContext::Objects{first});
  request.setPredicate(NSPredicate::predicateWithFormat("serverId=%@", NSUUID()));
  EXPECT_EQ(context.executeFetchRequest(request), NSManagedObjectContext::Objects{});
  EXPECT_FALSE(NSPredicate::predicateWithFormat("serverId>%@", NSUUID()));
  EXPECT_FALSE(context.executeFetchRequest(NSFetchRequest()));
}

TEST_F(ManagedObjectContext, RefusesValuesOfAnotherType) {
  const auto store = openStore();
  NSManagedObjectContext& context = store->viewContext();
  const auto object = insertFavourite(context, "name");
  EXPECT_FALSE(object->setValueForKey("serverPort", "6379"));
  EXPECT_FALSE(object->setValueForKey("serverPort", std::int64_t{1} << 31));
  EXPECT_FALSE(object->setValueForKey("noSuchKey", "text"));
  EXPECT_EQ(object->integerForKey("serverPort"), 6379);
  EXPECT_EQ(context.insertNewObjectForEntityForName("NoSuchEntity"), nullptr);
  ASSERT_FALSE(context.save());
  // Setting what is there already is no change.
  EXPECT_TRUE(object->setValueForKey("connectionName", "name"));
  EXPECT_FALSE(context.hasChanges());

  insertFavourite(context, "incomplete")->setValueForKey("auth", NSManagedValue());
  const auto error = context.save();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->description(), storeFile() + ": ServerItemStorage.auth is missing");
}

TEST_F(ManagedObjectContext, LeavesRecordsWithWrongOrMissingFieldsAsTheyAre) {
  makeStore({"whole"});
  sql("INSERT INTO ServerItemStorage VALUES ('no uuid', NULL, x'00FF', 'no port', 5000000000, 'GBK')");
  const auto store = openStore();
  const auto found = favourites(store->viewContext());
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[1]->missingRequiredKey(), "serverId");
  for (const char* key : {"serverId", "connectionName", "serverIp", "serverPort"}) {
    EXPECT_EQ(found[1]->valueForKey(key), NSManagedValue()) << key;
  }
  found[1]->setValueForKey("defaultCharset", "utf8");
  ASSERT_FALSE(store->viewContext().save());
  EXPECT_EQ(sql("SELECT serverId, hex(serverIp), serverPort, defaultCharset FROM ServerItemStorage WHERE rowid = 2"),
            "no uuid|00FF|no port|utf8");
}

TEST_F(ManagedObjectContext, KeepsChangesThatAnotherRunningProgramMade) {
  const auto store = openStore();
  NSManagedObjectContext& context = store->viewContext();
  const auto first = insertFavourite(context, "first");
  insertFavourite(context, "second");
  ASSERT_FALSE(context.save());
  {
    const auto other = openStore();
    const auto found = favourites(other->viewContext());
    found[0]->setValueForKey("serverIp", "other");
    insertFavourite(other->viewContext(), "third");
    other->viewContext().deleteObject(found[1]);
    ASSERT_FALSE(other->viewContext().save());
  }
  first->setValueForKey("serverPort", std::int64_t{1});
  ASSERT_FALSE(context.save());
  EXPECT_EQ(namesOf(context), "first third ");
  EXPECT_EQ(sql("SELECT serverIp, serverPort FROM ServerItemStorage WHERE connectionName = 'first'"), "other|1");
}

TEST_F(ManagedObjectContext, KeepsTheOldRecordsWhenTheDiskIsFull) {
  const auto store = openStore();
  NSManagedObjectContext& context = store->viewContext();
  const auto object = insertFavourite(context, "old");
  ASSERT_FALSE(context.save());
  object->setValueForKey("connectionName", "new");
  insertFavourite(context, std::string(100000, 'x'));

  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handlerBefore = std::signal(SIGXFSZ, SIG_IGN);
  rlimit full = before;
  full.rlim_cur = 40000;
  setrlimit(RLIMIT_FSIZE, &full);
  const auto error = context.save();
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handlerBefore);

  ASSERT_TRUE(error);
  EXPECT_EQ(error->file, storeFile());
  EXPECT_TRUE(context.hasChanges());
  EXPECT_EQ(sql("SELECT connectionName FROM ServerItemStorage"), "old");
  ASSERT_FALSE(context.save());
  EXPECT_FALSE(context.hasChanges());
  EXPECT_EQ(sql("SELECT length(connectionName) FROM ServerItemStorage"), "3\n100000");
}

TEST_F(ManagedObjectContext, SurvivesAKillAtAnyMoment) {
  constexpr std::size_t records = 8;
  makeStore(std::vector<std::string>(records, std::string(2000, 'x')));
  for (int round = 0; round < 25; ++round) {
    const pid_t saver = fork();
    if (saver == 0) {
      const auto store = makeContainer();
      if (store->loadPersistentStores()) _exit(1);
      NSManagedObjectContext& context = store->viewContext();
      for (std::int64_t port = 0;; ++port) {
        for (const auto& object : favourites(context))
          object->setValueForKey("serverPort", port);
        if (context.save()) _exit(1);
      }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20 + round));
    kill(saver, SIGKILL);
    int status = 0;
    waitpid(saver, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    const auto store = openStore();
    const auto found = favourites(store->viewContext());
    ASSERT_EQ(found.size(), records);
    for (const auto& object : found)
      EXPECT_EQ(object->integerForKey("serverPort"), found[0]->integerForKey("serverPort"));
  }
}

}  // namespace
}  // namespace tarn::test
