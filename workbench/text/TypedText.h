#pragma once

#include "workbench/text/BytesOrAlert.h"
#include "workbench/text/TextForm.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// Between the bytes of keys and values and the text that a user sees and types. Bytes that are no text in their
// character set show as `\B` and their Base64. All pure; any thread.

// --- Keys

// A key in the list and in the form: with escapes, whatever the form says.
std::string keyText(std::string_view key, TextForm form);
// The bytes that the form's text stands for. The marker counts only where the form translates.
BytesOrAlert keyFromText(std::string_view text, TextForm form);
// The form's text after the escapes were switched on or off, so that it keeps its meaning.
std::string keyTextTranslated(std::string_view text, bool nowOn);

// --- Rows of a list, set, hash or sorted set

// A row's text, which holds no escapes.
std::string rowText(std::string_view bytes, TextForm form);
// How a cell shows a row's text.
std::string cellText(std::string_view text, bool translates);

// What a row becomes by a text that was typed into its cell. Text and bytes stand only where it was taken.
struct TypedCell {
  enum class Outcome {
    taken,
    unchanged,  // what the cell showed: it may stand for other bytes than the row's, so it isn't read
    tooShort,   // no marker and so no Base64, where there must be both
    noBase64,   // what follows the marker is none
    noText      // the text has no form in the character set
  };

  Outcome outcome = Outcome::taken;
  std::string text;
  Bytes bytes;
};
TypedCell rowTypedInCell(std::string text, TextForm form);

// What a row becomes by a text that was typed into its editor, where escapes are plain text. A text that stands for no
// bytes leaves the row those that it had, `before`, and shows them.
struct TypedRow {
  std::string text;
  Bytes bytes;
  // The editor shows the row again in place of what was typed.
  bool isRefused = false;
};
TypedRow rowTypedInEditor(std::string text, TextForm form, const Bytes& before);

// The bytes that a save makes of a row's text; nothing where it stands for none, and the row keeps those that it has.
std::optional<Bytes> bytesOfRow(std::string_view text, TextForm form);

// Why the text of a row stands for other bytes than those that it was made from.
enum class ConversionReason {
  marker,       // it begins with `\B`, though the bytes are these characters
  escapes,      // it holds backslash sequences
  unusualForm,  // the character set writes it in another way
};
ConversionReason conversionReason(std::string_view text, TextForm form);

// True if text made from the bytes stands for them beyond doubt: a quick look, which may deny it.
bool standsForItself(std::string_view bytes, TextForm form);

// --- Strings, which know neither marker nor escapes

// Nothing if the bytes are no text in this form.
std::optional<std::string> stringText(std::string_view bytes, TextForm form);
BytesOrAlert stringFromText(std::string_view text, TextForm form);

// What a String shows after a change of its form.
struct StringInNewForm {
  // Nothing if it can't be shown.
  std::optional<std::string> text;
  // The text is what was shown before, with what was typed in it and isn't saved; else it is the value's own.
  bool isShownText = false;
};
// By way of the bytes that the shown text stands for in the old form, so that what was typed stays; by way of the
// value's bytes where it stands for none.
StringInNewForm stringInNewForm(std::string_view shown, TextForm oldForm, TextForm newForm, std::string_view value);

}  // namespace tarn
