#include "workbench/KeyForm.h"

#include "formatters/CouldNegativeNumberFormatter.h"
#include "platform/foundation/NSAlert.h"
#include "workbench/KeyText.h"
#include "workbench/StatusTexts.h"

#include <memory>

namespace tarn {

namespace {

constexpr int ttlTag = -1;
constexpr int keyTag = 0;

}  // namespace

KeyForm::KeyForm(OperationTabLayout& outlets) : outlets_(outlets) {
  outlets_.txtTTL.setFormatter(std::make_unique<CouldNegativeNumberFormatter>());
  outlets_.txtTTL.setDelegate(this);
  outlets_.txtTTL.setTag(ttlTag);
  outlets_.txtKey.setDelegate(this);
  outlets_.txtKey.setTag(keyTag);
}

std::string KeyForm::keyDisplayText(const Bytes& key) const {
  return tarn::keyDisplayText(key.view(), outlets_.popKeyDataCharset.titleOfSelectedItem());
}

std::optional<Bytes> KeyForm::keyDataFromForm() const {
  if (shownKey_) return shownKey_;
  const TypedBytes typed = keyDataFromText(
      outlets_.txtKey.stringValue(), outlets_.popKeyDataCharset.titleOfSelectedItem(), outlets_.chkTranslate.state());
  if (typed.hasValue()) return typed.value();
  showAlert(typed.alert());
  return std::nullopt;
}

void KeyForm::showKey(const Bytes& key) {
  outlets_.chkTranslate.setState(true);
  outlets_.txtKey.setStringValue(keyDisplayText(key));
  shownKey_ = key;
}

void KeyForm::emptyKey() {
  outlets_.txtKey.setStringValue("");
  shownKey_.reset();
}

void KeyForm::translateKey() {
  outlets_.txtKey.setStringValue(keyTextTranslated(outlets_.txtKey.stringValue(), outlets_.chkTranslate.state()));
}

void KeyForm::showTtl(std::string_view ttl, std::string_view toolTip) {
  outlets_.txtTTL.setStringValue(ttl);
  outlets_.txtTTL.setToolTip(toolTip);
}

void KeyForm::showSizesUnknown() {
  outlets_.labKeySize.setStringValue(unknownKeySizeText());
  outlets_.labDataSize.setStringValue(unknownDataSizeText());
}

void KeyForm::showKeySize(const Bytes& key) {
  outlets_.labKeySize.setStringValue(keySizeText(key.size()));
}

void KeyForm::controlTextDidBeginEditing(int tag) {
  if (tag == keyTag) shownKey_.reset();
  if (tag == ttlTag) outlets_.txtTTL.setToolTip("");
}

void KeyForm::controlTextDidEndEditing(const TextEdit& edit) {
  if (edit.tag == ttlTag) outlets_.txtTTL.setToolTip(ttlToolTip(edit.text));
}

}  // namespace tarn
