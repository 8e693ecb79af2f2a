#pragma once

#include "tests/workbench/RecordingServer.h"
#include "tests/workbench/TabFixture.h"

namespace tarn::test {

// A tab of a server that remembers what the tab sends, and says what a real one wouldn't.
class RecordedTab : public TabFixture {
protected:
  ~RecordedTab() override {
    server->closeConnection();
    tab.reset();
    settle();
  }

  // The keys are listed.
  void openKeys() {
    openTab(peer.port());
    search("");
    peer.sent();
  }
  // And "b", which is of this type, is on show.
  void open(const std::string& type, const std::string& value) {
    peer.hold(type, value);
    openKeys();
    selectKey("b");
    peer.sent();
  }

  RecordingServer peer;
};

}  // namespace tarn::test
