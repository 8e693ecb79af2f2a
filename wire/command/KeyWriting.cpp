#include "wire/command/KeyWriting.h"

#include <algorithm>
#include <utility>

namespace tarn {

KeyWriting::KeyWriting(const Bytes& key, std::int64_t ttl) : key_(key), ttl_(std::to_string(ttl)), expires_(ttl >= 0) {}

void KeyWriting::moveFrom(const Bytes& oldKey) {
  isMove_ = true;
  commands_.push_back({RedisCommand::del, {oldKey.view()}});
}

void KeyWriting::setString(const Bytes& value) {
  if (!expires_) commands_.push_back({RedisCommand::persist, {key_.view()}});
  Command set{RedisCommand::set, {key_.view(), value.view()}};
  if (expires_) set.words.insert(set.words.end(), {"EX", ttl_});
  commands_.push_back(std::move(set));
}

void KeyWriting::replaceBy(RedisCommand command, const std::vector<Bytes>& items) {
  Command write{command, {}};
  write.words.reserve(items.size() + 1);
  write.words.push_back(key_.view());
  for (const Bytes& item : items)
    write.words.push_back(item.view());
  replaceWith(std::move(write));
}

template <typename First>
void KeyWriting::replaceByPairs(RedisCommand command, const std::vector<First>& firsts,
                                const std::vector<Bytes>& seconds) {
  const std::size_t count = std::min(firsts.size(), seconds.size());
  Command write{command, {}};
  write.words.reserve(2 * count + 1);
  write.words.push_back(key_.view());
  for (std::size_t i = 0; i < count; ++i) {
    write.words.emplace_back(firsts[i].data(), firsts[i].size());
    write.words.push_back(seconds[i].view());
  }
  replaceWith(std::move(write));
}

template void KeyWriting::replaceByPairs(RedisCommand, const std::vector<Bytes>&, const std::vector<Bytes>&);
template void KeyWriting::replaceByPairs(RedisCommand, const std::vector<std::string>&, const std::vector<Bytes>&);

void KeyWriting::replaceWith(Command write) {
  commands_.push_back({RedisCommand::del, {key_.view()}});
  commands_.push_back(std::move(write));
  if (expires_) commands_.push_back({RedisCommand::expire, {key_.view(), ttl_}});
}

}  // namespace tarn
