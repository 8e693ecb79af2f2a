#pragma once

#include "platform/foundation/Bytes.h"
#include "workbench/WorkbenchTab.h"

#include <optional>
#include <string_view>

namespace tarn {

// The head of the value's side: key, TTL and sizes. Main queue only.
class KeyForm final : public NSTextFieldDelegate {
public:
  explicit KeyForm(WorkbenchTab& tab);

  // The bytes of the key in the form: the very ones that were shown, as long as the user hasn't changed their text;
  // else what the text stands for. Nothing, after an alert, where it stands for no bytes.
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
  WorkbenchTab& tab_;
  // What the text of txtKey was made from, until the user changes it.
  std::optional<Bytes> shownKey_;
};

}  // namespace tarn
