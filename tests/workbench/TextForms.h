#pragma once

#include "workbench/text/TextForm.h"

#include <algorithm>
#include <string_view>

namespace tarn::test {

// The form of this name; with a "+" behind it what is typed holds escapes.
inline TextForm formNamed(std::string_view name) {
  const bool translates = name.ends_with('+');
  const std::vector<std::string> names = textFormNames();
  const auto found = std::ranges::find(names, name.substr(0, name.size() - (translates ? 1 : 0)));
  return textFormAt(static_cast<int>(found - names.begin()), translates);
}

}  // namespace tarn::test
