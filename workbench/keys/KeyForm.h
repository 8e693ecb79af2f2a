#pragma once

#include "platform/foundation/Bytes.h"
#include "workbench/WorkbenchTab.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// The head of the value's side: key, TTL and sizes. Main queue only.
class KeyForm final : public NSTextFieldDelegate {
public:
  explicit KeyForm(WorkbenchTab& tab);

  // The bytes of the key in the form: the very ones that were shown, as long as the user hasn't changed their text;
  // else what the text stands for. Nothing, after an alert, where it stands for no bytes.
  std::optional<Bytes> keyDataFromForm() const;

  // True where the user has changed the key's text since it was shown, or since the form was emptied.
  bool isKeyTyped() const { return !shownKey_; }
  // The key that was shown last, also if the user has typed over it; nothing in a form that was emptied.
  const std::optional<Bytes>& lastShownKey() const { return shownKey_ ? shownKey_ : typedOverKey_; }

  // As typed, or as last shown.
  std::string ttlText() const { return tab_.outlets.txtTTL.stringValue(); }

  // No key, this TTL, and sizes that aren't known; the type stays.
  void blank(std::string_view ttl, std::string_view toolTip);
  // No key and no TTL, no type, and sizes of 0; the tool tip of the TTL stays.
  void showDeletedKey();

  // Switches the escapes on and shows the key.
  void showKey(const Bytes& key);
  // The text stands for the very bytes of this key, as if they had been shown.
  void takeAsShown(const Bytes& key);
  // Rewrites the key's text after a click on chkTranslate, so that it keeps its meaning.
  void translateKey();

  // All show a text of StatusTexts as it is.
  void showType(const std::string& text) { tab_.outlets.labType.setStringValue(text); }
  void showDataSize(const std::string& text) { tab_.outlets.labDataSize.setStringValue(text); }
  void showTtl(std::string_view ttl, std::string_view toolTip);

  void showSizesUnknown();
  void showKeySize(const Bytes& key);

  void controlTextDidBeginEditing(int tag) override;
  void controlTextDidEndEditing(const TextEdit& edit) override;

private:
  void emptyKey();

  WorkbenchTab& tab_;
  // What the text of txtKey was made from, until the user changes it.
  std::optional<Bytes> shownKey_;
  // What it was made from before that.
  std::optional<Bytes> typedOverKey_;
};

}  // namespace tarn
