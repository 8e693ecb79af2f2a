#include "tests/support/ScriptedServer.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace tarn::test {

struct ScriptedServer::Connection {
  explicit Connection(int descriptor) : peer(descriptor) {}

  Peer peer;
  std::thread thread;
};

ScriptedServer::Peer::~Peer() {
  close();
}

std::vector<std::string> ScriptedServer::Peer::readRequest() {
  const std::string head = readLine();
  if (!head.starts_with('*')) return {};
  std::vector<std::string> words;
  const long count = std::atol(head.c_str() + 1);
  for (long i = 0; i < count; ++i) {
    const std::string length = readLine();
    if (!length.starts_with('$')) return {};
    const auto size = static_cast<std::size_t>(std::atol(length.c_str() + 1));
    std::string word = readExactly(size + 2);
    if (word.size() != size + 2) return {};
    word.resize(size);
    words.push_back(std::move(word));
  }
  return words;
}

void ScriptedServer::Peer::send(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

void ScriptedServer::Peer::close() {
  if (descriptor_ < 0) return;
  // Closing over unread bytes would reset the connection, and the client might lose what was sent last.
  ::shutdown(descriptor_, SHUT_WR);
  while (receiveMore(MSG_DONTWAIT)) {
  }
  const std::lock_guard lock(mutex_);
  ::close(std::exchange(descriptor_, -1));
}

std::string ScriptedServer::Peer::readLine() {
  for (;;) {
    const std::size_t end = received_.find("\r\n", consumed_);
    if (end != std::string::npos) {
      std::string line = received_.substr(consumed_, end - consumed_);
      consumed_ = end + 2;
      return line;
    }
    if (!receiveMore(0)) return {};
  }
}

std::string ScriptedServer::Peer::readExactly(std::size_t size) {
  while (received_.size() < consumed_ + size) {
    if (!receiveMore(0)) return {};
  }
  return received_.substr(std::exchange(consumed_, consumed_ + size), size);
}

bool ScriptedServer::Peer::receiveMore(int flags) {
  std::array<char, 65536> part;
  ssize_t size = 0;
  do {
    size = ::recv(descriptor_, part.data(), part.size(), flags);
  } while (size < 0 && errno == EINTR);
  if (size <= 0) return false;
  const std::lock_guard lock(mutex_);
  received_.append(part.data(), static_cast<std::size_t>(size));
  return true;
}

void ScriptedServer::Peer::shutDown() {
  const std::lock_guard lock(mutex_);
  if (descriptor_ >= 0) ::shutdown(descriptor_, SHUT_RDWR);
}

std::string ScriptedServer::Peer::copyOfReceived() const {
  const std::lock_guard lock(mutex_);
  return received_;
}

ScriptedServer::ScriptedServer(Script script) : script_(std::move(script)) {
  if (::listen(port_.descriptor(), SOMAXCONN) != 0) throw std::runtime_error("Can't listen on 127.0.0.1");
  acceptor_ = std::thread([this] { acceptAll(); });
}

ScriptedServer::~ScriptedServer() {
  ::shutdown(port_.descriptor(), SHUT_RDWR);
  acceptor_.join();
  for (const auto& connection : accepted_)
    connection->peer.shutDown();
  for (const auto& connection : accepted_)
    connection->thread.join();
}

std::vector<std::string> ScriptedServer::received() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> all;
  for (const auto& connection : accepted_)
    all.push_back(connection->peer.copyOfReceived());
  return all;
}

void ScriptedServer::acceptAll() {
  for (;;) {
    const int descriptor = ::accept4(port_.descriptor(), nullptr, nullptr, SOCK_CLOEXEC);
    if (descriptor < 0 && (errno == EINTR || errno == ECONNABORTED)) continue;
    if (descriptor < 0) return;
    // What a script sends leaves at once, byte by byte where it likes.
    const int yes = 1;
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);

    const std::lock_guard lock(mutex_);
    accepted_.push_back(std::make_unique<Connection>(descriptor));
    Connection& connection = *accepted_.back();
    connection.thread = std::thread([this, &connection, number = connections_++] {
      script_(connection.peer, number);
      connection.peer.close();
    });
  }
}

}  // namespace tarn::test
