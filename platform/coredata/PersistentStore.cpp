#include "platform/coredata/PersistentStore.h"

#include "platform/coredata/SqlStatement.h"
#include "platform/coredata/StoreFile.h"
#include "platform/foundation/LocalizableText.h"

#include <sqlite3.h>

#include <cstddef>
#include <cstdlib>
#include <utility>

namespace tarn {
namespace {

// In the file's header; a later layout of the tables gets a higher number.
constexpr int currentVersion = 1;
// How long a save waits for another running program that saves at this moment.
constexpr int busyMilliseconds = 5000;

std::string quoted(const std::string& name) {
  return '"' + name + '"';
}

const char* sqlType(NSAttributeType type) {
  const bool isNumber = type == NSAttributeType::integer32 || type == NSAttributeType::integer64;
  return isNumber ? "INTEGER" : "TEXT";
}

// What `item` makes of each attribute, joined by commas.
template <typename Item>
std::string listOf(const std::vector<NSAttributeDescription>& attributes, Item item) {
  std::string list;
  for (const NSAttributeDescription& attribute : attributes)
    list += (list.empty() ? "" : ", ") + item(attribute);
  return list;
}

std::string columnsOf(const NSEntityDescription& entity) {
  return listOf(entity.attributes, [](const auto& attribute) { return quoted(attribute.name); });
}

}  // namespace

std::variant<std::unique_ptr<PersistentStore>, NSError> PersistentStore::open(const std::string& file,
                                                                              const NSManagedObjectModel& model) {
  if (auto reason = prepareStoreFile(file)) return NSError{file, std::move(*reason)};
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
  auto store = std::make_unique<PersistentStore>(Key{}, file, Connection(opened));
  if (result != SQLITE_OK) return store->error();
  sqlite3_busy_timeout(opened, busyMilliseconds);
  if (auto reason = store->prepare(model)) return NSError{file, std::move(*reason)};
  return store;
}

PersistentStore::PersistentStore(Key, std::string file, Connection connection)
    : file_(std::move(file)), connection_(std::move(connection)) {}

PersistentStore::~PersistentStore() = default;

void PersistentStore::Close::operator()(sqlite3* connection) const {
  sqlite3_close(connection);
}

std::optional<std::vector<PersistentStore::Row>> PersistentStore::rows(const NSEntityDescription& entity) {
  SqlStatement select(connection_.get(),
                      "SELECT rowid, " + columnsOf(entity) + " FROM " + quoted(entity.name) + " ORDER BY rowid");
  std::vector<Row> rows;
  int result = SQLITE_ROW;
  while ((result = select.step()) == SQLITE_ROW) {
    Row row{select.integer(0), {}};
    row.values.reserve(entity.attributes.size());
    for (const NSAttributeDescription& attribute : entity.attributes) {
      row.values.push_back(select.value(static_cast<int>(row.values.size()) + 1, attribute.type));
    }
    rows.push_back(std::move(row));
  }
  if (result != SQLITE_DONE) return std::nullopt;
  return rows;
}

bool PersistentStore::begin() {
  return execute("BEGIN IMMEDIATE");
}

std::optional<std::int64_t> PersistentStore::insertRow(const NSEntityDescription& entity,
                                                       const std::vector<NSManagedValue>& values) {
  const std::string places = listOf(entity.attributes, [](const auto&) { return std::string("?"); });
  SqlStatement insert(connection_.get(),
                      "INSERT INTO " + quoted(entity.name) + " (" + columnsOf(entity) + ") VALUES (" + places + ")");
  int place = 0;
  for (const NSManagedValue& value : values) {
    if (!insert.bind(++place, value)) return std::nullopt;
  }
  if (insert.step() != SQLITE_DONE) return std::nullopt;
  return sqlite3_last_insert_rowid(connection_.get());
}

std::optional<bool> PersistentStore::updateRow(const NSEntityDescription& entity, const Row& row,
                                               const std::set<std::size_t>& changed) {
  std::vector<NSAttributeDescription> attributes;
  for (const std::size_t index : changed)
    attributes.push_back(entity.attributes[index]);
  const std::string settings =
      listOf(attributes, [](const auto& attribute) { return quoted(attribute.name) + " = ?"; });
  SqlStatement update(connection_.get(), "UPDATE " + quoted(entity.name) + " SET " + settings + " WHERE rowid = ?");
  int place = 0;
  for (const std::size_t index : changed) {
    if (!update.bind(++place, row.values[index])) return std::nullopt;
  }
  if (!update.bind(++place, row.id) || update.step() != SQLITE_DONE) return std::nullopt;
  return sqlite3_changes(connection_.get()) > 0;
}

bool PersistentStore::deleteRow(const NSEntityDescription& entity, std::int64_t id) {
  SqlStatement deletion(connection_.get(), "DELETE FROM " + quoted(entity.name) + " WHERE rowid = ?");
  return deletion.bind(1, id) && deletion.step() == SQLITE_DONE;
}

bool PersistentStore::commit() {
  return execute("COMMIT");
}

void PersistentStore::rollback() {
  // Some failures have ended the transaction already, and then there is nothing to undo.
  if (sqlite3_get_autocommit(connection_.get()) == 0) execute("ROLLBACK");
}

NSError PersistentStore::error() const {
  return {file_, sqlite3_errmsg(connection_.get())};
}

std::optional<std::string> PersistentStore::prepare(const NSManagedObjectModel& model) {
  if (sqlite3_db_readonly(connection_.get(), "main") != 0) return localizable("the file can't be written");
  const auto version = firstValue("PRAGMA user_version");
  if (!version) return error().reason;
  if (std::atoi(version->c_str()) > currentVersion)
    return localizable("the file is from a newer version of the program");
  const auto health = firstValue("PRAGMA quick_check(1)");
  if (!health) return error().reason;
  if (*health != "ok") return "the file is damaged: " + *health;
  const auto tables = firstValue("SELECT count(*) FROM sqlite_schema");
  if (!tables) return error().reason;
  const bool isNew = *tables == "0";
  if (!isNew) {
    if (auto reason = checkTables(model)) return reason;
  }
  // With the journal deleted at each end of a transaction, and its folder written through, no moment of a crash loses
  // what was saved before.
  if (!execute("PRAGMA journal_mode = DELETE") || !execute("PRAGMA synchronous = EXTRA")) return error().reason;
  return isNew ? createTables(model) : std::nullopt;
}

std::optional<std::string> PersistentStore::createTables(const NSManagedObjectModel& model) {
  // Another running program may make them at this moment.
  bool isDone = begin();
  for (const NSEntityDescription& entity : model.entities()) {
    const std::string columns = listOf(entity.attributes, [](const auto& attribute) {
      return quoted(attribute.name) + ' ' + sqlType(attribute.type);
    });
    isDone = isDone && execute("CREATE TABLE IF NOT EXISTS " + quoted(entity.name) + " (" + columns + ")");
  }
  isDone = isDone && execute("PRAGMA user_version = " + std::to_string(currentVersion)) && commit();
  if (isDone) return std::nullopt;
  std::string reason = error().reason;
  rollback();
  return reason;
}

std::optional<std::string> PersistentStore::checkTables(const NSManagedObjectModel& model) {
  for (const NSEntityDescription& entity : model.entities()) {
    // A name in double quotes that is no column would be taken for a text.
    for (const NSAttributeDescription& attribute : entity.attributes) {
      const auto columns = firstValue("SELECT count(*) FROM pragma_table_info('" + entity.name + "') WHERE name = '" +
                                      attribute.name + "'");
      if (!columns) return error().reason;
      if (*columns != "1") return "the file has no " + entity.name + "." + attribute.name;
    }
  }
  return std::nullopt;
}

bool PersistentStore::execute(const std::string& sql) {
  return sqlite3_exec(connection_.get(), sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::optional<std::string> PersistentStore::firstValue(const std::string& sql) {
  SqlStatement query(connection_.get(), sql);
  if (query.step() != SQLITE_ROW) return std::nullopt;
  return query.text(0);
}

}  // namespace tarn
