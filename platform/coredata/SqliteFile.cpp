#include "platform/coredata/SqliteFile.h"

#include <sqlite3.h>

namespace tarn {
namespace {

bool bind(sqlite3_stmt* statement, int position, const NSManagedValue& value) {
  int result = sqlite3_bind_null(statement, position);
  if (const auto* number = std::get_if<std::int64_t>(&value)) result = sqlite3_bind_int64(statement, position, *number);
  if (const auto* text = std::get_if<std::string>(&value))
    result = sqlite3_bind_text64(statement, position, text->data(), text->size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  return result == SQLITE_OK;
}

NSManagedValue valueOf(sqlite3_stmt* statement, int column) {
  const int type = sqlite3_column_type(statement, column);
  if (type == SQLITE_INTEGER) return sqlite3_column_int64(statement, column);
  if (type != SQLITE_TEXT) return {};
  const auto* const chars = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return std::string(chars, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

}  // namespace

SqliteFile::SqliteFile(const std::string& file) : connection_(nullptr, sqlite3_close) {
  sqlite3* opened = nullptr;
  sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
  connection_.reset(opened);
  constexpr int busyMilliseconds = 5000;
  sqlite3_busy_timeout(opened, busyMilliseconds);
}

std::optional<std::vector<NSManagedValues>> SqliteFile::run(const std::string& sql,
                                                            const std::vector<NSManagedValue>& arguments) {
  sqlite3_stmt* prepared = nullptr;
  if (sqlite3_prepare_v2(connection_.get(), sql.c_str(), -1, &prepared, nullptr) != SQLITE_OK) return std::nullopt;
  const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(prepared, sqlite3_finalize);
  int position = 0;
  for (const NSManagedValue& argument : arguments) {
    if (!bind(prepared, ++position, argument)) return std::nullopt;
  }
  std::vector<NSManagedValues> rows;
  int result = sqlite3_step(prepared);
  for (; result == SQLITE_ROW; result = sqlite3_step(prepared)) {
    NSManagedValues& row = rows.emplace_back();
    for (int column = 0; column < sqlite3_column_count(prepared); ++column)
      row[sqlite3_column_name(prepared, column)] = valueOf(prepared, column);
  }
  return result == SQLITE_DONE ? std::optional(std::move(rows)) : std::nullopt;
}

std::optional<std::string> SqliteFile::writeWhole(const std::function<bool()>& changes) {
  if (run("BEGIN IMMEDIATE") && changes() && run("COMMIT")) return std::nullopt;
  std::string reason = error();
  // Some failures have ended the transaction already; then this fails too, and changes nothing.
  run("ROLLBACK");
  return reason;
}

bool SqliteFile::isReadOnly() const {
  return sqlite3_db_readonly(connection_.get(), nullptr) == 1;
}

std::string SqliteFile::error() const {
  return sqlite3_errmsg(connection_.get());
}

}  // namespace tarn
