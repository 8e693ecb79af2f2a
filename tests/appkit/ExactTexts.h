#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <random>

namespace tarn::test {

// clang-format off
// Pieces of text that toolkits like to change: line ends, controls, noncharacters, pairs and composed characters.
constexpr std::array<QStringView, 24> treacherousTexts{
    u"\r", u"\n", u"\r\n", u"\t", QStringView(u"\0", 1), u"\x1B", u"\x7F", u"\x85", u"\xA0", u"\xAD", u"\u2028", u"\u2029",
    u"\xFDD0", u"\xFDD1", u"\uFFFC", u"\xFFFE", u"\uFEFF", u"\U0001FFFF", u"e\u0301", u"\u4E2D\u6587", u"\u202E",
    u"\U0001F469\u200D\U0001F680", u"\u0627\u0644", u"\uE000"};
// clang-format on

inline QString allTreacherousTexts() {
  QString all = QString(QChar(0xFEFF));
  for (const QStringView text : treacherousTexts)
    all += text.toString() + QStringLiteral("ab");
  return all;
}

// A random text of about so many code units, made of words, line ends and the texts above.
inline QString randomText(std::mt19937& random, std::size_t length) {
  QString text;
  while (std::size_t(text.size()) < length) {
    const auto kind = random() % 8;
    if (kind == 0) text += treacherousTexts[random() % treacherousTexts.size()];
    if (kind == 1) text += u'\n';
    if (kind == 2) text += QString(qsizetype(random() % 300), QChar(char16_t(u'a' + random() % 26)));
    if (kind > 2) text += QStringLiteral("word ");
  }
  return text;
}

}  // namespace tarn::test
