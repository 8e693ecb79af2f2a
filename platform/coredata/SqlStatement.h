#pragma once

#include "platform/coredata/NSManagedObject.h"

#include <sqlite3.h>

#include <cstdint>
#include <string>

namespace tarn {

// One prepared statement of SQLite, finalised with the object.
class SqlStatement final {
public:
  SqlStatement(sqlite3* connection, const std::string& sql) {
    sqlite3_prepare_v2(connection, sql.data(), static_cast<int>(sql.size()), &statement_, nullptr);
  }
  SqlStatement(const SqlStatement&) = delete;
  SqlStatement& operator=(const SqlStatement&) = delete;
  ~SqlStatement() { sqlite3_finalize(statement_); }

  // Places count from 1. False on failure.
  bool bind(int place, const NSManagedValue& value);

  // SQLITE_ROW, SQLITE_DONE or an error.
  int step() { return statement_ == nullptr ? SQLITE_ERROR : sqlite3_step(statement_); }

  // Of the row at hand; columns count from 0. Absent if what is stored isn't of the type.
  NSManagedValue value(int column, NSAttributeType type) const;
  std::string text(int column) const;
  std::int64_t integer(int column) const { return sqlite3_column_int64(statement_, column); }

private:
  sqlite3_stmt* statement_ = nullptr;
};

}  // namespace tarn
