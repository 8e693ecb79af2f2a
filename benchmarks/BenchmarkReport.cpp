#include "benchmarks/BenchmarkReport.h"

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string_view>
#include <utility>

namespace tarn::bench {

namespace {

std::string number(std::optional<double> value) {
  if (!value) return "null";
  std::ostringstream text;
  text.precision(6);
  text << *value;
  return text.str();
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') result += '\\';
    result += character;
  }
  return result + "\"";
}

std::string column(std::optional<double> value) {
  return value ? number(value) : "-";
}

void printLine(std::string_view name, std::string_view value, std::string_view unit, std::string_view floor,
               std::string_view ratio, std::string_view limit) {
  const auto width = [](std::string_view text) { return static_cast<int>(text.size()); };
  std::printf("%-66.*s %10.*s %-6.*s %10.*s %8.*s %8.*s\n", width(name), name.data(), width(value), value.data(),
              width(unit), unit.data(), width(floor), floor.data(), width(ratio), ratio.data(), width(limit),
              limit.data());
  std::fflush(stdout);
}

}  // namespace

BenchmarkReport::BenchmarkReport(int argc, char** argv) {
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::string_view(argv[i]) == "--json") path_ = argv[i + 1];
  }
  printLine("work", "value", "unit", "floor", "ratio", "limit");
}

void BenchmarkReport::add(BenchmarkRow row) {
  printLine(row.name, number(row.value), row.unit, column(row.floor), column(row.ratio), column(row.limit));
  rows_.push_back(std::move(row));
}

int BenchmarkReport::finish() const {
  if (path_.empty()) return 0;
  std::ofstream file(path_);
  file << "[";
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const BenchmarkRow& row = rows_[i];
    file << (i == 0 ? "\n" : ",\n") << "  {\"name\": " << quoted(row.name) << ", \"value\": " << number(row.value)
         << ", \"unit\": " << quoted(row.unit) << ", \"floor\": " << number(row.floor)
         << ", \"ratio\": " << number(row.ratio) << ", \"limit\": " << number(row.limit) << "}";
  }
  file << "\n]\n";
  file.close();
  if (file) return 0;
  std::fprintf(stderr, "can't write %s\n", path_.c_str());
  return 1;
}

}  // namespace tarn::bench
