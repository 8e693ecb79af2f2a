#include "platform/foundation/NSLocalizedString.h"

#include <libintl.h>

#include <clocale>
#include <cstddef>

namespace tarn {
namespace {

constexpr const char* domain = "tarn";

}  // namespace

void useTranslations(const std::string& folder) {
  std::setlocale(LC_CTYPE, "");
  std::setlocale(LC_MESSAGES, "");
  bindtextdomain(domain, folder.c_str());
  bind_textdomain_codeset(domain, "UTF-8");
}

std::string localizedString(const char* english) {
  // The empty key stands for the catalogue's own header.
  return *english == '\0' ? std::string() : dgettext(domain, english);
}

std::string replacingPlaceholder(std::string text, std::string_view placeholder, std::string_view value) {
  if (placeholder.empty()) return text;
  for (std::size_t at = text.find(placeholder); at != std::string::npos; at = text.find(placeholder, at)) {
    text.replace(at, placeholder.size(), value);
    at += value.size();
  }
  return text;
}

std::string replacingPlaceholders(std::string_view text, std::string_view first, std::string_view second) {
  std::string replaced;
  while (!text.empty()) {
    const bool isFirst = text.starts_with("{0}");
    if (isFirst || text.starts_with("{1}")) {
      replaced += isFirst ? first : second;
      text.remove_prefix(3);
    } else {
      replaced += text.front();
      text.remove_prefix(1);
    }
  }
  return replaced;
}

}  // namespace tarn
