#pragma once

#include <QString>

#include <array>
#include <random>

namespace tarn::test {

// Pieces of text that toolkits like to change: line ends, controls, noncharacters, pairs and composed characters.
inline const std::array<QString, 24> treacherousTexts{
    QStringLiteral("\r"),
    QStringLiteral("\n"),
    QStringLiteral("\r\n"),
    QStringLiteral("\t"),
    QString(QChar(0)),
    QStringLiteral("\x1B"),
    QStringLiteral("\x7F"),
    QString(QChar(0x85)),
    QString(QChar(0xA0)),
    QString(QChar(0xAD)),
    QString(QChar(0x2028)),
    QString(QChar(0x2029)),
    QString(QChar(0xFDD0)),
    QString(QChar(0xFDD1)),
    QString(QChar(0xFFFC)),
    QString(QChar(0xFFFE)),
    QString(QChar(0xFEFF)),
    QString::fromUcs4(U"\U0001FFFF"),
    QStringLiteral("e\u0301"),
    QStringLiteral("\u4E2D\u6587"),
    QString(QChar(0x202E)),
    QString::fromUcs4(U"\U0001F469\u200D\U0001F680"),
    QStringLiteral("\u0627\u0644"),
    QString(QChar(0xE000)),
};

inline QString allTreacherousTexts() {
  QString all = QString(QChar(0xFEFF));
  for (const QString& text : treacherousTexts)
    all += text + QStringLiteral("ab");
  return all;
}

// A random text of about so many code units, made of words, line ends and the texts above.
inline QString randomText(std::mt19937& random, std::size_t length) {
  QString text;
  while (std::size_t(text.size()) < length) {
    switch (random() % 8) {
      case 0:
        text += treacherousTexts[random() % treacherousTexts.size()];
        break;
      case 1:
        text += u'\n';
        break;
      case 2:
        text += QString(qsizetype(random() % 300), QChar(char16_t(u'a' + random() % 26)));
        break;
      default:
        text += QStringLiteral("word ");
    }
  }
  return text;
}

}  // namespace tarn::test
