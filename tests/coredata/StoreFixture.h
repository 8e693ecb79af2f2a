#pragma once

#include "platform/coredata/NSPersistentContainer.h"
#include "tests/support/TemporaryDataHome.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace tarn::test {

// A data folder of the test's own, and the favourites' model.
class StoreFixture : public testing::Test {
protected:
  static std::shared_ptr<const NSManagedObjectModel> model() {
    return NSManagedObjectModel::initWithContents(contentsOf(TARN_SOURCE_DIR "/resources/ServerItemModel.momd"));
  }

  static std::unique_ptr<NSPersistentContainer> makeContainer() {
    return std::make_unique<NSPersistentContainer>("ServerItemModel", model());
  }

  static std::unique_ptr<NSPersistentContainer> openStore() {
    auto container = makeContainer();
    const auto error = container->loadPersistentStores();
    EXPECT_FALSE(error) << error->description();
    return container;
  }

  static std::shared_ptr<NSManagedObject> insertFavourite(NSManagedObjectContext& context, const std::string& name) {
    auto object = context.insertNewObjectForEntityForName("ServerItemStorage");
    object->setValueForKey("serverId", NSUUID());
    object->setValueForKey("connectionName", name);
    object->setValueForKey("serverIp", "127.0.0.1");
    object->setValueForKey("serverPort", std::int64_t{6379});
    object->setValueForKey("auth", "");
    return object;
  }

  static NSFetchRequest favouritesRequest(const NSManagedObjectContext& context) {
    NSFetchRequest request;
    request.setEntity(context.entityForName("ServerItemStorage"));
    return request;
  }

  static NSManagedObjectContext::Objects favourites(NSManagedObjectContext& context) {
    return context.executeFetchRequest(favouritesRequest(context)).value_or(NSManagedObjectContext::Objects());
  }

  static std::string namesOf(NSManagedObjectContext& context) {
    std::string names;
    for (const auto& object : favourites(context))
      names += object->stringForKey("connectionName").value_or("?") + ' ';
    return names;
  }

  static void makeStore(const std::vector<std::string>& names) {
    const auto store = openStore();
    for (const std::string& name : names)
      insertFavourite(store->viewContext(), name);
    ASSERT_FALSE(store->viewContext().save());
  }

  std::string storeFile() const { return home_.storeFile().string(); }

  static std::string contentsOf(const std::string& path) {
    std::ostringstream all;
    all << std::ifstream(path, std::ios::binary).rdbuf();
    return all.str();
  }

  // The answer of the sqlite3 tool, another reader than ours.
  std::string sql(const std::string& statement) const {
    const std::string command = "sqlite3 '" + storeFile() + "' \"" + statement + "\" 2>&1";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string answer;
    for (int c = fgetc(pipe.get()); c != EOF; c = fgetc(pipe.get()))
      answer += static_cast<char>(c);
    while (answer.ends_with('\n'))
      answer.pop_back();
    return answer;
  }

  TemporaryDataHome home_;
};

}  // namespace tarn::test
