#pragma once

#include "platform/appkit/NSControl.h"

#include <memory>
#include <string>
#include <string_view>

namespace tarn {

// A push button, or a check box or toggle with a state. A click takes no focus, so it ends no edit; Tab reaches it.
// `stringValue` is its title.
class NSButton final : public NSControl {
public:
  explicit NSButton(QWidget* widget);
  ~NSButton() override;

  std::string stringValue() const override;
  void setStringValue(std::string_view title) override;

  // A chord with Ctrl, such as "Ctrl+S", that does what a click does while the button is on the screen. A change of the
  // title takes it away.
  void setKeyEquivalent(std::string_view chord);

  // On or off. Setting it sends no action.
  bool state() const;
  void setState(bool on);

private:
  struct Private;
  std::unique_ptr<Private> d_;
};

}  // namespace tarn
