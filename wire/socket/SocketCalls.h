#pragma once

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/types.h>

#include <cstddef>
#include <string>

namespace tarn {

// The system calls between a connection and its peer. They stand behind one class so that a test can make one of them
// fail in a way that no peer can provoke, or feed replies from memory; the program uses the system's own. Each answers
// and sets errno as the call that it is named after. Any thread.
class SocketCalls {
public:
  virtual ~SocketCalls() = default;

  // getnameinfo with NI_NUMERICHOST | NI_NUMERICSERV: 0 and both texts, or its error.
  virtual int numericName(const sockaddr* address, socklen_t length, std::string& host, std::string& port);
  virtual int socket(int family, int type, int protocol);
  virtual int getFlags(int descriptor);
  virtual int setFlags(int descriptor, int flags);
  virtual int connect(int descriptor, const sockaddr* address, socklen_t length);
  virtual int poll(pollfd* descriptor, int milliseconds);
  virtual int setOption(int descriptor, int level, int option, const void* value, socklen_t length);
  virtual ssize_t send(int descriptor, const void* bytes, std::size_t count, int flags);
  virtual ssize_t receive(int descriptor, void* bytes, std::size_t count, int flags);
  // How many bytes wait to be sent, or for the peer to say that it has them; 0 where the system doesn't say.
  virtual std::size_t sendQueue(int descriptor);

  static SocketCalls& system();
};

}  // namespace tarn
