// What the wire costs over the bare exchange: each piece of work is told as a ratio to the same requests sent, and the
// same bytes received into a buffer of final size, on a plain socket, with nothing parsed.

#include "benchmarks/BenchmarkReport.h"
#include "tests/support/RedisServer.h"
#include "wire/ServerItem.h"
#include "wire/socket/TcpConnect.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace tarn::bench {
namespace {

constexpr int keyCount = 1'000'000;
constexpr int itemCount = 1'000'000;
constexpr int valueSize = 100'000'000;

void require(bool held, const char* what) {
  if (held) return;
  std::fprintf(stderr, "The benchmark failed: %s\n", what);
  std::exit(1);
}

struct Exchange {
  std::string request;
  std::size_t replySize = 0;
};

// Keeps what a connection sends, and the size of what it takes.
class RecordingCalls final : public SocketCalls {
public:
  ssize_t send(int descriptor, const void* bytes, std::size_t count, int flags) override {
    const ssize_t sent = SocketCalls::send(descriptor, bytes, count, flags);
    if (sent > 0)
      exchanges.push_back({std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(sent)), 0});
    return sent;
  }

  ssize_t receive(int descriptor, void* bytes, std::size_t count, int flags) override {
    const ssize_t received = SocketCalls::receive(descriptor, bytes, count, flags);
    if (received > 0 && (flags & MSG_PEEK) == 0) exchanges.back().replySize += static_cast<std::size_t>(received);
    return received;
  }

  std::vector<Exchange> exchanges;
};

// The floor.
class PlainSocket final {
public:
  explicit PlainSocket(int port) : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    require(::connect(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "plain connect");
  }
  PlainSocket(const PlainSocket&) = delete;
  PlainSocket& operator=(const PlainSocket&) = delete;
  ~PlainSocket() { ::close(descriptor_); }

  void replay(const std::vector<Exchange>& exchanges) {
    std::size_t size = 0;
    for (const Exchange& exchange : exchanges)
      size += exchange.replySize;
    const auto buffer = std::make_unique_for_overwrite<char[]>(size);
    char* next = buffer.get();
    for (const Exchange& exchange : exchanges) {
      const auto sent = ::send(descriptor_, exchange.request.data(), exchange.request.size(), MSG_NOSIGNAL);
      require(sent == static_cast<ssize_t>(exchange.request.size()), "plain send");
      for (std::size_t left = exchange.replySize; left > 0;) {
        const ssize_t received = ::recv(descriptor_, next, left, 0);
        require(received > 0, "plain receive");
        next += received;
        left -= static_cast<std::size_t>(received);
      }
    }
  }

private:
  int descriptor_;
};

// The middle one; of an even number the lower of the two.
double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>((values.size() - 1) / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double microseconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

std::shared_ptr<ServerItem> connected(int port, int database, SocketCalls& calls) {
  auto server = std::make_shared<ServerItem>(ServerItem::Life::transient, tcpOpener(calls));
  server->setServerIp("127.0.0.1");
  server->setServerPort(port);
  require(server->connectToServer().ok && server->selectDb(database), "connect");
  return server;
}

struct Work {
  std::string name;
  int database;
  // How often the work is done for one timing, so that a short one can be told from the clock's noise.
  int repeats;
  int pairs;
  std::string unit;
  double unitInMicroseconds;
  double limit;
  std::function<void(ServerItem&)> run;
};

// Times the work and its floor by turns, so that what else the machine does meets both.
BenchmarkRow measure(const Work& work, int port) {
  RecordingCalls recording;
  const auto recorded = connected(port, work.database, recording);
  recording.exchanges.clear();
  for (int i = 0; i < work.repeats; ++i)
    work.run(*recorded);

  const auto server = connected(port, work.database, SocketCalls::system());
  PlainSocket plain(port);
  const std::string database = std::to_string(work.database);
  plain.replay({{"*2\r\n$6\r\nselect\r\n$1\r\n" + database + "\r\n", 5}});

  std::vector<double> values;
  std::vector<double> floors;
  std::vector<double> ratios;
  const auto timeOurs = [&] {
    values.push_back(microseconds([&] {
      for (int i = 0; i < work.repeats; ++i)
        work.run(*server);
    }));
  };
  const auto timeFloor = [&] { floors.push_back(microseconds([&] { plain.replay(recording.exchanges); })); };
  for (int pair = 0; pair < work.pairs + 1; ++pair) {
    pair % 2 == 0 ? timeOurs() : timeFloor();
    pair % 2 == 0 ? timeFloor() : timeOurs();
    // The first pair only warms up.
    if (pair == 0) {
      values.clear();
      floors.clear();
    } else {
      ratios.push_back(values.back() / floors.back());
    }
  }
  const double scale = work.unitInMicroseconds * work.repeats;
  return {work.name, median(values) / scale, work.unit, median(floors) / scale, median(ratios), work.limit};
}

void fill(const test::RedisServer& server) {
  server.command({"DEBUG", "POPULATE", std::to_string(keyCount), "benchmark:key"});
  const std::string push =
      "for i = 0, " + std::to_string(itemCount - 1) + " do redis.call('rpush', 'list', string.format('%020d', i)) end";
  server.command({"EVAL", push, "0"}, 1);
  server.command({"EVAL", "redis.call('set', 'value', string.rep('x', " + std::to_string(valueSize) + "))", "0"}, 1);
}

int run(int argc, char** argv) {
  test::RedisServer redis({"--enable-debug-command", "yes", "--save", ""});
  fill(redis);

  const std::vector<Work> works{
      {"typed command round trip (keyType)", 1, 1000, 61, "us", 1, 1.05,
       [](ServerItem& server) { require(server.keyType("list"_bytes).second == "list", "keyType"); }},
      {"scanKeys of 1,000,000 keys", 0, 1, 21, "ms", 1000, 1.2,
       [](ServerItem& server) {
         const auto keys = server.scanKeys("*"_bytes, std::numeric_limits<std::int64_t>::max(), false);
         require(keys.size() >= keyCount, "scanKeys");
       }},
      {"lrangeAll of 1,000,000 items of 20 bytes", 1, 1, 31, "ms", 1000, 1.45,
       [](ServerItem& server) { require(server.lrangeAll("list"_bytes)->size() == itemCount, "lrangeAll"); }},
      {"console line LRANGE of 1,000,000 items of 20 bytes", 1, 1, 21, "ms", 1000, 3,
       [](ServerItem& server) {
         require(server.executeConsoleCommand("lrange list 0 -1").size() > std::size_t{20} * itemCount, "lrange");
       }},
      {"getValue of 100 MB", 1, 1, 31, "ms", 1000, 1.2,
       [](ServerItem& server) { require(server.getValue("value"_bytes).second.size() == valueSize, "getValue"); }},
  };
  BenchmarkReport report(argc, argv);
  for (const Work& work : works)
    report.add(measure(work, redis.port()));
  return report.finish();
}

}  // namespace
}  // namespace tarn::bench

int main(int argc, char** argv) {
  return tarn::bench::run(argc, argv);
}
