#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace tarn {

// What the fuzz program that includes this does with one input. A fault ends the process.
void fuzz(std::string_view input);

// In every build, unlike assert.
inline void require(bool held) {
  if (!held) std::abort();
}

}  // namespace tarn

#ifdef TARN_FUZZ
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarn::fuzz({reinterpret_cast<const char*>(data), size});
  return 0;
}
#else
// Feeds the program with each file of a folder, and fails if there is none.
int main(int, char** arguments) {
  bool isEmpty = true;
  for (const auto& file : std::filesystem::directory_iterator(arguments[1])) {
    std::puts(file.path().c_str());
    std::ifstream stream(file.path(), std::ios::binary);
    tarn::fuzz(std::string(std::istreambuf_iterator<char>(stream), {}));
    isEmpty = false;
  }
  return isEmpty ? EXIT_FAILURE : EXIT_SUCCESS;
}
#endif
