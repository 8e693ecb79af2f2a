#pragma once

#include "tests/support/AlertRecorder.h"
#include "tests/support/widgets/Hand.h"
#include "wire/ServerItem.h"
#include "workbench/OperationTabViewController.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::test {

using Texts = std::vector<std::string>;

// In whatever has the keyboard.
inline void replaceText(std::string_view text) {
  press(Qt::Key_A, Qt::ControlModifier);
  press(Qt::Key_Delete);
  type(text);
}

inline std::string joined(const Texts& texts, const char* separator = "|") {
  std::string result;
  for (const std::string& text : texts)
    result += (&text == &texts.front() ? "" : separator) + text;
  return result;
}

// The word of each step of a script, and what it is done to.
template <class Take>
void forEachStep(const std::string& script, const std::string& separator, Take take) {
  for (std::size_t at = 0, end = 0; at < script.size(); at = end + separator.size()) {
    end = std::min(script.find(separator, at), script.size());
    const std::string step = script.substr(at, end - at);
    const std::string word = step.substr(0, step.find(' '));
    take(word, step.substr(std::min(word.size() + 1, step.size())));
  }
}

// A tab on the screen, bound to a connection on a loopback port.
class TabFixture : public ::testing::Test {
protected:
  ~TabFixture() override {
    if (server) server->closeConnection();
  }

  // Lists the keys.
  void openTab(int port) {
    server = std::make_shared<ServerItem>();
    server->setServerIp("127.0.0.1");
    server->setServerPort(port);
    server->setDefaultCharset("utf8");
    ASSERT_TRUE(server->connectToServer().ok);
    server->loadDatabases();
    tab = std::make_shared<OperationTabViewController>();
    show(*tab->view().widget(), {900, 560});
    tab->open(server);
    search("");
  }

  OperationTabLayout& outlets() { return tab->outlets(); }
  Texts keys() { return texts(outlets().tableKeys); }

  void waitUntilIdle() {
    ASSERT_TRUE(waitUntil([&] {
      settle();
      return server->operationQueue().operationCount() == 0;
    }));
    settle();
  }

  void search(std::string_view text) {
    outlets().txtSearchKey.setStringValue(text);
    tab->search();
    waitUntilIdle();
  }
  // Selects the first key that shows this text, and waits for its value.
  void selectKey(const std::string& text) {
    const Texts shown = keys();
    outlets().tableKeys.deselectAll();
    outlets().tableKeys.selectRow(static_cast<int>(std::ranges::find(shown, text) - shown.begin()));
    waitUntilIdle();
  }
  void reload() {
    click(outlets().btnReload);
    waitUntilIdle();
  }
  static void typeInto(NSView& field, std::string_view text) {
    field.becomeFirstResponder();
    replaceText(text);
  }

  AlertRecorder alerts;
  std::shared_ptr<ServerItem> server;
  std::shared_ptr<OperationTabViewController> tab;
};

}  // namespace tarn::test
