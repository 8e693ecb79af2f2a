#include "benchmarks/workbench_benchmark_save.h"

#include "benchmarks/workbench_benchmark_tab.h"
#include "tests/support/AlertRecorder.h"
#include "tests/support/widgets/Hand.h"
#include "wire/request/RequestEncoder.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::bench {

namespace {

constexpr int rounds = 5;

// The bare exchange: requests of which each has a reply of one line.
class PlainExchange final {
public:
  explicit PlainExchange(int port) : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
      throw std::runtime_error("plain connect");
    }
  }
  PlainExchange(const PlainExchange&) = delete;
  PlainExchange& operator=(const PlainExchange&) = delete;
  ~PlainExchange() { ::close(descriptor_); }

  void run(const Bytes& request) const {
    for (std::size_t at = 0; at < request.size();) {
      const ssize_t sent = ::send(descriptor_, request.data() + at, request.size() - at, MSG_NOSIGNAL);
      if (sent <= 0) throw std::runtime_error("plain send");
      at += static_cast<std::size_t>(sent);
    }
    for (char last = 0; last != '\n';) {
      char reply[64];
      const ssize_t received = ::recv(descriptor_, reply, sizeof reply, 0);
      if (received <= 0 || reply[0] == '-') throw std::runtime_error("plain reply");
      last = reply[received - 1];
    }
  }

private:
  int descriptor_;
};

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + rounds / 2, values.end());
  return values[rounds / 2];
}

std::vector<Bytes> rowsOf(int port, const char* key) {
  ServerItem server(ServerItem::Life::transient);
  server.setServerIp("127.0.0.1");
  server.setServerPort(port);
  if (!server.connectToServer().ok) throw std::runtime_error("no connection");
  return server.lrangeAll(Bytes(key)).value();
}

}  // namespace

SaveTimes timesOfSaving(int port, const char* key) {
  const std::vector<Bytes> rows = rowsOf(port, key);
  std::vector<std::string_view> words{key};
  for (const Bytes& row : rows)
    words.push_back(row.view());
  const Bytes write = encodeRequest(RedisCommand::rpush, words);
  const Bytes del = encodeRequest(RedisCommand::del, {words.front()});
  const PlainExchange plain(port);

  test::AlertRecorder alerts;
  BenchmarkTab tab(port);
  tab.showValue(key, tab.outlets().valueDataSetTable);
  std::vector<double> saves;
  std::vector<double> floors;
  for (int round = 0; round < rounds; ++round) {
    floors.push_back(millisecondsOf([&] {
      plain.run(del);
      plain.run(write);
    }));
    alerts.clear();
    saves.push_back(millisecondsOf([&] {
      test::click(*tab.outlets().btnSave.widget());
      test::waitUntil([&] { return !alerts.shown().empty(); });
    }));
    if (alerts.messages() != std::vector<std::string>{"Saved."}) throw std::runtime_error("the list wasn't saved");
  }
  return {median(std::move(saves)), median(std::move(floors))};
}

}  // namespace tarn::bench
