#include "workbench/SaveValidation.h"

#include "codec/CharsetEnum.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/DecimalNumber.h"
#include "workbench/RowConversion.h"
#include "workbench/StatusTexts.h"

#include <algorithm>

namespace tarn {

namespace {

std::string noRowsText(std::string_view type) {
  if (type == "Set") return localizedString("Set Can Not be Empty. If you want to remove this set click 'Delete'.");
  if (type == "List") return localizedString("List Can Not be Empty. If you want to remove this list click 'Delete'.");
  if (type == "Hash") return localizedString("Hash Can Not be Empty. If you want to remove this hash click 'Delete'.");
  return localizedString("SortedSet Can Not be Empty. If you want to remove this sortedSet click 'Delete'.");
}

}  // namespace

std::optional<std::int64_t> ttlFromText(std::string_view text) {
  const std::optional<std::int64_t> ttl = decimalInteger(text);
  return ttl && (*ttl == -1 || *ttl > 0) ? ttl : std::nullopt;
}

std::optional<std::string> alertOfHead(std::string_view type, std::string_view key, std::string_view ttl) {
  if (!isValueType(type)) {
    return localizedString("To Create a Key-Value Data, you need click 'New' and Choose A Value Type First.");
  }
  if (key.empty()) return localizedString("Please Enter the Key.");
  if (ttl.empty() || ttl == "-") return localizedString("Please Enter the TTL.");
  if (!ttlFromText(ttl)) {
    return localizedString("TTL must be -1 or >0. -1 is eternal, >0 is the specified expire time in seconds.");
  }
  return std::nullopt;
}

std::optional<std::string> alertOfRows(std::string_view type, std::size_t rowCount,
                                       const std::vector<std::string>& scores) {
  if (rowCount == 0) return noRowsText(type);
  const auto isEmpty = [](const std::string& score) { return score.empty(); };
  if (type == "SortedSet" && std::any_of(scores.begin(), scores.end(), isEmpty)) {
    return localizedString("All 'SortedSet Value Score' must be set.");
  }
  return std::nullopt;
}

TypedBytes stringDataFromText(std::string_view text, std::string_view title) {
  return {
      convertedString(text, title),
      title == base64Title
          ? localizedString("Can not decode Base64 Value Data, Please Check your Base64 Value Data if is available.")
          : localizedString("Can not encode the value to Value Data, Please change Value Data's charset besides the "
                            "'Reload' button.")};
}

}  // namespace tarn
