#pragma once

#include "codec/TextCodec.h"
#include "platform/foundation/Bytes.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// What a row becomes by a text that a hand typed. `title` is what popValueDataCharset says: a character set or
// "Base64". All pure; any thread.

// Typed into the row's cell.
struct CellRow {
  enum class Outcome {
    taken,
    tooShort,  // no marker and so no Base64, where there must be both
    noBase64,  // what follows the marker is none
    noText     // the text has no form in the character set
  };

  Outcome outcome = Outcome::taken;
  // Only where it was taken. Without a flag the row keeps the one that it has.
  std::string text;
  Bytes bytes;
  std::optional<bool> isBase64;
};

// `translate` tells whether the text holds backslash escapes.
CellRow rowTypedInCell(std::string text, std::string_view title, bool translate);

// Typed into the editor under the table, where escapes are plain text.
struct EditorRow {
  RowText shown;
  Bytes bytes;
  // The editor shows the row again in place of what was typed.
  bool isRefused = false;
};

// A text that stands for no bytes leaves the row those that it had, `before`, and shows them.
EditorRow rowTypedInEditor(std::string text, std::string_view title, const Bytes& before);

}  // namespace tarn
