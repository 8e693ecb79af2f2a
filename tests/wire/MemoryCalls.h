#pragma once

#include "wire/socket/Socket.h"
#include "wire/socket/SocketCalls.h"

#include <fcntl.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::test {

// A peer that lies in memory: hands out the bytes of a stream in arrivals of a given size, and closes behind the last.
class MemoryCalls : public SocketCalls {
public:
  static constexpr std::size_t wholeAtOnce = static_cast<std::size_t>(-1);

  explicit MemoryCalls(std::string_view stream, std::size_t arrival = wholeAtOnce) : rest_(stream), arrival_(arrival) {}

  // Has a reader of this type read from the stream, and answers with what it left there.
  template <typename Reader, typename Reading>
  static std::string feed(std::string_view stream, std::size_t arrival, const Reading& reading) {
    MemoryCalls calls(stream, arrival);
    {
      Socket socket(::open("/dev/null", O_RDWR | O_CLOEXEC), calls);
      Reader reader(socket);
      reading(reader);
    }
    return std::string(calls.rest_);
  }

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
