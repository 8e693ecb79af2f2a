#include "platform/coredata/SqlStatement.h"

#include <cstddef>
#include <optional>

namespace tarn {

bool SqlStatement::bind(int place, const NSManagedValue& value) {
  if (statement_ == nullptr) return false;
  const auto bindText = [&](const std::string& text) {
    return sqlite3_bind_text64(statement_, place, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8) == SQLITE_OK;
  };
  if (const auto* number = std::get_if<std::int64_t>(&value)) {
    return sqlite3_bind_int64(statement_, place, *number) == SQLITE_OK;
  }
  if (const auto* text = std::get_if<std::string>(&value)) return bindText(*text);
  if (const auto* uuid = std::get_if<NSUUID>(&value)) return bindText(uuid->uuidString());
  return sqlite3_bind_null(statement_, place) == SQLITE_OK;
}

NSManagedValue SqlStatement::value(int column, NSAttributeType type) const {
  const int stored = sqlite3_column_type(statement_, column);
  NSManagedValue value;
  switch (type) {
    case NSAttributeType::string:
      if (stored == SQLITE_TEXT) value = text(column);
      break;
    case NSAttributeType::integer32:
    case NSAttributeType::integer64:
      if (stored == SQLITE_INTEGER) value = integer(column);
      break;
    case NSAttributeType::uuid:
      if (stored != SQLITE_TEXT) break;
      if (const auto uuid = NSUUID::fromString(text(column))) value = *uuid;
      break;
  }
  return isValueOfType(value, type) ? value : NSManagedValue();
}

std::string SqlStatement::text(int column) const {
  const auto* const chars = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  if (chars == nullptr) return {};
  return {chars, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

}  // namespace tarn
