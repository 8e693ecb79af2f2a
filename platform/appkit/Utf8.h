#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace tarn {

// Our text as the toolkit's and back, code point for code point: a leading U+FEFF, NUL and noncharacters too. Bytes
// that are no UTF-8 become U+FFFD, and so does half a surrogate pair.
QString toQString(std::string_view utf8);
std::string toUtf8(QStringView text);

// The title of a button, a menu item or a tab: the toolkit reads a single ampersand in it as the mark of a shortcut.
QString literalTitle(std::string_view utf8);

}  // namespace tarn
