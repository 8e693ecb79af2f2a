// Puts one favourite into the store in the user's data folder: favourite NAME HOST PORT. For the demo, whose data
// folder is a temporary one.
#include "favourites/FavouritesStore.h"
#include "platform/appkit/NSApplication.h"
#include "resources/Resources.h"
#include "shell/AppDelegate.h"
#include "wire/ServerItem.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  using namespace tarn;
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s NAME HOST PORT\n", argv[0]);
    return 2;
  }
  NSApplication application(argc, argv);
  if (!loadResources()) return 1;

  ServerItem server;
  server.setConnectionName(argv[1]);
  server.setServerIp(argv[2]);
  server.setServerPort(std::atoi(argv[3]));
  server.setDefaultCharset("utf8");

  AppDelegate delegate;
  FavouritesStore().insertRecord(server);
  if (const auto error = delegate.context().save()) {
    std::fprintf(stderr, "%s\n", error->description().c_str());
    return 1;
  }
  return 0;
}
