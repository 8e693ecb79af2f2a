#include "workbench/text/TextForm.h"

namespace tarn {

namespace {

constexpr const char* base64Name = "Base64";
constexpr int base64Index = 1;

}  // namespace

std::string TextForm::name() const {
  return isBase64 ? base64Name : charsetName(charset);
}

std::vector<std::string> textFormNames() {
  std::vector<std::string> names = charsetNames();
  names.emplace(names.begin() + base64Index, base64Name);
  return names;
}

TextForm textFormAt(int index, bool translates) {
  if (index < 0) return {CharsetEnum::utf8, false, translates};
  if (index == base64Index) return {CharsetEnum::utf8, true, translates};
  return {static_cast<CharsetEnum>(index < base64Index ? index : index - 1), false, translates};
}

}  // namespace tarn
