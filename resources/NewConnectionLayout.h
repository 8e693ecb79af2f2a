#pragma once

#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWindow.h"

#include <memory>

namespace tarn {

// The form that describes one connection. Owns all of it; every control has the name of its field.
class NewConnectionLayout final {
private:
  struct Widgets;
  std::unique_ptr<Widgets> widgets_;

public:
  NewConnectionLayout();
  ~NewConnectionLayout();

  NSWindow window;
  NSTextField txtCnnName;
  NSTextField txtIp;
  NSTextField txtPort;
  // The password as dots, and in clear in the same place; one of the two shows.
  NSSecureTextField txtAuth;
  NSTextField txtAuthToShow;
  NSButton btnShowAuth;
  NSPopUpButton popDefaultCharset;
  NSButton btnTestConnection;
  NSButton btnCancel;
  NSButton btnSave;
};

}  // namespace tarn
