#pragma once

#include "codec/CharsetEnum.h"

#include <string>
#include <vector>

namespace tarn {

// How bytes stand as text: in a character set, or as Base64; and whether what is typed holds backslash escapes.
struct TextForm {
  // utf8 for Base64: what stands in for it where Base64 can't.
  CharsetEnum charset = CharsetEnum::utf8;
  bool isBase64 = false;
  bool translates = false;

  // As the pop-ups of a tab show it.
  std::string name() const;

  bool operator==(const TextForm&) const = default;
};

// The items of the two pop-ups of a tab: the character sets, with "Base64" as the second.
std::vector<std::string> textFormNames();

// What the item with this index stands for; utf8 where there is none.
TextForm textFormAt(int index, bool translates);

}  // namespace tarn
