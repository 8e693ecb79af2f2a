#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// A universally unique identifier. A value type.
class NSUUID final {
public:
  // A new random one (version 4).
  NSUUID();

  // The 36 characters 8-4-4-4-12, in either case; nothing for any other text.
  static std::optional<NSUUID> fromString(std::string_view text);

  // The upper-case text of 36 characters.
  std::string uuidString() const;

  // clang-tidy takes the zero that the compiler compares with for a pointer.
  friend auto operator<=>(const NSUUID&, const NSUUID&) = default;  // NOLINT(modernize-use-nullptr)

private:
  explicit NSUUID(std::array<std::uint8_t, 16> bytes) : bytes_(bytes) {}

  std::array<std::uint8_t, 16> bytes_;
};

}  // namespace tarn
