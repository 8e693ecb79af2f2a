#pragma once

#include "platform/coredata/NSManagedObject.h"

#include <functional>
#include <memory>
#include <vector>

struct sqlite3;

namespace tarn {

// A connection to an SQLite file that exists. If it couldn't be opened, each statement fails. Main queue only.
class SqliteFile final {
public:
  explicit SqliteFile(const std::string& file);

  // Runs one statement with the arguments for its `?`. Its rows by the names of the columns, absent what is neither a
  // whole number nor a text; nothing on failure. Waits 5 seconds for another program that holds the file.
  std::optional<std::vector<NSManagedValues>> run(const std::string& sql,
                                                  const std::vector<NSManagedValue>& arguments = {});

  // Writes what `changes` runs as a whole, or nothing of it if that answers false or the process ends. The answer is
  // why it failed, if it did.
  std::optional<std::string> writeWhole(const std::function<bool()>& changes);

  // True where the system let the file be opened for reading only.
  bool isReadOnly() const;

  // Why the last statement failed.
  std::string error() const;

private:
  std::unique_ptr<sqlite3, int (*)(sqlite3*)> connection_;
};

}  // namespace tarn
