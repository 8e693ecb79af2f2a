#pragma once

#include "platform/foundation/Bytes.h"
#include "wire/request/Command.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tarn {

// What puts one value whole under a key, in place of what stands there: the commands, in their order. Borrows the key
// and the value, which outlive it. Belongs to one thread.
class KeyWriting final {
public:
  // Seconds; a ttl below 0 means no expiry.
  KeyWriting(const Bytes& key, std::int64_t ttl);
  KeyWriting(const KeyWriting&) = delete;
  KeyWriting& operator=(const KeyWriting&) = delete;

  // The value moves from this key, which goes. First of all, if at all.
  void moveFrom(const Bytes& oldKey);

  // One of these, once.
  void setString(const Bytes& value);
  void setSet(const std::vector<Bytes>& members) { replaceBy(RedisCommand::sadd, members); }
  void setList(const std::vector<Bytes>& items) { replaceBy(RedisCommand::rpush, items); }
  // One of each in turn, up to the end of the shorter.
  void setHash(const std::vector<Bytes>& fields, const std::vector<Bytes>& values) {
    replaceByPairs(RedisCommand::hmset, fields, values);
  }
  void setSortedSet(const std::vector<std::string>& scores, const std::vector<Bytes>& members) {
    replaceByPairs(RedisCommand::zadd, scores, members);
  }

  bool isMove() const { return isMove_; }
  std::span<const Command> commands() const { return commands_; }
  // All but the deletion of the old key.
  std::span<const Command> commandsOnKey() const { return commands().subspan(isMove_ ? 1 : 0); }

private:
  void replaceBy(RedisCommand command, const std::vector<Bytes>& items);
  template <typename First>
  void replaceByPairs(RedisCommand command, const std::vector<First>& firsts, const std::vector<Bytes>& seconds);
  void replaceWith(Command write);

  const Bytes& key_;
  const std::string ttl_;
  const bool expires_;
  bool isMove_ = false;
  std::vector<Command> commands_;
};

}  // namespace tarn
