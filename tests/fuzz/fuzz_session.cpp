// Drives one connection as a tab does, over system calls that the input answers. Its first line says what is done, a
// letter or digit each. The second says how the calls answer, in turn: a digit allows as many bytes, a letter of
// `failures` is that failure, all else, and what comes behind the line, succeeds. The rest is what the peer sends.

#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/Utf8.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/wire/MemoryCalls.h"
#include "wire/ServerItem.h"
#include "wire/command/KeyWriting.h"
#include "wire/socket/TcpConnect.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>

namespace {

using namespace tarn;

std::string_view takeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(text.size(), line.size() + 1));
  return line;
}

class InputCalls final : public test::MemoryCalls {
public:
  InputCalls(std::string_view answers, std::string_view stream) : MemoryCalls(stream), answers_(answers) {}

  int numericName(const sockaddr*, socklen_t, std::string&, std::string&) override { return answer(); }
  int socket(int, int, int) override { return answer() == 0 ? ::open("/dev/null", O_RDWR | O_CLOEXEC) : -1; }
  int getFlags(int) override { return answer(); }
  int setFlags(int, int) override { return answer(); }
  int connect(int, const sockaddr*, socklen_t) override { return answer(); }
  int poll(pollfd*, int) override { return static_cast<int>(amount(1)); }
  int setOption(int, int, int, const void*, socklen_t) override { return answer(); }
  ssize_t send(int, const void*, std::size_t count, int) override { return amount(count); }
  ssize_t receive(int descriptor, void* bytes, std::size_t count, int flags) override {
    const ssize_t allowed = amount(count);
    if (allowed <= 0) return allowed;
    return MemoryCalls::receive(descriptor, bytes, static_cast<std::size_t>(allowed), flags);
  }

private:
  // -1 with its error, or as many as the next answer allows.
  ssize_t amount(std::size_t most) {
    static const std::map<char, int> failures{{'a', EAGAIN}, {'h', EHOSTUNREACH}, {'i', EINTR},
                                              {'m', EMFILE}, {'p', EINPROGRESS},  {'r', ECONNRESET}};
    const char kind = answers_.empty() ? ' ' : answers_.front();
    answers_.remove_prefix(answers_.empty() ? 0 : 1);
    if (kind >= '0' && kind <= '9') return static_cast<ssize_t>(std::min(most, static_cast<std::size_t>(kind - '0')));
    const auto failure = failures.find(kind);
    if (failure == failures.end()) return static_cast<ssize_t>(most);
    errno = failure->second;
    return -1;
  }

  int answer() { return amount(0) < 0 ? -1 : 0; }

  std::string_view answers_;
};

void perform(char step, ServerItem& server) {
  static constexpr const char* lines[] = {"get k", "multi", "exec", "discard", "select 2", "reset", "subscribe k"};
  const Bytes key("k");
  const std::vector<Bytes> rows{key, key};
  KeyWriting writing(key, 9);
  // clang-format off
  switch (step) {
    case 'd': server.loadDatabases(); break;
    case 'i': server.infoFromServerMain(); break;
    case 's': require(server.scanKeys(key, 3, false).size() <= 3); break;
    case 'x': server.selectDb(2); break;
    case 't': server.keyType(key); server.keyTtl(key); break;
    case 'g': server.getValue(key); break;
    case 'l': server.lrangeAll(key); break;
    case 'z': server.zrangeAll(key); break;
    case 'm': server.sscanAll(key); break;
    case 'h': server.hscanAll(key); break;
    case 'D': server.deleteKey(key); break;
    case 'G': writing.setString(key); server.write(writing); break;
    case 'L': writing.moveFrom(key); writing.setList(rows); server.write(writing); break;
    case '!': server.closeConnection(); break;
    default: require(isValidUtf8(server.executeConsoleCommand(lines[static_cast<unsigned char>(step) % std::size(lines)])));
  }
  // clang-format on
}

int lowestFreeDescriptor() {
  const int descriptor = ::dup(STDIN_FILENO);
  ::close(descriptor);
  return descriptor;
}

}  // namespace

// In place of the system's, so that no name is asked for on the network: each has two addresses.
extern "C" int getaddrinfo(const char* host, const char*, const addrinfo*, addrinfo** list) {
  static sockaddr address{};
  static addrinfo second{0, AF_INET, SOCK_STREAM, 0, sizeof address, &address, nullptr, nullptr};
  static addrinfo first{0, AF_INET, SOCK_STREAM, 0, sizeof address, &address, nullptr, &second};
  *list = &first;
  return *host == '?' ? EAI_NONAME : 0;
}

extern "C" void freeaddrinfo(addrinfo*) noexcept {}

void tarn::fuzz(std::string_view input) {
  const std::string_view steps = takeLine(input);
  const std::string_view answers = takeLine(input);
  InputCalls calls(answers, input);
  const int descriptorBefore = lowestFreeDescriptor();
  auto server = std::make_shared<ServerItem>(ServerItem::Life::favourite, tcpOpener(calls));
  server->setServerIp("127.0.0.1");
  for (const char step : steps) {
    if (!server->isAlive()) server->connectToServer();
    perform(step, *server);
    // A step may have put more into the queues.
    server->operationQueue().performAsBarrier([] {});
    NSOperationQueue::mainQueue().drain();
  }
  server->closeConnection();
  require(server->connectionStatus() == ConnectionStatus::notConnected && server->dbs()->empty());
  server.reset();
  NSOperationQueue::mainQueue().drain();
  require(lowestFreeDescriptor() == descriptorBefore);
}
