#pragma once

#include "platform/foundation/Bytes.h"
#include "resources/OperationTabLayout.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// The head of the value's side: key, TTL, type and sizes. Main queue only.
class KeyForm final : public NSTextFieldDelegate {
public:
  explicit KeyForm(OperationTabLayout& outlets);

  // How a key shows in the charset that is chosen for keys.
  std::string keyDisplayText(const Bytes& key) const;

  // The bytes of the key in the form: the very ones that were shown, as long as no hand has changed their text; else
  // what the text stands for. Nothing, after an alert, where it stands for no bytes.
  std::optional<Bytes> keyDataFromForm() const;

  // Switches the escapes on and shows the key.
  void showKey(const Bytes& key);
  void emptyKey();
  // Rewrites the key's text after a click on chkTranslate, so that it keeps its meaning.
  void translateKey();

  void showTtl(std::string_view ttl, std::string_view toolTip);
  void showSizesUnknown();
  void showKeySize(const Bytes& key);

  void controlTextDidBeginEditing(int tag) override;
  void controlTextDidEndEditing(const TextEdit& edit) override;

private:
  OperationTabLayout& outlets_;
  // What the text of txtKey was made from, until a hand changes it.
  std::optional<Bytes> shownKey_;
};

}  // namespace tarn
