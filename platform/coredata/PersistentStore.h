#pragma once

#include "platform/coredata/NSError.h"
#include "platform/coredata/NSManagedObject.h"
#include "platform/coredata/NSManagedObjectModel.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

struct sqlite3;

namespace tarn {

// The SQLite file of a container: one table for each entity, with a column for each attribute and identifiers as their
// upper-case text. Main queue only.
class PersistentStore final {
  struct Close {
    void operator()(sqlite3* connection) const;
  };
  using Connection = std::unique_ptr<sqlite3, Close>;
  struct Key {};

public:
  struct Row {
    std::int64_t id = 0;
    // In step with the entity's attributes; a value that isn't of its attribute's type is absent.
    std::vector<NSManagedValue> values;
  };

  // Checks the whole file, and makes the tables in one that is empty or missing. Never changes one that it refuses.
  static std::variant<std::unique_ptr<PersistentStore>, NSError> open(const std::string& file,
                                                                      const NSManagedObjectModel& model);

  // For open() alone.
  PersistentStore(Key, std::string file, Connection connection);
  PersistentStore(const PersistentStore&) = delete;
  PersistentStore& operator=(const PersistentStore&) = delete;
  ~PersistentStore();

  // Nothing if the file can't be read.
  std::optional<std::vector<Row>> rows(const NSEntityDescription& entity);

  // What is written between begin() and commit() is written as a whole or, after rollback() or the process's end, not
  // at all. False or nothing tells of a failure, and error() why.
  bool begin();
  std::optional<std::int64_t> insertRow(const NSEntityDescription& entity, const std::vector<NSManagedValue>& values);
  // Sets the columns of these attributes. Nothing on failure; false if there is no such row.
  std::optional<bool> updateRow(const NSEntityDescription& entity, const Row& row,
                                const std::set<std::size_t>& changed);
  bool deleteRow(const NSEntityDescription& entity, std::int64_t id);
  bool commit();
  void rollback();

  // Why the last operation failed.
  NSError error() const;

private:
  // Why the file can't serve as a store of the model; nothing if it can.
  std::optional<std::string> prepare(const NSManagedObjectModel& model);
  std::optional<std::string> createTables(const NSManagedObjectModel& model);
  std::optional<std::string> checkTables(const NSManagedObjectModel& model);
  bool execute(const std::string& sql);
  // The first column of the first row of the answer.
  std::optional<std::string> firstValue(const std::string& sql);

  std::string file_;
  Connection connection_;
};

}  // namespace tarn
