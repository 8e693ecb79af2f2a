#include "tests/support/RespClient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>

namespace tarn::test {

std::string encodedRequest(const std::vector<std::string>& words) {
  std::string request = "*" + std::to_string(words.size()) + "\r\n";
  for (const std::string& word : words)
    request += "$" + std::to_string(word.size()) + "\r\n" + word + "\r\n";
  return request;
}

RespClient::RespClient(int port) : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const timeval patience{.tv_sec = 60, .tv_usec = 0};
  ::setsockopt(descriptor_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<in_port_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::connect(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    ::close(descriptor_);
    throw std::runtime_error("Nothing listens on port " + std::to_string(port));
  }
}

RespClient::~RespClient() {
  ::close(descriptor_);
}

std::string RespClient::command(const std::vector<std::string>& words) {
  sendAll(encodedRequest(words));
  return readReply();
}

void RespClient::pipeline(const std::vector<std::vector<std::string>>& requests) {
  std::string bytes;
  for (const auto& words : requests)
    bytes += encodedRequest(words);
  sendAll(bytes);
  for (std::size_t i = 0; i < requests.size(); ++i) {
    const std::string reply = readReply();
    if (reply.starts_with('-')) throw std::runtime_error(reply);
  }
}

void RespClient::sendAll(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) throw std::runtime_error("The server took no request");
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

std::string RespClient::readReply() {
  const std::size_t end = skipReply(0);
  std::string reply = received_.substr(0, end);
  received_.erase(0, end);
  return reply;
}

void RespClient::receiveUntil(std::size_t end) {
  std::array<char, 65536> part;
  while (received_.size() < end) {
    const ssize_t size = ::recv(descriptor_, part.data(), part.size(), 0);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) throw std::runtime_error("The server's reply broke off");
    received_.append(part.data(), static_cast<std::size_t>(size));
  }
}

std::size_t RespClient::skipLine(std::size_t position) {
  for (;;) {
    const std::size_t end = received_.find("\r\n", position);
    if (end != std::string::npos) return end + 2;
    receiveUntil(received_.size() + 1);
  }
}

std::size_t RespClient::skipReply(std::size_t position) {
  const std::size_t afterLine = skipLine(position);
  const char type = received_[position];
  if (type != '$' && type != '*') return afterLine;

  const long count = std::stol(received_.substr(position + 1, afterLine - position - 3));
  if (type == '$') {
    const std::size_t end = count < 0 ? afterLine : afterLine + static_cast<std::size_t>(count) + 2;
    receiveUntil(end);
    return end;
  }
  std::size_t end = afterLine;
  for (long i = 0; i < count; ++i)
    end = skipReply(end);
  return end;
}

}  // namespace tarn::test
