#pragma once

#include "platform/coredata/NSManagedObject.h"

#include <array>

namespace tarn {

// What is stored of a favourite. `auth` is the password in clear text.
inline constexpr auto serverItemStorageAttributes = std::to_array<NSAttributeDescription>({
    {"serverId", NSAttributeType::uuid, true},
    {"connectionName", NSAttributeType::string, true},
    {"serverIp", NSAttributeType::string, true},
    {"serverPort", NSAttributeType::integer32, true},
    {"auth", NSAttributeType::string, true},
    {"defaultCharset", NSAttributeType::string},
});

inline constexpr auto useCounterAttributes = std::to_array<NSAttributeDescription>({
    {"counter", NSAttributeType::integer64},
});

// The kinds of record in the store "ServerItemModel".
inline constexpr auto serverItemModel = std::to_array<NSEntityDescription>({
    {"ServerItemStorage", serverItemStorageAttributes},
    {"UseCounter", useCounterAttributes},
});

}  // namespace tarn
