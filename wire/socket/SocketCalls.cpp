#include "wire/socket/SocketCalls.h"

#include "platform/foundation/Immortal.h"

#include <fcntl.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>

#include <array>

namespace tarn {

int SocketCalls::numericName(const sockaddr* address, socklen_t length, std::string& host, std::string& port) {
  std::array<char, 1025> hostText{};
  std::array<char, 32> portText{};
  const int result = ::getnameinfo(address, length, hostText.data(), hostText.size(), portText.data(), portText.size(),
                                   NI_NUMERICHOST | NI_NUMERICSERV);
  if (result == 0) {
    host = hostText.data();
    port = portText.data();
  }
  return result;
}

int SocketCalls::socket(int family, int type, int protocol) {
  return ::socket(family, type, protocol);
}

int SocketCalls::getFlags(int descriptor) {
  return ::fcntl(descriptor, F_GETFL);
}

int SocketCalls::setFlags(int descriptor, int flags) {
  return ::fcntl(descriptor, F_SETFL, flags);
}

int SocketCalls::connect(int descriptor, const sockaddr* address, socklen_t length) {
  return ::connect(descriptor, address, length);
}

int SocketCalls::poll(pollfd* descriptor, int milliseconds) {
  return ::poll(descriptor, 1, milliseconds);
}

int SocketCalls::setOption(int descriptor, int level, int option, const void* value, socklen_t length) {
  return ::setsockopt(descriptor, level, option, value, length);
}

ssize_t SocketCalls::send(int descriptor, const void* bytes, std::size_t count, int flags) {
  return ::send(descriptor, bytes, count, flags);
}

ssize_t SocketCalls::receive(int descriptor, void* bytes, std::size_t count, int flags) {
  return ::recv(descriptor, bytes, count, flags);
}

std::size_t SocketCalls::sendQueue(int descriptor) {
  int bytes = 0;
  return ::ioctl(descriptor, SIOCOUTQ, &bytes) == 0 && bytes > 0 ? static_cast<std::size_t>(bytes) : 0;
}

SocketCalls& SocketCalls::system() {
  return immortal<SocketCalls>();
}

}  // namespace tarn
