#pragma once

#include "workbench/text/TextForm.h"

#include <string_view>

namespace tarn::test {

// The form of this name; with a "+" behind it what is typed holds escapes.
inline TextForm formNamed(std::string_view name) {
  const bool translates = name.ends_with('+');
  if (translates) name.remove_suffix(1);
  int index = -1;
  const std::vector<std::string> names = textFormNames();
  for (int each = 0; each < static_cast<int>(names.size()); ++each) {
    if (names[static_cast<std::size_t>(each)] == name) index = each;
  }
  return textFormAt(index, translates);
}

}  // namespace tarn::test
