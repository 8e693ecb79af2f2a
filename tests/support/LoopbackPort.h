#pragma once

namespace tarn::test {

// A TCP port of 127.0.0.1 that the system gives to nobody else while this lives: tests run side by side and must not
// meet on a port. A server that sets SO_REUSEADDR, as redis-server does, can listen on it; while none does, a connect
// is refused at once. Throws std::runtime_error if there is none.
class LoopbackPort final {
public:
  LoopbackPort();
  LoopbackPort(const LoopbackPort&) = delete;
  LoopbackPort& operator=(const LoopbackPort&) = delete;
  ~LoopbackPort();

  int number() const { return number_; }
  // The socket that holds the port, for a test that listens on it itself.
  int descriptor() const { return descriptor_; }

private:
  int descriptor_ = -1;
  int number_ = 0;
};

}  // namespace tarn::test
