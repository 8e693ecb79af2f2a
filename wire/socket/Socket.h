#pragma once

#include "wire/socket/SocketCalls.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <string_view>

namespace tarn {

// One server's TCP socket: owns the descriptor, and closes it when the last call on it has returned. Held by
// std::shared_ptr: by its connection, and by each call that works on it.
//
// Any thread may call shutDown() and wasShutDown(); all else belongs to the thread that holds the connection's lock.
class Socket final {
public:
  enum class Connection { connected, inProgress, hostUnreachable, timedOut, failed };

  // How many bytes peek() looks at, at most.
  static constexpr std::size_t windowSize = 128 * 1024;

  // Nothing if the system gives no descriptor; errno tells why.
  static std::shared_ptr<Socket> create(int family, SocketCalls& calls);

  Socket(int descriptor, SocketCalls& calls);
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;
  ~Socket();

  // False, and a line on standard error, if the descriptor's flags can't be read or set.
  bool setBlocking(bool blocking);

  // Starts to connect, without waiting on a socket that doesn't block.
  Connection startConnect(const sockaddr* address, socklen_t length);
  // Waits up to 5 seconds for the connect in progress to end.
  Connection finishConnect(const sockaddr* address, socklen_t length);

  // Probes an idle peer after 15 seconds, then 3 times every 5 seconds. Failures only go to the log.
  void setKeepAlive();
  // How long one send or receive waits for the peer. Failures only go to the log.
  void setSocketTimeout(long seconds, long microseconds);

  // True while the peer hasn't closed: asks without waiting and takes nothing from the stream.
  bool isAlive();

  // Sends all of `request`, continuing short sends. False if the connection was lost on the way.
  bool sendAll(std::string_view request);

  // What has arrived, up to a window's size, left in the stream; waits for the first byte. Empty if the connection was
  // lost. Valid until the next call.
  std::string_view peek();

  // Drops the next `count` bytes of the stream, waiting for those that haven't arrived. False if the connection was
  // lost.
  bool takeOff(std::size_t count);

  // Waits for bytes and puts up to `count` of them at `destination`. Answers how many; 0 if the connection was lost.
  std::size_t receive(char* destination, std::size_t count);

  // Ends the connection: a call that waits on it fails, and so does every later one.
  void shutDown();
  bool wasShutDown() const { return shutDown_; }

private:
  char* window();
  std::size_t receiveWith(int flags, char* destination, std::size_t count);
  void setOption(int level, int option, const void* value, socklen_t length, const char* failure);

  const int descriptor_;
  SocketCalls& calls_;
  std::atomic<bool> shutDown_ = false;
  std::unique_ptr<char[]> window_;
};

}  // namespace tarn
