#include "wire/socket/Socket.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <utility>

namespace tarn {

std::shared_ptr<Socket> Socket::create(int family, SocketCalls& calls) {
  const int descriptor = calls.socket(family, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP);
  return descriptor == -1 ? nullptr : std::make_shared<Socket>(descriptor, calls);
}

Socket::Socket(int descriptor, SocketCalls& calls) : descriptor_(descriptor), calls_(calls) {}

Socket::~Socket() {
  // What hasn't left yet mustn't reach the server behind what a later connection sends.
  if (calls_.sendQueue(descriptor_) > 0) {
    const linger dropsTheRest{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &dropsTheRest, sizeof dropsTheRest);
  }
  ::close(descriptor_);
}

bool Socket::setBlocking(bool blocking) {
  const int flags = calls_.getFlags(descriptor_);
  if (flags == -1) {
    std::perror("flags get error");
    return false;
  }
  if (calls_.setFlags(descriptor_, blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK) == -1) {
    std::perror("flags set error");
    return false;
  }
  return true;
}

Socket::ConnectResult Socket::startConnect(const sockaddr* address, socklen_t length) {
  if (calls_.connect(descriptor_, address, length) == 0) return ConnectResult::connected;
  if (errno == EHOSTUNREACH) return ConnectResult::hostUnreachable;
  return errno == EINPROGRESS ? ConnectResult::inProgress : ConnectResult::failed;
}

Socket::ConnectResult Socket::finishConnect(const sockaddr* address, socklen_t length) {
  // Shutting down before there was a connect to end has ended nothing, and would not wake the wait.
  if (shutDown_) return ConnectResult::failed;
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::chrono::milliseconds(5000);
  pollfd waiting{descriptor_, POLLOUT, 0};
  int ready = -1;
  do {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    ready = calls_.poll(&waiting, left > 0 ? static_cast<int>(left) : 0);
  } while (ready == -1 && errno == EINTR);

  if (ready == 0) {
    errno = ETIMEDOUT;
    return ConnectResult::timedOut;
  }
  if (ready == -1 || shutDown_) return ConnectResult::failed;
  // Asking again tells how the first try ended.
  if (calls_.connect(descriptor_, address, length) == 0 || errno == EISCONN) return ConnectResult::connected;
  return ConnectResult::failed;
}

void Socket::setOption(int level, int option, const void* value, socklen_t length, const char* failure) {
  if (calls_.setOption(descriptor_, level, option, value, length) == -1) std::perror(failure);
}

void Socket::setKeepAlive() {
  const auto set = [this](int level, int option, std::int64_t value, const char* failure) {
    setOption(level, option, &value, sizeof value, failure);
  };
  set(SOL_SOCKET, SO_KEEPALIVE, 1, "setsockopt SO_KEEPALIVE error");
  set(IPPROTO_TCP, TCP_KEEPIDLE, 15, "setsockopt TCP_KEEPIDLE error");
  set(IPPROTO_TCP, TCP_KEEPINTVL, 5, "setsockopt TCP_KEEPINTVL error");
  set(IPPROTO_TCP, TCP_KEEPCNT, 3, "setsockopt TCP_KEEPCNT error");
}

void Socket::setSocketTimeout(long seconds, long microseconds) {
  const timeval timeout{seconds, microseconds};
  setOption(SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout, "setsockopt SO_SNDTIMEO error");
  setOption(SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout, "setsockopt SO_RCVTIMEO error");
}

bool Socket::isAlive() {
  char byte = 0;
  const ssize_t count = calls_.receive(descriptor_, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
  return count > 0 || (count == -1 && (errno == EAGAIN || errno == EWOULDBLOCK));
}

bool Socket::sendAll(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = calls_.send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count == -1 && mayTryAgain()) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
    sent_ += static_cast<std::size_t>(count);
    queued_ = calls_.sendQueue(descriptor_);
  }
  return true;
}

// After a call that failed: it was interrupted, or waited in vain for a peer to which what was sent is still on its
// way, however slow the way is.
bool Socket::mayTryAgain() {
  if (errno == EINTR) return true;
  if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
  const std::size_t before = std::exchange(queued_, calls_.sendQueue(descriptor_));
  return queued_ < before;
}

ByteStream::Traffic Socket::traffic() const {
  const std::uint64_t sent = sent_;
  return {.sent = sent - std::min<std::uint64_t>(sent, calls_.sendQueue(descriptor_)), .received = received_};
}

char* Socket::window() {
  if (!window_) window_ = std::make_unique_for_overwrite<char[]>(windowSize);
  return window_.get();
}

std::size_t Socket::receiveWith(int flags, char* destination, std::size_t count) {
  ssize_t received = -1;
  do {
    received = calls_.receive(descriptor_, destination, count, flags);
  } while (received == -1 && mayTryAgain());
  if (received <= 0) return 0;
  if ((flags & MSG_PEEK) == 0) received_ += static_cast<std::size_t>(received);
  return static_cast<std::size_t>(received);
}

std::string_view Socket::peek() {
  return {window(), receiveWith(MSG_PEEK, window(), windowSize)};
}

bool Socket::takeOff(std::size_t count) {
  while (count > 0) {
    // With MSG_TRUNC, TCP drops the bytes and touches no buffer.
    const std::size_t taken = receiveWith(MSG_TRUNC, window(), std::min(count, windowSize));
    if (taken == 0) return false;
    count -= taken;
  }
  return true;
}

std::size_t Socket::receive(char* destination, std::size_t count) {
  return receiveWith(0, destination, count);
}

void Socket::shutDown() {
  shutDown_ = true;
  ::shutdown(descriptor_, SHUT_RDWR);
}

}  // namespace tarn
