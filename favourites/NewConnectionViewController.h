#pragma once

#include "favourites/Favourites.h"
#include "platform/appkit/NSViewController.h"
#include "platform/appkit/NSWindowController.h"
#include "platform/foundation/NSUUID.h"
#include "resources/NewConnectionLayout.h"
#include "wire/ServerItem.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tarn {

// The form that describes one connection, new or existing, tests it, and saves it into the list, the store, the tree
// and the open tab. A message leaves what was typed as it is. Main thread only; a test waits there for the network.
class NewConnectionViewController final : public NSViewController {
public:
  // `willClose` is called before the form closes its window by itself; the form outlives the current event.
  NewConnectionViewController(Favourites favourites, std::function<void()> willClose);

  NSView& view() override { return layout_.window; }
  NSWindow& window() { return layout_.window; }
  // The outlets, by their names.
  NewConnectionLayout& outlets() { return layout_; }

  // Empties the form for a new connection, or fills it with the favourite to edit, whatever it holds.
  void editNew();
  void edit(const ServerItem& server);

  // The favourite under edit; nothing for a new connection.
  const std::optional<NSUUID>& serverId() const { return serverId_; }

private:
  struct Texts {
    std::string name;
    std::string host;
    std::string port;
    std::string password;
    std::string charset;
  };

  void viewDidLoad();
  void toggleShowAuth();

  // The password is hidden, and the first field has the keyboard.
  void fill(const std::optional<NSUUID>& serverId, const Texts& texts);
  void showAuth(bool inClear);
  std::string password() const;
  // False, and a message, if there is no port.
  bool hasPort() const;
  bool isDuplicateName() const;

  void saveConnection();
  void saveNew();
  void saveEdited(const NSUUID& serverId);
  void testConnection();
  void closeForm();

  // What both a save and a test take from the form; a save also takes the charset.
  void writeAddress(ServerItem& server) const;
  void writeTo(ServerItem& server) const;

  NewConnectionLayout layout_;
  const Favourites favourites_;
  const std::function<void()> willClose_;
  std::optional<NSUUID> serverId_;
};

// The one window of the connection form.
using NewConnectionWindowController = WindowControllerOf<NewConnectionViewController>;

}  // namespace tarn
