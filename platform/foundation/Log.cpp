#include "platform/foundation/Log.h"

#include "platform/foundation/Mutex.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>

namespace tarn {

void logLine(std::string_view text) {
  static Mutex mutex;
  std::string line(text);
  line += '\n';
  const MutexLock lock(mutex);
  // Straight to the descriptor: nothing is lost in a buffer when the process ends at once.
  for (std::string_view rest = line; !rest.empty();) {
    const ssize_t written = ::write(STDOUT_FILENO, rest.data(), rest.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return;
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
}

void outliveLogReader() {
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace tarn
