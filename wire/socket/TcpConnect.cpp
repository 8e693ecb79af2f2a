#include "wire/socket/TcpConnect.h"

#include "platform/foundation/Log.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/socket/Socket.h"

#include <netdb.h>

#include <cstdio>
#include <utility>

namespace tarn {

namespace {

constexpr int highestPort = 65535;

struct FreeAddresses {
  void operator()(addrinfo* list) const { ::freeaddrinfo(list); }
};
using AddressList = std::unique_ptr<addrinfo, FreeAddresses>;

// Null if the host or the port can't be resolved.
AddressList resolve(const std::string& host, int port) {
  // The resolver would take a number over the highest for another port.
  if (port > highestPort) return nullptr;
  addrinfo hints{};
  hints.ai_flags = AI_PASSIVE;
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* list = nullptr;
  return AddressList(::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &list) == 0 ? list : nullptr);
}

// One connect, from the address to the tuned socket.
class TcpConnect final {
public:
  using Failure = std::optional<ConnectFailure>;

  TcpConnect(const ServerAddress& server, SocketCalls& calls, const ConnectSteps& steps)
      : server_(server), calls_(calls), steps_(steps) {}

  Failure run() const;

private:
  Failure connectTo(const addrinfo& address) const;
  Failure setUp(Socket& socket) const;
  std::string withName(std::string message) const {
    return replacingPlaceholder(std::move(message), "{0}", server_.name);
  }
  static Failure disConnected(std::string message) {
    return ConnectFailure{std::move(message), ConnectionStatus::disConnected};
  }

  const ServerAddress& server_;
  SocketCalls& calls_;
  const ConnectSteps& steps_;
};

TcpConnect::Failure TcpConnect::run() const {
  const AddressList addresses = resolve(server_.host, server_.port);
  if (!addresses) {
    return ConnectFailure{localizedString("Can not get IP address or Port."), ConnectionStatus::notConnected};
  }
  for (const addrinfo* address = addresses.get(); address != nullptr; address = address->ai_next) {
    std::string host;
    std::string port;
    if (calls_.numericName(address->ai_addr, address->ai_addrlen, host, port) != 0) {
      logLine("No IP address found");
      continue;
    }
    logLine("IP address:" + host.append(" port:").append(port));
    return connectTo(*address);
  }
  return disConnected(withName(localizedString("Not Found IP address for server({0}).")));
}

TcpConnect::Failure TcpConnect::connectTo(const addrinfo& address) const {
  const auto socket = Socket::create(address.ai_family, calls_);
  if (!socket) {
    std::perror("Failure: creating socket");
    return disConnected(localizedString("Can not create socket."));
  }
  if (!steps_.opened(socket)) return disConnected(withName(localizedString("Can not connect to Server({0}).")));
  if (!socket->setBlocking(false)) return disConnected(localizedString("Can not set socket options."));

  auto result = socket->startConnect(address.ai_addr, address.ai_addrlen);
  if (result == Socket::ConnectResult::inProgress) {
    logLine("connecting");
    steps_.statusChanged(ConnectionStatus::connecting);
    result = socket->finishConnect(address.ai_addr, address.ai_addrlen);
  }
  switch (result) {
    case Socket::ConnectResult::connected:
      return setUp(*socket);
    case Socket::ConnectResult::hostUnreachable: {
      std::perror("host can not reach");
      const std::string name = server_.name.empty() ? "" : "(" + server_.name + ")";
      return disConnected(replacingPlaceholder(localizedString("Can not reach Server({0})."), "{0}", name));
    }
    case Socket::ConnectResult::timedOut:
      std::perror("not connect");
      return disConnected(withName(localizedString("Connect Server({0}) timeout.")));
    case Socket::ConnectResult::inProgress:
    case Socket::ConnectResult::failed:
      break;
  }
  std::perror("not connect");
  return disConnected(withName(localizedString("Can not connect to Server({0}).")));
}

TcpConnect::Failure TcpConnect::setUp(Socket& socket) const {
  logLine("connected");
  if (!steps_.statusChanged(ConnectionStatus::connected)) {
    return ConnectFailure{withName(localizedString("Can not connect to Server({0}).")), std::nullopt};
  }
  if (!socket.setBlocking(true)) return ConnectFailure{localizedString("Can not set socket options."), std::nullopt};
  logLine("BLOCK setted");
  socket.setKeepAlive();
  socket.setSocketTimeout(5, 0);
  return std::nullopt;
}

}  // namespace

StreamOpener tcpOpener(SocketCalls& calls) {
  return [&calls](const ServerAddress& server, const ConnectSteps& steps) {
    return TcpConnect(server, calls, steps).run();
  };
}

}  // namespace tarn
