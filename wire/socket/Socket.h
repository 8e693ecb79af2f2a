#pragma once

#include "wire/socket/SocketCalls.h"
#include "wire/stream/ByteStream.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace tarn {

// One server's TCP socket: owns the descriptor, and closes it when the last call on it has returned.
class Socket final : public ByteStream {
public:
  enum class ConnectResult { connected, inProgress, hostUnreachable, timedOut, failed };

  // Nothing if the system gives no descriptor; errno tells why.
  static std::shared_ptr<Socket> create(int family, SocketCalls& calls);

  Socket(int descriptor, SocketCalls& calls);
  ~Socket() override;

  // False, and a line on standard error, if the descriptor's flags can't be read or set.
  bool setBlocking(bool blocking);

  // Starts to connect, without waiting on a socket that doesn't block.
  ConnectResult startConnect(const sockaddr* address, socklen_t length);
  // Waits up to 5 seconds for the connect in progress to end.
  ConnectResult finishConnect(const sockaddr* address, socklen_t length);

  // Probes an idle peer after 15 seconds, then 3 times every 5 seconds. Failures only go to the log.
  void setKeepAlive();
  // How long one send or receive waits for the peer, anew while what was sent before still leaves. Failures only go to
  // the log.
  void setSocketTimeout(long seconds, long microseconds);

  bool isAlive() override;
  bool sendAll(std::string_view bytes) override;
  std::string_view peek() override;
  bool takeOff(std::size_t count) override;
  std::size_t receive(char* destination, std::size_t count) override;
  void shutDown() override;
  bool wasShutDown() const override { return shutDown_; }
  Traffic traffic() const override;

private:
  char* window();
  std::size_t receiveWith(int flags, char* destination, std::size_t count);
  bool mayTryAgain();
  void setOption(int level, int option, const void* value, socklen_t length, const char* failure);

  const int descriptor_;
  SocketCalls& calls_;
  std::atomic<bool> shutDown_ = false;
  std::unique_ptr<char[]> window_;
  // What waited to be sent at the last look.
  std::size_t queued_ = 0;
  std::atomic<std::uint64_t> sent_ = 0;
  std::atomic<std::uint64_t> received_ = 0;
};

}  // namespace tarn
