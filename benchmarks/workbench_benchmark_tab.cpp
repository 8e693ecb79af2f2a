#include "benchmarks/workbench_benchmark_tab.h"

#include "tests/support/widgets/Hand.h"

#include <QAbstractScrollArea>
#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace tarn::bench {

namespace {

// Runs the event loop until `done`; the result is its longest turn.
double runUntil(const std::function<bool()>& done) {
  double longest = 0;
  while (!done()) {
    longest = std::max(longest, millisecondsOf([] { QCoreApplication::processEvents(); }));
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
  return longest;
}

}  // namespace

double millisecondsOf(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double medianOfRounds(const std::function<double()>& measure) {
  constexpr int rounds = 5;
  std::vector<double> values;
  for (int round = 0; round < rounds; ++round)
    values.push_back(measure());
  std::nth_element(values.begin(), values.begin() + rounds / 2, values.end());
  return values[rounds / 2];
}

void add(BenchmarkReport& report, std::string name, double value, std::string unit, double limit) {
  report.add({std::move(name), value, std::move(unit), {}, {}, limit});
}

void paint(const NSView& view) {
  auto* area = dynamic_cast<QAbstractScrollArea*>(view.widget());
  (area ? area->viewport() : view.widget())->repaint();
}

BenchmarkTab::BenchmarkTab(int port)
    : server_(std::make_shared<ServerItem>()), tab_(std::make_shared<OperationTabViewController>()) {
  server_->setServerIp("127.0.0.1");
  server_->setServerPort(port);
  server_->setDefaultCharset("utf8");
  if (const auto outcome = server_->connectToServer(); !outcome.ok) throw std::runtime_error(outcome.message);
  server_->loadDatabases();
  tab_->open(server_);
  test::show(*tab_->view().widget(), {940, 700});
  tab_->doResize();
}

BenchmarkTab::~BenchmarkTab() {
  server_->closeConnection();
  tab_.reset();
  test::settle();
}

double BenchmarkTab::search(const std::string& text) {
  NSPopUpButton& limit = outlets().popLimit;
  limit.selectItemAtIndex(test::itemCount(limit) - 1);
  outlets().txtSearchKey.setStringValue(text);
  bool listed = false;
  outlets().tableKeys.tableColumn(0).setHeaderToolTip("");
  const double ask = millisecondsOf([&] { tab_->search(); });
  const double longest = runUntil([&] {
    listed = !outlets().tableKeys.tableColumn(0).headerToolTip().empty();
    return listed;
  });
  runUntilIdle();
  return std::max(ask, longest);
}

double BenchmarkTab::showValue(const std::string& key, const NSView& view) {
  search(key);
  return millisecondsOf([&] {
    outlets().tableKeys.selectRow(0);
    runUntil([&] { return outlets().labDataSize.stringValue() != "Data Size:"; });
    paint(view);
  });
}

void BenchmarkTab::runUntilIdle() {
  runUntil([&] { return server_->operationQueue().operationCount() == 0; });
  test::settle();
}

}  // namespace tarn::bench
