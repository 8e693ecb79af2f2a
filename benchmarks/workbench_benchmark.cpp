// Measures the tab and the window: keys and values from a local server to painted rows and text, the start of the
// program, pauses of the event loop, resident memory.

#include "benchmarks/BenchmarkReport.h"
#include "benchmarks/workbench_benchmark_children.h"
#include "benchmarks/workbench_benchmark_rows.h"
#include "benchmarks/workbench_benchmark_save.h"
#include "benchmarks/workbench_benchmark_tab.h"
#include "favourites/FavouritesStore.h"
#include "platform/appkit/NSApplication.h"
#include "shell/AppDelegate.h"
#include "tests/support/RedisServer.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/widgets/Hand.h"
#include "workbench/keys/KeyBrowser.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarn::bench {

namespace {

// The result of a scan goes to the browser as its block hands it over.
double keysToTable() {
  std::vector<Bytes> keys;
  for (int i = 0; i < 1'000'000; ++i)
    keys.emplace_back("some:key:of:2" + std::to_string(1'000'000 + i));
  WorkbenchTab tab;
  KeyBrowser browser(tab);
  test::show(*tab.outlets.view.widget(), {940, 700});
  const double shown = millisecondsOf([&] {
    browser.showKeys(std::move(keys));
    paint(tab.outlets.tableKeys);
  });
  return shown;
}

// What the console does with a reply, in a console that has much to tell already.
void measureConsole(BenchmarkReport& report) {
  OperationTabLayout tab;
  test::show(*tab.view.widget(), {940, 700});
  std::string said;
  while (said.size() < 10'000'000)
    said += "local: a line of a console that has been open all day\n";
  tab.txtViewCli.setString(said);
  paint(tab.txtViewCli);
  add(report, "a short reply appended to a console of 10 MB", medianOfRounds([&] {
        return millisecondsOf([&] {
          tab.txtViewCli.appendString("\nlocal: OK\nlocal: ");
          tab.txtViewCli.scrollRangeToVisible(tab.txtViewCli.selectedRange());
          paint(tab.txtViewCli);
        });
      }),
      "ms", 20);
}

void measureKeys(BenchmarkReport& report) {
  add(report, "1,000,000 keys from scan result to a scrollable table", medianOfRounds(keysToTable), "ms", 50);

  const test::RedisServer redis({"--enable-debug-command", "yes", "--save", ""});
  redis.command({"DEBUG", "POPULATE", "1000000", "twelve:chars"});
  BenchmarkTab tab(redis.port());
  add(report, "longest pause of the event loop while 1,000,000 keys are scanned and shown",
      medianOfRounds([&] { return tab.search(""); }), "ms", 50);
  if (tab.outlets().tableKeys.numberOfRows() != 1'000'000) throw std::runtime_error("not all keys were listed");
  add(report, "resident memory per key listed, 1,000,000 keys",
      askChild({"--resident-keys", std::to_string(redis.port())}), "bytes", 48);
  redis.command({"FLUSHALL"});
  redis.command({"DEBUG", "POPULATE", "10000000", "twelve:chars"});
  add(report, "resident memory per key listed, 10,000,000 keys",
      askChild({"--resident-keys", std::to_string(redis.port())}), "bytes", 48);
}

void measureLists(BenchmarkReport& report) {
  const test::RedisServer redis({"--save", ""});
  const auto fill = [&](const std::string& key, const std::string& format) {
    redis.command({"EVAL", "for i = 1, 1000000 do redis.call('RPUSH', KEYS[1], string.format('" + format + "', i)) end",
                   "1", key});
  };
  fill("utf8", "item of a list %06d");
  fill("gbk", "\\214\\208\\206\\196\\214\\208\\206\\196 %011d");
  const SaveTimes saving = timesOfSaving(redis.port(), "utf8");
  report.add({"save of a 1,000,000-row list, utf8", saving.save, "ms", saving.floor, saving.save / saving.floor, 1.5});
  BenchmarkTab tab(redis.port());
  const auto show = [&](const std::string& key) {
    return medianOfRounds([&] { return tab.showValue(key, tab.outlets().valueDataSetTable); });
  };
  add(report, "1,000,000-row list from click to painted rows, utf8", show("utf8"), "ms", 400);
  tab.outlets().popValueDataCharset.selectItemWithTitle("GBK");
  add(report, "1,000,000-row list from click to painted rows, GBK", show("gbk"), "ms", 1500);
}

void measureStrings(BenchmarkReport& report) {
  const test::RedisServer redis({"--save", ""});
  redis.command({"EVAL", "redis.call('SET', KEYS[1], string.rep('0123456789', 10000000))", "1", "one-line"});
  redis.command(
      {"EVAL", "redis.call('SET', KEYS[1], string.rep(string.rep('x', 99) .. '\\n', 1000000))", "1", "many-lines"});
  BenchmarkTab tab(redis.port());
  NSTextView& view = tab.outlets().valueDataStringTxtView;
  const auto letter = [&] {
    view.becomeFirstResponder();
    test::settle();
    return millisecondsOf([&] {
      test::type("x");
      paint(view);
    });
  };
  add(report, "String of 100 MB in one line from click to painted text", tab.showValue("one-line", view), "ms", 1000);
  add(report, "a letter typed into it", letter(), "ms", 20);
  add(report, "String of 100 MB in 1,000,000 lines from click to painted text", tab.showValue("many-lines", view), "ms",
      7000);
  add(report, "a letter typed into it", letter(), "ms", 20);
}

void measureProgram(BenchmarkReport& report) {
  const test::TemporaryDataHome home;
  {
    AppDelegate delegate;
    FavouritesStore store;
    for (int i = 0; i < 200; ++i) {
      ServerItem server;
      server.setConnectionName("favourite " + std::to_string(i));
      server.setServerIp("127.0.0.1");
      server.setServerPort(6379);
      server.setDefaultCharset("utf8");
      store.insertRecord(server);
    }
    delegate.saveContext();
  }
  add(report, "start to painted window with 200 favourites", medianOfRounds(startToPaintedWindow), "ms", 300);
  add(report, "resident memory, window open, nothing connected", askChild({"--resident-window"}), "MB", 60);
}

}  // namespace

}  // namespace tarn::bench

int main(int argc, char** argv) {
  using namespace tarn::bench;
  if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY")) setenv("QT_QPA_PLATFORM", "offscreen", 0);
  if (const auto status = runAsChild(argc, argv)) return *status;
  try {
    tarn::NSApplication application(argc, argv);
    BenchmarkReport report(argc, argv);
    measureProgram(report);
    measureConsole(report);
    measureKeys(report);
    measureLists(report);
    measureRows(report);
    measureStrings(report);
    return report.finish();
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "workbench_benchmark: %s\n", failure.what());
    return 1;
  }
}
