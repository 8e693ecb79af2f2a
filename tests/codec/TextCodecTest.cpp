#include "codec/EscapeForms.h"
#include "codec/TextCodec.h"
#include "tests/codec/OtherCodec.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarn {
namespace {

using enum CharsetEnum;
using namespace std::string_literals;
using namespace std::string_view_literals;

std::vector<CharsetEnum> allCharsets() {
  std::vector<CharsetEnum> all;
  for (std::size_t i = 0; i < charsetNames().size(); ++i)
    all.push_back(static_cast<CharsetEnum>(i));
  EXPECT_EQ(all.size(), 46U);
  return all;
}

bool isUnicodeByUnits(CharsetEnum charset) {
  return charset >= utf16 && charset <= utf32LittleEndian;
}

std::string shiftCodesOf(CharsetEnum charset) {
  if (charset == ISO_2022_JP) return "\x1B";
  return charset == ISO_2022_CN || charset == ISO_2022_KR ? "\x0E\x0F\x1B" : "";
}

void expectPair(CharsetEnum charset, std::string_view bytes, std::string_view text) {
  EXPECT_EQ(bytesToText(bytes, charset), std::string(text)) << charsetName(charset);
  EXPECT_EQ(textToBytes(text, charset), Bytes(bytes)) << charsetName(charset);
}

std::string utf8Of(std::uint32_t character) {
  const std::string bytes = {static_cast<char>(character >> 24), static_cast<char>(character >> 16),
                             static_cast<char>(character >> 8), static_cast<char>(character)};
  return bytesToText(bytes, utf32BigEndian).value_or("");
}

TEST(TextCodec, MapsAsciiToItselfInEverySetAlsoBesideOtherCharacters) {
  for (const CharsetEnum charset : allCharsets()) {
    SCOPED_TRACE(charsetName(charset));
    expectPair(charset, "", "");
    std::string plain;
    for (int code = 0; code < 0x80; ++code) {
      const std::string character(1, static_cast<char>(code));
      const bool isShift = shiftCodesOf(charset).find(character) != std::string::npos;
      EXPECT_EQ(textToBytes(character, charset).has_value(), !isShift) << code;
      if (!isShift && !isUnicodeByUnits(charset)) expectPair(charset, character, character);
      if (!isShift && code != 0) plain += character;
    }
    // A letter that each of the sets has in some form.
    for (const std::string letter : {"中", "é", "я", "한", "ا", "א", "α", "ก", "č", "ē", "Ḃ"}) {
      if (!textToBytes(letter, charset)) continue;
      const std::string text = letter + plain + letter;
      const auto bytes = textToBytes(text, charset);
      ASSERT_TRUE(bytes) << letter;
      EXPECT_EQ(bytesToText(bytes->view(), charset), text) << letter;
    }
  }
}

// From another program's tables.
TEST(TextCodec, GivesEachSetItsOwnBytes) {
  struct Pair {
    std::vector<CharsetEnum> charsets;
    std::string_view bytes;
    std::string_view text;
  };
  // clang-format off
  const Pair pairs[] = {
      {{utf8}, "\xE4\xB8\xAD", "中"},
      {{utf16BigEndian}, "\x4E\x2D\xD8\x3D\xDE\x00"sv, "中😀"},
      {{utf16LittleEndian}, "\x2D\x4E\x3D\xD8\x00\xDE"sv, "中😀"},
      {{utf32BigEndian}, "\0\0\x4E\x2D"sv, "中"},
      {{utf32LittleEndian}, "\x2D\x4E\0\0"sv, "中"},
      {{GB2312, GBK, GB18030, EUC_CN}, "\xD6\xD0", "中"},
      {{GBK, GB18030}, "\xE9\x46", "镕"},
      {{GB18030}, "\x94\x39\xFC\x36", "😀"},
      {{ISO_2022_CN}, "\x1B$)A\x0EVP\x1B$)GYO\x0F", "中國"}, {{ISO_2022_CN}, "\x1B$)A\x0EVP\x0F\r\x1B$)A\x0EVP\x0F", "中\r中"},
      {{ISO_2022_CN}, "\x1B$*H\x1BN\x5Ax\x1BNj\\\x1B$)A\x0EJC\x0F", "輲顠拭"},
      {{big5, big5_E, big5_HKSCS_1999}, "\xA4\xA4", "中"},
      {{big5_HKSCS_1999}, "\xC6\xE8", "あ"},
      {{EUC_JP}, "\xC6\xFC", "日"},
      {{ISO_2022_JP}, "\x1B$BF|\x1B(B", "日"}, {{ISO_2022_JP}, "\x1B(J\\a\x1B(B\n", "¥a\n"},
      {{EUC_KR}, "\xC7\xD1", "한"},
      {{ISO_2022_KR}, "\x1B$)C\x0EGQ\x0F", "한"},
      {{EUC_TW}, "\xC4\xE3", "中"},
      {{KoreanJohab}, "\xD0\x65\\\x99\xB1", "한\\똠"},
      {{iso_8859_1}, "\xD0\xA4", "Ð¤"}, {{iso_8859_2}, "\xA5", "Ľ"}, {{iso_8859_3}, "\xA1", "Ħ"},
      {{iso_8859_4}, "\xA2", "ĸ"}, {{iso_8859_5}, "\xA1", "Ё"}, {{iso_8859_6}, "\xD7", "ط"},
      {{iso_8859_7}, "\xAA", "ͺ"}, {{iso_8859_8}, "\xDF", "‗"}, {{iso_8859_9}, "\xD0\x80", "Ğ\u0080"},
      {{iso_8859_10}, "\xA2", "Ē"}, {{iso_8859_11}, "\xA1", "ก"}, {{iso_8859_13}, "\xA1", "”"},
      {{iso_8859_14}, "\xA1", "Ḃ"}, {{iso_8859_15}, "\xA4\xA6\xAA", "€Šª"}, {{iso_8859_16}, "\xA2", "ą"},
      {{Arabic}, "\x81", "پ"}, {{Greek}, "\xA2", "Ά"}, {{Hebrew}, "\xD4", "װ"}, {{Latin2}, "\x8C", "Ś"},
      {{Latin5}, "\x8A\x83", "Šƒ"}, {{Cyrillic}, "\x80", "Ђ"}, {{BalticRim}, "\x8E", "ˇ"},
      {{Vietnamese}, "\xD5", "Ơ"}, {{KOI8_R}, "\xA4", "╓"}, {{KOI8_U}, "\xA4", "є"},
  };
  // clang-format on
  for (const auto& [charsets, bytes, text] : pairs) {
    for (const CharsetEnum charset : charsets)
      expectPair(charset, bytes, text);
  }
}

TEST(TextCodec, ReadsTheMarkOfUtf16AndUtf32AndWritesOne) {
  expectPair(utf16, "\xFF\xFE-N"s, "中");
  EXPECT_EQ(bytesToText("\xFE\xFFN-", utf16), "中");
  EXPECT_EQ(bytesToText("N-", utf16), "中");
  expectPair(utf32, "\xFF\xFE\0\0-N\0\0"s, "中");
  EXPECT_EQ(bytesToText("\0\0\xFE\xFF\0\0N-"s, utf32), "中");
  EXPECT_EQ(bytesToText("\0\0N-"s, utf32), "中");
  EXPECT_EQ(bytesToText("\xFF\xFE", utf16), "");
  // Where the order is given, the mark is a character.
  expectPair(utf16BigEndian, "\xFE\xFF", "\uFEFF");
}

TEST(TextCodec, ReadsWhatOthersWriteInAnotherWay) {
  EXPECT_EQ(bytesToText("\x1B$@F|\x1B(Jkey\n\x1B(B", ISO_2022_JP), "日key\n");
  EXPECT_EQ(bytesToText("\x1B$)A\x0EVP\x0F\r\n\x0EVP\x0F", ISO_2022_CN), "中\r\n中");
  EXPECT_EQ(bytesToText("\x0EGQ\x0F", ISO_2022_KR), "한");
  EXPECT_EQ(bytesToText("\x1B$)Ckey", ISO_2022_KR), "key");
  EXPECT_EQ(bytesToText("a\xCC", Vietnamese), "à");
}

TEST(TextCodec, RefusesWhatIsInvalidOrCutOff) {
  for (const char* bytes : {"\xFF", "\xC0\x80", "\xE4\xB8", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\x80", "\xC3("}) {
    EXPECT_EQ(bytesToText(bytes, utf8), std::nullopt);
    EXPECT_EQ(textToBytes(bytes, GBK), std::nullopt);
  }
  EXPECT_EQ(bytesToText("N", utf16), std::nullopt);
  EXPECT_EQ(bytesToText("\xD8\x3D", utf16BigEndian), std::nullopt);
  EXPECT_EQ(bytesToText("\0\x11\0\0"s, utf32BigEndian), std::nullopt);
  for (const CharsetEnum charset : {GBK, GB18030, EUC_CN, big5, big5_E, EUC_JP, EUC_KR, EUC_TW, KoreanJohab}) {
    EXPECT_EQ(bytesToText("ok\xC4", charset), std::nullopt) << charsetName(charset);
    // The failure leaves nothing behind for the next conversion.
    EXPECT_TRUE(bytesToText("\xC4\xE3", charset)) << charsetName(charset);
  }
  // Escape sequences and shifts that change nothing, or that nothing behind them needs; and an end outside ASCII.
  for (const char* bytes : {"\x1B(Bkey", "\x1B(Ja\x1B(Jb\x1B(B", "\x1B$B\x1B(B", "\x1B$B\x1B(J~\x1B(B", "\x1B$BF",
                            "\x1B$BF|", "key\x1B", "\x1B$BF|\n\x1B(B"})
    EXPECT_EQ(bytesToText(bytes, ISO_2022_JP), std::nullopt) << bytes;
  for (const char* bytes : {"\x1B$)Akey", "\x0EVP\x0F", "\x1B$)A\x0EVP", "\x1B$)A\x0E\x0F",
                            "\x1B$)A\x0EVP\x0F\x0EVP\x0F", "\x1B$)A\x1B$)G\x0EYO\x0F", "\x1B$)A\x0EVP\x1B$)AVP\x0F",
                            "\x1B$)A\x0EVP\x1B$)G\x0F", "\x1B$*Hkey", "\x1BNZx", "\x1B$)C\x0EGQ\x0F", "\x0F"})
    EXPECT_EQ(bytesToText(bytes, ISO_2022_CN), std::nullopt) << bytes;
  for (const char* bytes : {"key\x1B$)C", "\x1B$)C\x1B$)C", "\x0E\x0F", "\x0F", "\x1B$)C\x0EGQ", "\x1Bkey"})
    EXPECT_EQ(bytesToText(bytes, ISO_2022_KR), std::nullopt) << bytes;
  EXPECT_EQ(bytesToText("\xFA", big5_E), std::nullopt);
  EXPECT_EQ(bytesToText("\x80\x40", big5_E), std::nullopt);
}

// All characters of the alphabets; of the ideographs and of what no set but those of Unicode has, some.
std::vector<std::string> manyCharacters() {
  std::vector<std::string> characters;
  const auto stepBehind = [](std::uint32_t character) {
    if (character < 0x3100) return 1U;
    return character < 0x10000 ? 7U : character >= 0x20000 && character < 0x30000 ? 31U : 509U;
  };
  for (std::uint32_t character = 1; character < 0x110000; character += stepBehind(character))
    if (std::string text = utf8Of(character); !text.empty()) characters.push_back(std::move(text));
  return characters;
}

// Up to 200 of the characters, many of them ASCII or a line end.
std::string randomText(const std::vector<std::string>& characters, std::mt19937& random) {
  std::string text;
  for (auto rest = 1 + random() % 200; rest > 0; --rest) {
    const auto choice = random() % 16;
    text += choice == 0 ? "\n" : characters[random() % (choice < 4 ? std::size_t{100} : characters.size())];
  }
  return text;
}

TEST(TextCodec, NeverWritesATextThatReadsBackAsAnother) {
  std::mt19937 random(9);
  const std::vector<std::string> all = manyCharacters();
  for (const CharsetEnum charset : allCharsets()) {
    SCOPED_TRACE(charsetName(charset));
    std::vector<std::string> writable;
    for (const std::string& character : all) {
      const auto bytes = textToBytes(character, charset);
      if (!bytes) continue;
      ASSERT_EQ(bytesToText(bytes->view(), charset), character);
      writable.push_back(character);
    }
    for (int round = 0; round < 100; ++round) {
      const std::string text = randomText(writable, random);
      const auto bytes = textToBytes(text, charset);
      // A Vietnamese letter and a mark behind it are read as one.
      ASSERT_TRUE(bytes || charset == Vietnamese) << text;
      ASSERT_EQ(bytes ? bytesToText(bytes->view(), charset) : text, text);
    }
    const bool isUniversal = charset == utf8 || charset == GB18030 || isUnicodeByUnits(charset);
    EXPECT_EQ(textToBytes("x\U000E0041", charset).has_value(), isUniversal);
  }
  EXPECT_EQ(textToBytes("¥", EUC_JP), std::nullopt);
  EXPECT_EQ(textToBytes("₩", KoreanJohab), std::nullopt);
  EXPECT_EQ(textToBytes("a\u0300", Vietnamese), std::nullopt);
}

TEST(TextCodec, ReadsWhatAnotherCodecWritesAndTheOtherWayRound) {
  // clang-format off
  const std::pair<CharsetEnum, const char*> others[] = {
      {utf16, "UTF-16"}, {utf32, "UTF-32"}, {utf16BigEndian, "UTF-16BE"}, {utf32LittleEndian, "UTF-32LE"}, {GB2312, "EUC-CN"},
      {GBK, "GBK"}, {GB18030, "GB18030"}, {ISO_2022_CN, "ISO-2022-CN"}, {big5, "Big5"}, {big5_HKSCS_1999, "Big5-HKSCS"},
      {EUC_JP, "EUC-JP"}, {ISO_2022_JP, "ISO-2022-JP"}, {EUC_KR, "EUC-KR"}, {ISO_2022_KR, "ISO-2022-KR"}, {EUC_TW, "EUC-TW"},
      {iso_8859_1, "ISO-8859-1"}, {iso_8859_2, "ISO-8859-2"}, {iso_8859_3, "ISO-8859-3"}, {iso_8859_4, "ISO-8859-4"},
      {iso_8859_5, "ISO-8859-5"}, {iso_8859_6, "ISO-8859-6"}, {iso_8859_7, "ISO-8859-7"}, {iso_8859_8, "ISO-8859-8"},
      {iso_8859_9, "ISO-8859-9"}, {iso_8859_10, "ISO-8859-10"}, {iso_8859_11, "iso-8859_11-2001"}, {iso_8859_13, "ISO-8859-13"},
      {iso_8859_14, "ISO-8859-14"}, {iso_8859_15, "ISO-8859-15"}, {Arabic, "windows-1256"}, {Greek, "windows-1253"},
      {Hebrew, "windows-1255"}, {Latin2, "windows-1250"}, {Latin5, "windows-1254"}, {Cyrillic, "windows-1251"},
      {BalticRim, "windows-1257"}, {KOI8_R, "KOI8-R"}, {KOI8_U, "KOI8-U"}};
  // clang-format on
  std::mt19937 random(10);
  const std::vector<std::string> all = manyCharacters();
  for (const auto& [charset, name] : others) {
    SCOPED_TRACE(charsetName(charset));
    const test::OtherCodec other(name);
    const auto isAlike = [&, &charset = charset](const std::string& text) {
      const auto bytes = textToBytes(text, charset);
      const auto others = other.bytesOf(text);
      return bytes && others && other.textOf(bytes->view()) == text && bytesToText(*others, charset) == text;
    };
    // Some characters have other places in other tables; 國 leads to a second table of ISO_2022_CN.
    std::vector<std::string> common;
    std::size_t writable = 0;
    for (const std::string& character : all) {
      if (!textToBytes(character, charset)) continue;
      ++writable;
      if (isAlike(character) && (charset != ISO_2022_CN || isAlike("國" + character))) common.push_back(character);
    }
    EXPECT_GT(common.size() * 100, writable * 97);
    for (int round = 0; round < 100; ++round) {
      const std::string text = randomText(common, random);
      const auto bytes = textToBytes(text, charset);
      ASSERT_TRUE(bytes);
      EXPECT_EQ(other.textOf(bytes->view()), text);
      EXPECT_EQ(bytesToText(other.bytesOf(text).value_or("none"), charset), text);
    }
  }
}

TEST(TextCodec, KnowsTheWholeOfBig5E) {
  std::set<std::string> characters;
  int pairs = 0;
  for (int lead = 0x80; lead <= 0xFF; ++lead) {
    for (int trail = 0; trail <= 0xFF; ++trail) {
      const std::string bytes = {static_cast<char>(lead), static_cast<char>(trail)};
      const auto text = bytesToText(bytes, big5_E);
      if (!text) continue;
      ++pairs;
      characters.insert(*text);
      const auto written = textToBytes(*text, big5_E);
      ASSERT_TRUE(written);
      EXPECT_EQ(bytesToText(written->view(), big5_E), *text);
      // The box drawing characters at the end are a second form of those in the symbols.
      EXPECT_TRUE(written->view() == bytes || lead == 0xF9) << lead << " " << trail;
    }
  }
  EXPECT_EQ(pairs, 17456);
  EXPECT_EQ(characters.size(), 17448U);
  EXPECT_EQ(textToBytes("😀", big5_E), std::nullopt);
  EXPECT_EQ(textToBytes("é", big5_E), std::nullopt);
}

// Each in one pass: backslashes would take minutes otherwise.
TEST(TextCodec, ConvertsLongTextWhole) {
  const std::string backslashes = "한" + std::string(2'000'000, '\\');
  expectPair(KoreanJohab, "\xD0\x65" + backslashes.substr(3), backslashes);
  std::string text;
  while (text.size() < 30000)
    text += "长文本 long ";
  for (const CharsetEnum charset : {utf16, GBK, GB18030, ISO_2022_CN})
    EXPECT_EQ(bytesToText(textToBytes(text, charset).value().view(), charset), text);
}

// The forms as they are defined: whole-text replacements one after the other.
std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

constexpr const char* controlsAndLetters[][2] = {
    {"\r", "\\r"}, {"\n", "\\n"}, {"\t", "\\t"}, {"\b", "\\b"}, {"\f", "\\f"}};

std::string withLettersReplaced(std::string text) {
  for (const auto& [control, letter] : controlsAndLetters)
    text = replaced(text, letter, control);
  return text;
}

std::string withControlsReplaced(std::string text) {
  text = replaced(text, "\\", "\\\\");
  for (const auto& [control, letter] : controlsAndLetters)
    text = replaced(text, control, letter);
  return text;
}

constexpr const char* placeholder = "#1234567890#";

TEST(EscapeForms, AreWhatTheReplacementsGive) {
  std::mt19937 random(7);
  static constexpr std::string_view characters = "\\\\\\\\rntbfB\r\n\t\b\f\vx";
  for (int round = 0; round < 5000; ++round) {
    std::string text(random() % 12, ' ');
    for (char& c : text)
      c = characters[random() % characters.size()];
    const std::string guarded = withLettersReplaced(replaced(text, "\\\\", placeholder));
    ASSERT_EQ(escapeControls(text), withControlsReplaced(text)) << text;
    ASSERT_EQ(unescapeControls(text), replaced(guarded, placeholder, "\\")) << text;
    ASSERT_EQ(unescapeControlsForSearch(text), replaced(guarded, placeholder, "\\\\")) << text;
    ASSERT_EQ(unescapeControlsInSequence(text), replaced(withLettersReplaced(text), "\\\\", "\\")) << text;
    ASSERT_EQ(escapeControlsForCell(text),
              replaced(withControlsReplaced(replaced(text, "\\B", placeholder)), placeholder, "\\B"))
        << text;
    ASSERT_EQ(unescapeControls(escapeControls(text)), text);
  }
}

}  // namespace
}  // namespace tarn
