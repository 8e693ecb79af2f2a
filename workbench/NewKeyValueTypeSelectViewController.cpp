#include "workbench/NewKeyValueTypeSelectViewController.h"

#include "platform/foundation/Log.h"

#include <optional>
#include <string>
#include <utility>

namespace tarn {

NewKeyValueTypeSelectViewController::NewKeyValueTypeSelectViewController(Answers answers)
    : answers_(std::move(answers)) {
  layout_.popValueType.selectItemAtIndex(0);
  layout_.btnCancel.setAction([this] { clickCancel(); });
  layout_.btnConfirm.setAction([this] { clickConfirm(); });
}

void NewKeyValueTypeSelectViewController::startAnew() {
  layout_.popValueType.selectItemAtIndex(0);
  layout_.popValueType.becomeFirstResponder();
}

void NewKeyValueTypeSelectViewController::clickConfirm() {
  const std::string title = layout_.popValueType.titleOfSelectedItem();
  logLine(title);
  if (const std::optional<ValueType> type = valueTypeOfTitle(title)) answers_.chosen(*type);
  layout_.window.close();
}

void NewKeyValueTypeSelectViewController::clickCancel() {
  answers_.cancelled();
  layout_.window.close();
}

}  // namespace tarn
