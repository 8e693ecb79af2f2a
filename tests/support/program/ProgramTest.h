#pragma once

#include "tests/support/program/Program.h"

#include <gtest/gtest.h>

namespace tarn::test {

// A program of each case's own.
class ProgramTest : public testing::Test, protected Program {
protected:
  // Waits until the screen is as told and the posted work is done. Messages and queue label are blank for the next one.
  void see(const std::string& expected) {
    waitUntil([&] { return screen() == expected; });
    settle();
    EXPECT_EQ(screen(), expected);
    alerts.clear();
    for (std::size_t index = 0; index < content().myFavourite()->servers.size(); ++index)
      if (tabOf(index)) tab(index).labDealingQueue.setStringValue("");
  }
};

}  // namespace tarn::test
