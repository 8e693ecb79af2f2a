#pragma once

#include "platform/foundation/Bytes.h"
#include "workbench/TabQueue.h"
#include "workbench/text/TextForm.h"
#include "workbench/value/ValueType.h"

#include <cstddef>
#include <optional>

namespace tarn {

// What all parts of one tab share. Main queue only.
struct WorkbenchTab {
  OperationTabLayout outlets;
  TabQueue queue{outlets};

  // The type of the value in the form; nothing while none is loaded, and where no pane knows it.
  std::optional<ValueType> type;
  // The form holds a key that isn't on the server yet.
  bool isNew = false;
  // The key whose value the form shows.
  std::optional<Bytes> loadedKey;

  // A value that a save would replace without its being on show whole: its load still runs, or has failed, or the form
  // was emptied.
  struct Unseen {
    // How many rows the server says it has, if that is known.
    std::optional<std::size_t> rows;
  };
  std::optional<Unseen> unseen;

  // How keys and values are shown and read, as their pop-ups and chkTranslate say now.
  TextForm keyForm() const { return chosenForm(outlets.popKeyDataCharset); }
  TextForm valueForm() const { return chosenForm(outlets.popValueDataCharset); }

private:
  TextForm chosenForm(const NSPopUpButton& popUp) const {
    return textFormAt(popUp.indexOfSelectedItem(), outlets.chkTranslate.state());
  }
};

}  // namespace tarn
