#pragma once

#include "platform/appkit/NSControl.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// One choice out of a list of titles. A click takes no focus. The action is sent when the user chose an item, also
// the one that was chosen already; changes by code send none. The first item added to an empty list is selected; an
// index out of range or an unknown title selects none, and the title is then empty.
class NSPopUpButton final : public NSControl {
public:
  explicit NSPopUpButton(QWidget* widget);
  ~NSPopUpButton() override;

  // The title of the selected item.
  std::string stringValue() const override { return titleOfSelectedItem(); }
  void setStringValue(std::string_view title) override { selectItemWithTitle(title); }

  void removeAllItems();
  void addItemWithTitle(std::string_view title);
  void addItemsWithTitles(const std::vector<std::string>& titles);

  void selectItemAtIndex(int index);
  void selectItemWithTitle(std::string_view title);
  // -1 where none is selected.
  int indexOfSelectedItem() const;
  std::string titleOfSelectedItem() const;

private:
  struct Private;
  std::unique_ptr<Private> d_;
};

}  // namespace tarn
