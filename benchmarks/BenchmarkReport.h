#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tarn::bench {

// One measured row.
struct BenchmarkRow {
  std::string name;
  double value = 0;
  std::string unit;
  // What the same work costs at least, in the same unit, measured in the same run; and the value's ratio to it.
  std::optional<double> floor;
  std::optional<double> ratio;
  // The most that the ratio, or without one the value, should be.
  std::optional<double> limit;
};

// Prints each row as a line of a table as soon as it is measured, and keeps it for the file of `--json FILE`.
class BenchmarkReport final {
public:
  // The file from the command line, if it names one.
  BenchmarkReport(int argc, char** argv);

  void add(BenchmarkRow row);

  // Writes the file. The exit status: 1, with a line on standard error, if that fails.
  int finish() const;

private:
  std::string path_;
  std::vector<BenchmarkRow> rows_;
};

}  // namespace tarn::bench
