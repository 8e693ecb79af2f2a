// What processor time the codec takes a byte in each character set, both ways, at the length where it takes the most.

#include "benchmarks/BenchmarkReport.h"
#include "codec/TextCodec.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace tarn::bench {
namespace {

constexpr double mostPerByte = 20;
// In characters: a word, what fills a cell, and what a careless algorithm doesn't get through.
constexpr std::size_t lengths[] = {10, 200, 20'000, 1'000'000};
// Each measurement converts at least this many characters, and the best of some counts.
constexpr std::size_t charactersAtLeast = 100'000;
constexpr int tries = 3;

// The characters that the set has, without ASCII.
std::vector<std::string> charactersOf(CharsetEnum charset) {
  std::vector<std::string> characters;
  for (unsigned code = 0x80; code < 0x10000; ++code) {
    const std::string bytes = {static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)};
    auto text = bytesToText(bytes, CharsetEnum::utf16BigEndian);
    if (text && textToBytes(*text, charset)) characters.push_back(*std::move(text));
  }
  return characters;
}

struct Text {
  const char* name;
  std::string text;
};

// The characters all alone, which is what shift states find hardest, one behind a letter, and backslashes.
std::vector<Text> textsOf(CharsetEnum charset, std::size_t length) {
  const std::vector<std::string> characters = charactersOf(charset);
  std::mt19937 random(1);
  std::vector<Text> texts{{"characters", {}}, {"mixed", {}}, {"backslashes", {}}};
  for (std::size_t i = 0; i < length; ++i) {
    const std::string& character = characters[random() % characters.size()];
    texts[0].text += character;
    texts[1].text += i % 2 == 0 ? character : "a";
    texts[2].text += i == 0 ? character : "\\";
  }
  return texts;
}

double nanosecondsPerByte(std::size_t bytes, std::size_t rounds, const std::function<bool()>& convert) {
  double best = 0;
  for (int each = 0; each < tries; ++each) {
    const std::clock_t start = std::clock();
    for (std::size_t round = 0; round < rounds; ++round) {
      if (convert()) continue;
      std::fprintf(stderr, "The benchmark failed: a text wasn't converted\n");
      std::exit(1);
    }
    const double taken = 1e9 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    const double perByte = taken / static_cast<double>(rounds * bytes);
    if (each == 0 || perByte < best) best = perByte;
  }
  return best;
}

struct Worst {
  double value = 0;
  std::string name;

  void take(double measured, const std::string& where) {
    if (measured > value) *this = {measured, where};
  }
};

void measure(CharsetEnum charset, BenchmarkReport& report) {
  Worst reading;
  Worst writing;
  for (const std::size_t length : lengths) {
    for (const auto& [name, text] : textsOf(charset, length)) {
      const std::optional<Bytes> bytes = textToBytes(text, charset);
      // A letter and a mark that would be read as one.
      if (!bytes) continue;
      const std::string where = std::to_string(length) + " " + name;
      const std::size_t rounds = 1 + charactersAtLeast / length;
      const std::string_view view = bytes->view();
      reading.take(nanosecondsPerByte(view.size(), rounds, [&] { return bytesToText(view, charset).has_value(); }),
                   where);
      writing.take(nanosecondsPerByte(text.size(), rounds, [&] { return textToBytes(text, charset).has_value(); }),
                   where);
    }
  }
  const std::string name = charsetName(charset);
  report.add({name + " to text, " + reading.name, reading.value, "ns/byte", {}, {}, mostPerByte});
  report.add({"text to " + name + ", " + writing.name, writing.value, "ns/byte", {}, {}, mostPerByte});
}

}  // namespace
}  // namespace tarn::bench

int main(int argc, char** argv) {
  using namespace tarn;
  bench::BenchmarkReport report(argc, argv);
  for (std::size_t i = 0; i < charsetNames().size(); ++i)
    bench::measure(static_cast<CharsetEnum>(i), report);
  return report.finish();
}
