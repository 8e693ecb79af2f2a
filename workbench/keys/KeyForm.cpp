#include "workbench/keys/KeyForm.h"

#include "formatters/CouldNegativeNumberFormatter.h"
#include "platform/foundation/NSAlert.h"
#include "workbench/StatusTexts.h"
#include "workbench/text/TypedText.h"

#include <memory>
#include <utility>

namespace tarn {

namespace {

constexpr int ttlTag = -1;
constexpr int keyTag = 0;

}  // namespace

KeyForm::KeyForm(WorkbenchTab& tab) : tab_(tab) {
  tab_.outlets.txtTTL.setFormatter(std::make_unique<CouldNegativeNumberFormatter>());
  tab_.outlets.txtTTL.setDelegate(this);
  tab_.outlets.txtTTL.setTag(ttlTag);
  tab_.outlets.txtKey.setDelegate(this);
  tab_.outlets.txtKey.setTag(keyTag);
}

std::optional<Bytes> KeyForm::keyDataFromForm() const {
  if (shownKey_) return shownKey_;
  const BytesOrAlert typed = keyFromText(tab_.outlets.txtKey.stringValue(), tab_.keyForm());
  if (typed.hasValue()) return typed.value();
  showAlert(typed.alert());
  return std::nullopt;
}

void KeyForm::blank(std::string_view ttl, std::string_view toolTip) {
  emptyKey();
  showTtl(ttl, toolTip);
  showSizesUnknown();
}

void KeyForm::showDeletedKey() {
  emptyKey();
  tab_.outlets.txtTTL.setStringValue("");
  showType(typeText(""));
  tab_.outlets.labKeySize.setStringValue(keySizeText(0));
  showDataSize(dataSizeText(0));
}

void KeyForm::showKey(const Bytes& key) {
  tab_.outlets.chkTranslate.setState(true);
  tab_.outlets.txtKey.setStringValue(keyText(key.view(), tab_.keyForm()));
  shownKey_ = key;
}

void KeyForm::takeAsShown(const Bytes& key) {
  shownKey_ = key;
  typedOverKey_.reset();
}

void KeyForm::emptyKey() {
  tab_.outlets.txtKey.setStringValue("");
  shownKey_.reset();
  typedOverKey_.reset();
}

void KeyForm::translateKey() {
  NSTextField& field = tab_.outlets.txtKey;
  field.setStringValue(keyTextTranslated(field.stringValue(), tab_.outlets.chkTranslate.state()));
}

void KeyForm::showTtl(std::string_view ttl, std::string_view toolTip) {
  tab_.outlets.txtTTL.setStringValue(ttl);
  tab_.outlets.txtTTL.setToolTip(toolTip);
}

void KeyForm::showSizesUnknown() {
  tab_.outlets.labKeySize.setStringValue(unknownKeySizeText());
  showDataSize(unknownDataSizeText());
}

void KeyForm::showKeySize(const Bytes& key) {
  tab_.outlets.labKeySize.setStringValue(keySizeText(key.size()));
}

void KeyForm::controlTextDidBeginEditing(int tag) {
  if (tag == keyTag && shownKey_) typedOverKey_ = std::exchange(shownKey_, std::nullopt);
  if (tag == ttlTag) tab_.outlets.txtTTL.setToolTip("");
}

void KeyForm::controlTextDidEndEditing(const TextEdit& edit) {
  if (edit.tag == ttlTag) tab_.outlets.txtTTL.setToolTip(ttlToolTip(edit.text));
}

}  // namespace tarn
