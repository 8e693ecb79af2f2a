#pragma once

#include "benchmarks/BenchmarkReport.h"
#include "wire/ServerItem.h"
#include "workbench/OperationTabViewController.h"

#include <functional>
#include <memory>
#include <string>

namespace tarn::bench {

double millisecondsOf(const std::function<void()>& work);

// The median of five.
double medianOfRounds(const std::function<double()>& measure);

void add(BenchmarkReport& report, std::string name, double value, std::string unit, double limit);

// Paints the table or text now.
void paint(const NSView& view);

// A tab on the screen, over a server on a loopback port.
class BenchmarkTab final {
public:
  explicit BenchmarkTab(int port);
  BenchmarkTab(const BenchmarkTab&) = delete;
  BenchmarkTab& operator=(const BenchmarkTab&) = delete;
  ~BenchmarkTab();

  OperationTabLayout& outlets() { return tab_->outlets(); }

  // Lists the keys that contain `text`, up to 10,000,000. The result is the longest time for which the event loop
  // answered nothing, in milliseconds.
  double search(const std::string& text);

  // Milliseconds from the click on the only key that contains `key` until its value is painted in `view`.
  double showValue(const std::string& key, const NSView& view);

private:
  void runUntilIdle();

  std::shared_ptr<ServerItem> server_;
  std::shared_ptr<OperationTabViewController> tab_;
};

}  // namespace tarn::bench
