// How a ServerItem opens, tests and closes its connection.

#include "platform/foundation/Log.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/ServerItem.h"
#include "wire/cluster/NodeAddress.h"
#include "wire/socket/Socket.h"

#include <netdb.h>

#include <cerrno>
#include <cstdio>
#include <memory>

namespace tarn {

namespace {

constexpr double refreshInterval = 3.0;
constexpr int highestPort = 65535;

struct FreeAddresses {
  void operator()(addrinfo* list) const { ::freeaddrinfo(list); }
};
using AddressList = std::unique_ptr<addrinfo, FreeAddresses>;

// Nothing if the host or the port can't be resolved.
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

}  // namespace

ServerItem::Outcome ServerItem::connectToServer(Closings began, int database) {
  const std::string password = auth();
  Outcome outcome{.ok = true, .message = {}, .closed = false};
  {
    const std::lock_guard lock(commandLocker_);
    if (auto failure = openConnection(began)) return *std::move(failure);
    if (!password.empty()) {
      const std::string_view word = password;
      ReplyResult reply = requestAndReply(RedisCommand::auth, {&word, 1}, began);
      outcome = {.ok = reply.ok, .message = std::move(reply.message), .closed = false};
    }
    if (outcome.ok && database > 0) selectLocked(database);
  }
  postLivenessTimer(began);
  if (wasClosedSince(began)) {
    outcome = {
        .ok = false, .message = withConnectionName(localizedString("Can not connect to Server({0}).")), .closed = true};
  }
  return outcome;
}

// Nothing when the connection stands.
std::optional<ServerItem::Outcome> ServerItem::openConnection(Closings began) {
  const AddressList addresses = resolve(serverIp(), serverPort());
  if (!addresses) {
    return failedConnect(began, ConnectionStatus::notConnected, localizedString("Can not get IP address or Port."));
  }
  for (const addrinfo* address = addresses.get(); address != nullptr; address = address->ai_next) {
    std::string host;
    std::string port;
    if (calls_.numericName(address->ai_addr, address->ai_addrlen, host, port) != 0) {
      logLine("No IP address found");
      continue;
    }
    logLine("IP address:" + host + " port:" + port);
    return connectTo(*address, began);
  }
  return failedConnect(began, ConnectionStatus::disConnected,
                       withConnectionName(localizedString("Not Found IP address for server({0}).")));
}

std::optional<ServerItem::Outcome> ServerItem::connectTo(const addrinfo& address, Closings began) {
  const auto fail = [&](std::string message) {
    return failedConnect(began, ConnectionStatus::disConnected, std::move(message));
  };
  const auto socket = Socket::create(address.ai_family, calls_);
  if (!socket) {
    std::perror("Failure: creating socket");
    return fail(localizedString("Can not create socket."));
  }
  if (!keepSocket(socket, began)) return fail(withConnectionName(localizedString("Can not connect to Server({0}).")));
  if (!socket->setBlocking(false)) return fail(localizedString("Can not set socket options."));

  auto connection = socket->startConnect(address.ai_addr, address.ai_addrlen);
  if (connection == Socket::Connection::inProgress) {
    logLine("connecting");
    setStatusUnlessClosed(began, ConnectionStatus::connecting);
    connection = socket->finishConnect(address.ai_addr, address.ai_addrlen);
  }
  switch (connection) {
    case Socket::Connection::connected:
      return setUpConnected(*socket, began);
    case Socket::Connection::hostUnreachable: {
      std::perror("host can not reach");
      const std::string name = connectionName();
      return fail(replacingPlaceholder(localizedString("Can not reach Server({0})."), "{0}",
                                       name.empty() ? name : "(" + name + ")"));
    }
    case Socket::Connection::timedOut:
      std::perror("not connect");
      return fail(withConnectionName(localizedString("Connect Server({0}) timeout.")));
    case Socket::Connection::inProgress:
    case Socket::Connection::failed:
      break;
  }
  std::perror("not connect");
  return fail(withConnectionName(localizedString("Can not connect to Server({0}).")));
}

std::optional<ServerItem::Outcome> ServerItem::setUpConnected(Socket& socket, Closings began) {
  logLine("connected");
  if (!setStatusUnlessClosed(began, ConnectionStatus::connected)) {
    return failedConnect(began, std::nullopt, withConnectionName(localizedString("Can not connect to Server({0}).")));
  }
  if (!socket.setBlocking(true)) {
    return failedConnect(began, std::nullopt, localizedString("Can not set socket options."));
  }
  logLine("BLOCK setted");
  socket.setKeepAlive();
  socket.setSocketTimeout(5, 0);
  return std::nullopt;
}

// Without a status it stays as it is.
ServerItem::Outcome ServerItem::failedConnect(Closings began, std::optional<ConnectionStatus> status,
                                              std::string message) {
  dropSocket();
  const bool closed = status ? !setStatusUnlessClosed(began, *status) : wasClosedSince(began);
  return {.ok = false, .message = std::move(message), .closed = closed};
}

std::string ServerItem::withConnectionName(std::string message) const {
  return replacingPlaceholder(std::move(message), "{0}", connectionName());
}

void ServerItem::closeConnection() {
  operationQueue_.cancelAllOperations();
  std::shared_ptr<Socket> socket;
  std::shared_ptr<NSTimer> timer;
  auto dbs = std::make_shared<const Databases>();
  {
    const std::lock_guard lock(stateMutex_);
    ++closings_;
    socket.swap(socket_);
    connectionStatus_ = ConnectionStatus::notConnected;
    dbs_.swap(dbs);
    timer.swap(timer_);
  }
  if (socket) socket->shutDown();
  if (timer) timer->invalidate();
}

bool ServerItem::isAlive() {
  const std::lock_guard lock(commandLocker_);
  const auto socket = this->socket();
  return socket && socket->isAlive();
}

void ServerItem::postLivenessTimer(Closings began) {
  if (life_ == Life::transient) return;
  NSOperationQueue::mainQueue().addOperationWithBlock([weak = weak_from_this(), began] {
    const auto self = weak.lock();
    if (self && !self->wasClosedSince(began)) self->startLivenessTimer();
  });
}

void ServerItem::startLivenessTimer() {
  if (life_ == Life::transient) return;
  auto timer = NSTimer::scheduledTimerWithTimeInterval(refreshInterval, true, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->infoFromServerMain();
  });
  {
    const std::lock_guard lock(stateMutex_);
    timer.swap(timer_);
  }
  if (timer) timer->invalidate();
}

ServerItem::Closings ServerItem::closings() const {
  const std::lock_guard lock(stateMutex_);
  return closings_;
}

bool ServerItem::setStatusUnlessClosed(Closings began, ConnectionStatus status) {
  const std::lock_guard lock(stateMutex_);
  if (closings_ != began) return false;
  connectionStatus_ = status;
  return true;
}

std::shared_ptr<Socket> ServerItem::socket() const {
  const std::lock_guard lock(stateMutex_);
  return socket_;
}

// From here on closeConnection finds the socket and ends what waits on it. False if it came before.
bool ServerItem::keepSocket(std::shared_ptr<Socket> socket, Closings began) {
  const std::lock_guard lock(stateMutex_);
  if (closings_ != began) return false;
  socket_.swap(socket);
  currentDbIdx_ = 0;
  databaseAtMulti_.reset();
  moreAfterExec_ = false;
  return true;
}

void ServerItem::dropSocket() {
  std::shared_ptr<Socket> socket;
  const std::lock_guard lock(stateMutex_);
  socket.swap(socket_);
}

// The status follows, unless closeConnection came after `began`.
void ServerItem::loseConnection(std::optional<Closings> began) {
  std::shared_ptr<Socket> socket;
  const std::lock_guard lock(stateMutex_);
  socket.swap(socket_);
  if (!began || closings_ == *began) connectionStatus_ = ConnectionStatus::disConnected;
}

}  // namespace tarn
