#include "platform/appkit/Utf8.h"

#include <QStringDecoder>
#include <QStringEncoder>

namespace tarn {

QString toQString(std::string_view utf8) {
  // The plain conversions of QString take a leading U+FEFF for a byte order mark and drop it.
  QStringDecoder decode(QStringConverter::Utf8,
                        QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
  return decode(QByteArrayView(utf8.data(), static_cast<qsizetype>(utf8.size())));
}

std::string toUtf8(QStringView text) {
  QStringEncoder encode(QStringConverter::Utf8);
  std::string utf8(static_cast<std::size_t>(encode.requiredSpace(text.size())), '\0');
  const char* end = encode.appendToBuffer(utf8.data(), text);
  utf8.resize(static_cast<std::size_t>(end - utf8.data()));
  return utf8;
}

QString literalTitle(std::string_view utf8) {
  return toQString(utf8).replace(QLatin1Char('&'), QLatin1String("&&"));
}

}  // namespace tarn
