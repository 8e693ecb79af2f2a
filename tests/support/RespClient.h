#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::test {

// A request in multi-bulk form.
std::string encodedRequest(const std::vector<std::string>& words);

// The plainest client there is, for tests to set up and check a server with: one connection, one request at a time.
// Every failure throws std::runtime_error.
class RespClient final {
public:
  explicit RespClient(int port);
  RespClient(const RespClient&) = delete;
  RespClient& operator=(const RespClient&) = delete;
  ~RespClient();

  // The raw reply, whole.
  std::string command(const std::vector<std::string>& words);

  // Sends many requests in one go and drops their replies; throws if one of them is an error.
  void pipeline(const std::vector<std::vector<std::string>>& requests);

private:
  void sendAll(std::string_view bytes);
  std::string readReply();
  void receiveUntil(std::size_t end);
  std::size_t skipReply(std::size_t position);
  std::size_t skipLine(std::size_t position);

  int descriptor_;
  std::string received_;
};

}  // namespace tarn::test
