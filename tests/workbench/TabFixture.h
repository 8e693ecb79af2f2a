#pragma once

#include "platform/appkit/table/TableViewWidget.h"
#include "platform/foundation/NSTimer.h"
#include "tests/support/AlertRecorder.h"
#include "tests/support/widgets/Hand.h"
#include "tests/workbench/RecordingServer.h"
#include "wire/ServerItem.h"
#include "workbench/OperationTabViewController.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::test {

using Texts = std::vector<std::string>;

// What the user does in the cells of a table.

inline TableViewWidget& widgetOf(const NSTableView& table) {
  return dynamic_cast<TableViewWidget&>(*table.widget());
}

inline void clickCell(const NSTableView& table, int row, int column, Qt::MouseButton button = Qt::LeftButton) {
  click(*widgetOf(table).viewport(), widgetOf(table).cellRect(row, column).center(), button);
}

inline void openCell(const NSTableView& table, int row, int column) {
  doubleClick(*widgetOf(table).viewport(), widgetOf(table).cellRect(row, column).center());
}

// The text field of the open cell, or nothing.
inline TextFieldWidget* editorOf(const NSTableView& table) {
  auto* editor = widgetOf(table).viewport()->findChild<TextFieldWidget*>();
  return editor && editor->isVisible() ? editor : nullptr;
}

// In whatever has the keyboard.
inline void replaceText(std::string_view text) {
  press(Qt::Key_A, Qt::ControlModifier);
  press(Qt::Key_Delete);
  type(text);
}

// Until a cell that a timer opens is open.
inline void waitForATimer() {
  bool hasFired = false;
  NSTimer::scheduledTimerWithTimeInterval(0.1, false, [&] { hasFired = true; });
  ASSERT_TRUE(waitUntil([&] { return hasFired; }));
  settle();
}

inline Texts texts(NSTableView& table, int column) {
  Texts result;
  for (int row = 0; row < table.numberOfRows(); ++row)
    result.push_back(table.viewAtColumn(column, row, true)->stringValue());
  return result;
}

// A tab on the screen, bound to a connection on a loopback port.
class TabFixture : public ::testing::Test {
protected:
  ~TabFixture() override {
    if (server) server->closeConnection();
  }

  void openTab(int port) {
    server = std::make_shared<ServerItem>();
    server->setServerIp("127.0.0.1");
    server->setServerPort(port);
    server->setDefaultCharset("utf8");
    ASSERT_TRUE(server->connectToServer().ok);
    server->loadDatabases();
    showTab();
  }

  void showTab() {
    tab = std::make_shared<OperationTabViewController>();
    tab->open(server);
    show(*tab->view().widget(), {900, 560});
  }

  OperationTabLayout& outlets() { return tab->outlets(); }

  bool idle() {
    settle();
    return server->operationQueue().operationCount() == 0;
  }
  void waitUntilIdle() {
    ASSERT_TRUE(waitUntil([&] { return idle(); }));
    settle();
  }

  void search(std::string_view text) {
    outlets().txtSearchKey.setStringValue(text);
    tab->search();
    waitUntilIdle();
  }
  // Selects the first key that shows this text, and waits for its value.
  void selectKey(const std::string& text) {
    const auto shown = texts(outlets().tableKeys, 0);
    for (int row = 0; row < static_cast<int>(shown.size()); ++row) {
      if (shown[static_cast<std::size_t>(row)] == text) outlets().tableKeys.selectRow(row);
    }
    waitUntilIdle();
  }

  // As the user does, in the pop-up's list.
  static void chooseTitle(NSPopUpButton& popUp, const std::string& title) {
    const int before = popUp.indexOfSelectedItem();
    popUp.selectItemWithTitle(title);
    const int index = popUp.indexOfSelectedItem();
    popUp.selectItemAtIndex(before);
    ASSERT_GE(index, 0) << title;
    choose(*popUp.widget(), index);
  }

  AlertRecorder alerts;
  std::shared_ptr<ServerItem> server;
  std::shared_ptr<OperationTabViewController> tab;
};

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
