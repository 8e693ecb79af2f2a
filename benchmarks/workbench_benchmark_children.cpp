#include "benchmarks/workbench_benchmark_children.h"

#include "benchmarks/workbench_benchmark_tab.h"
#include "favourites/MainViewController.h"
#include "platform/appkit/NSApplication.h"
#include "resources/Resources.h"
#include "shell/AppDelegate.h"
#include "shell/MainWindowController.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string_view>

namespace tarn::bench {

namespace {

constexpr std::string_view resultMark = "RESULT ";

[[noreturn]] void endWith(double result) {
  std::printf("%s%.9g\n", resultMark.data(), result);
  std::fflush(stdout);
  NSApplication::exitNow(0);
}

double residentBytes() {
  std::ifstream statm("/proc/self/statm");
  double pages = 0;
  double resident = 0;
  statm >> pages >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

// Calls `painted` when a widget's first painting is done.
class FirstPaint final : public QObject {
public:
  FirstPaint(QWidget& widget, std::function<void()> painted) : painted_(std::move(painted)) {
    widget.installEventFilter(this);
  }

  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint && !seen_) {
      seen_ = true;
      QTimer::singleShot(0, this, painted_);
    }
    return false;
  }

private:
  std::function<void()> painted_;
  bool seen_ = false;
};

// The program's own start, as in its main().
int startProgram(int argc, char** argv, const std::function<void()>& painted) {
  NSApplication application(argc, argv);
  if (!loadResources()) return 1;
  AppDelegate delegate;
  MainViewController content;
  MainWindowController window(content);
  const FirstPaint firstPaint(*content.window().widget(), painted);
  window.showWindow();
  return application.run();
}

int start(int argc, char** argv) {
  const std::chrono::nanoseconds begin(std::atoll(argv[2]));
  return startProgram(argc, argv, [begin] {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    endWith(std::chrono::duration<double, std::milli>(now - begin).count());
  });
}

int residentWindow(int argc, char** argv) {
  return startProgram(argc, argv, [] { QTimer::singleShot(1000, [] { endWith(residentBytes() / 1e6); }); });
}

int residentKeys(int argc, char** argv) {
  NSApplication application(argc, argv);
  BenchmarkTab tab(std::atoi(argv[2]));
  tab.search("no key has this name");
  const double before = residentBytes();
  tab.search("");
  endWith((residentBytes() - before) / tab.outlets().tableKeys.numberOfRows());
}

}  // namespace

std::optional<int> runAsChild(int argc, char** argv) {
  const std::string_view mode = argc > 1 ? argv[1] : "";
  if (mode == "--start" && argc > 2) return start(argc, argv);
  if (mode == "--resident-window") return residentWindow(argc, argv);
  if (mode == "--resident-keys" && argc > 2) return residentKeys(argc, argv);
  return std::nullopt;
}

double askChild(const std::vector<std::string>& arguments) {
  char self[4096] = {};
  if (readlink("/proc/self/exe", self, sizeof self - 1) < 0) throw std::runtime_error("no path to this program");
  std::string command = std::string("'") + self + "'";
  for (const std::string& argument : arguments)
    command += " " + argument;
  FILE* output = popen(command.c_str(), "r");
  if (!output) throw std::runtime_error("can't start a process");
  std::optional<double> result;
  char line[4096];
  while (std::fgets(line, sizeof line, output)) {
    if (std::string_view(line).starts_with(resultMark)) result = std::atof(line + resultMark.size());
  }
  pclose(output);
  if (!result) throw std::runtime_error(command + " gave no result");
  return *result;
}

double startToPaintedWindow() {
  const std::chrono::nanoseconds now = std::chrono::steady_clock::now().time_since_epoch();
  return askChild({"--start", std::to_string(now.count())});
}

}  // namespace tarn::bench
