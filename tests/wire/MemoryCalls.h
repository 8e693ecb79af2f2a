#pragma once

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <string_view>

#include "wire/Socket.h"
#include "wire/SocketCalls.h"

namespace tarn::test {

// A peer that lies in memory: hands out the bytes of a stream in arrivals of a given size, with the flags that the
// real call knows, and closes behind the last one.
class MemoryCalls final : public SocketCalls {
public:
  explicit MemoryCalls(std::string_view stream, std::size_t arrival = static_cast<std::size_t>(-1))
      : rest_(stream), arrival_(arrival) {}

  // What nobody has taken.
  std::string_view rest() const { return rest_; }

  std::shared_ptr<Socket> makeSocket() { return std::make_shared<Socket>(::open("/dev/null", O_RDWR | O_CLOEXEC), *this); }

  ssize_t receive(int, void* bytes, std::size_t count, int flags) override {
    const std::string_view part = rest_.substr(0, std::min(count, arrival_));
    if ((flags & MSG_TRUNC) == 0) std::copy(part.begin(), part.end(), static_cast<char*>(bytes));
    if ((flags & MSG_PEEK) == 0) rest_.remove_prefix(part.size());
    return static_cast<ssize_t>(part.size());
  }

private:
  std::string_view rest_;
  std::size_t arrival_;
};

}  // namespace tarn::test
