#include "codec/Iso2022.h"

#include "codec/CodeSet.h"
#include "platform/foundation/Immortal.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace tarn {
namespace {

constexpr char escapeCode = '\x1B';
constexpr char shiftOut = '\x0E';
constexpr char shiftIn = '\x0F';
// Takes the one character behind it from the slot "single".
constexpr std::string_view singleShift = "\x1BN";

// Where a set stands while it is designated: in use, in use after a shift out, or for one character.
enum class Slot : std::size_t { plain, shifted, single };
constexpr std::size_t slotCount = 3;

struct Part {
  // Empty for what need not be designated.
  std::string designation;
  Slot slot;
  CodeSet set;
};

// What one character set switches between, and how.
struct Scheme {
  // In the order in which a character is looked for; ASCII, which begins and ends every text, is the first.
  std::vector<Part> parts;
  // Shifted sets are designated before the text, needed or not, and a reader may do without.
  bool designatesFirst = false;
  // The designations for shifts end with the line.
  bool linesBeginAnew = false;

  const Part& ascii() const { return parts.front(); }
};

bool isLineEnd(char16_t character) {
  return character == '\n' || character == '\r';
}

struct ChineseScheme : Scheme {
  ChineseScheme() {
    linesBeginAnew = true;
    parts.push_back({"", Slot::plain, CodeSet::asciiWithout("\x0E\x0F\x1B")});
    parts.push_back({"\x1B$)A", Slot::shifted, CodeSet::ofPairs("EUC-CN")});
    parts.push_back({"\x1B$)G", Slot::shifted, CodeSet::ofPairs("EUC-TW")});
    parts.push_back({"\x1B$*H", Slot::single, CodeSet::ofPairs("EUC-TW", "\x8E\xA2")});
  }
};

struct KoreanScheme : Scheme {
  KoreanScheme() {
    designatesFirst = true;
    parts.push_back({"", Slot::plain, CodeSet::asciiWithout("\x0E\x0F\x1B")});
    parts.push_back({"\x1B$)C", Slot::shifted, CodeSet::ofPairs("EUC-KR")});
  }
};

struct JapaneseScheme : Scheme {
  JapaneseScheme() {
    parts.push_back({"\x1B(B", Slot::plain, CodeSet::asciiWithout("\x1B")});
    // The Japanese form of ASCII.
    CodeSet roman = CodeSet::asciiWithout("\x1B\\~");
    roman.add('\\', u'\u00A5');
    roman.add('~', u'\u203E');
    parts.push_back({"\x1B(J", Slot::plain, roman});
    const CodeSet kanji = CodeSet::ofPairs("EUC-JP");
    parts.push_back({"\x1B$B", Slot::plain, kanji});
    // The same in its first edition, which is read only.
    parts.push_back({"\x1B$@", Slot::plain, kanji});
  }
};

const Scheme& schemeOf(CharsetEnum charset) {
  if (charset == CharsetEnum::ISO_2022_CN) return immortal<ChineseScheme>();
  if (charset == CharsetEnum::ISO_2022_KR) return immortal<KoreanScheme>();
  return immortal<JapaneseScheme>();
}

class Iso2022Reader final {
public:
  Iso2022Reader(const Scheme& scheme, std::string_view bytes) : scheme_(scheme), rest_(bytes) {
    in(Slot::plain).part = &scheme.ascii();
    if (scheme.designatesFirst) in(Slot::shifted) = {&scheme.parts.back(), true, true};
  }

  std::optional<std::string> text() {
    text_.reserve(rest_.size());
    while (!rest_.empty()) {
      if (!takeNext()) return std::nullopt;
    }
    if (!isAtAnEnd()) return std::nullopt;
    return std::move(text_);
  }

private:
  struct Designated {
    const Part* part = nullptr;
    // It may be designated once more.
    bool isRepeatable = false;
    bool isUsed = true;
  };

  Designated& in(Slot slot) { return designated_[static_cast<std::size_t>(slot)]; }

  bool isAtAnEnd() {
    return !isShifted_ && in(Slot::plain).part == &scheme_.ascii() && in(Slot::shifted).isUsed &&
           in(Slot::single).isUsed;
  }

  bool takeNext() {
    const char next = rest_.front();
    if (next == escapeCode) return takeEscapeSequence();
    const bool shifts = in(Slot::shifted).part != nullptr && (next == shiftOut || next == shiftIn);
    return shifts ? shift(next == shiftOut) : takeCharacterFrom(in(isShifted_ ? Slot::shifted : Slot::plain));
  }

  bool takeEscapeSequence() {
    if (rest_.starts_with(singleShift) && in(Slot::single).part != nullptr) {
      rest_.remove_prefix(singleShift.size());
      return takeCharacterFrom(in(Slot::single));
    }
    const auto part = std::ranges::find_if(scheme_.parts, [this](const Part& each) {
      return !each.designation.empty() && rest_.starts_with(each.designation);
    });
    return part != scheme_.parts.end() && designate(*part);
  }

  bool designate(const Part& part) {
    Designated& now = in(part.slot);
    if (!now.isUsed || (now.part == &part && !now.isRepeatable)) return false;
    const bool isHeader = scheme_.designatesFirst && text_.empty();
    now = {&part, false, isHeader};
    isBehindShift_ = false;
    rest_.remove_prefix(part.designation.size());
    return true;
  }

  bool shift(bool out) {
    if (out == isShifted_ || isBehindShift_) return false;
    isShifted_ = out;
    isBehindShift_ = true;
    rest_.remove_prefix(1);
    return true;
  }

  bool takeCharacterFrom(Designated& designated) {
    const CodeSet& set = designated.part->set;
    const auto length = static_cast<std::size_t>(set.bytesPerCode());
    if (rest_.size() < length) return false;
    unsigned code = 0;
    for (const char byte : rest_.substr(0, length))
      code = code << 8 | (static_cast<unsigned>(byte) & 0xFFU);
    const char16_t character = set.characterOf(static_cast<CodeSet::Code>(code));
    if (character == noCharacter) return false;
    appendCharacter(text_, character);
    rest_.remove_prefix(length);
    designated.isUsed = true;
    isBehindShift_ = false;
    if (scheme_.linesBeginAnew && isLineEnd(character)) {
      in(Slot::shifted).isRepeatable = true;
      in(Slot::single).isRepeatable = true;
    }
    return true;
  }

  const Scheme& scheme_;
  std::string_view rest_;
  std::string text_;
  std::array<Designated, slotCount> designated_;
  bool isShifted_ = false;
  // Nothing has come since the last shift.
  bool isBehindShift_ = false;
};

class Iso2022Writer final {
public:
  explicit Iso2022Writer(const Scheme& scheme) : scheme_(scheme) {
    in(Slot::plain) = &scheme.ascii();
    if (scheme.designatesFirst) designate(scheme.parts.back());
  }

  std::optional<std::string> bytes(std::string_view text) {
    bytes_.reserve(bytes_.size() + text.size() + text.size() / 8);
    for (std::size_t at = 0; at < text.size();) {
      if (!write(takeCharacter(text, at))) return std::nullopt;
    }
    goTo(scheme_.ascii());
    return std::move(bytes_);
  }

private:
  const Part*& in(Slot slot) { return designated_[static_cast<std::size_t>(slot)]; }

  bool write(char16_t character) {
    const Part* part = partWith(character);
    if (part == nullptr) return false;
    goTo(*part);
    const CodeSet::Code code = part->set.codeOf(character);
    if (part->set.bytesPerCode() > 1) bytes_ += static_cast<char>(code >> 8);
    bytes_ += static_cast<char>(code & 0xFF);
    if (scheme_.linesBeginAnew && isLineEnd(character)) in(Slot::shifted) = in(Slot::single) = nullptr;
    return true;
  }

  const Part* partWith(char16_t character) {
    if (isLineEnd(character)) return &scheme_.ascii();
    const auto has = [character](const Part& part) { return part.set.codeOf(character) != CodeSet::noCode; };
    for (const Part* part : {in(Slot::plain), in(Slot::shifted)})
      if (part != nullptr && has(*part)) return part;
    const auto part = std::ranges::find_if(scheme_.parts, has);
    return part != scheme_.parts.end() ? &*part : nullptr;
  }

  // Puts the bytes before a character of the part.
  void goTo(const Part& part) {
    if (in(part.slot) != &part) designate(part);
    if (part.slot == Slot::single) {
      bytes_ += singleShift;
    } else if (isShifted_ != (part.slot == Slot::shifted)) {
      isShifted_ = !isShifted_;
      bytes_ += isShifted_ ? shiftOut : shiftIn;
    }
  }

  void designate(const Part& part) {
    in(part.slot) = &part;
    bytes_ += part.designation;
  }

  const Scheme& scheme_;
  std::string bytes_;
  std::array<const Part*, slotCount> designated_{};
  bool isShifted_ = false;
};

}  // namespace

std::optional<std::string> iso2022ToText(std::string_view bytes, CharsetEnum charset) {
  return Iso2022Reader(schemeOf(charset), bytes).text();
}

std::optional<std::string> textToIso2022(std::string_view text, CharsetEnum charset) {
  return Iso2022Writer(schemeOf(charset)).bytes(text);
}

}  // namespace tarn
