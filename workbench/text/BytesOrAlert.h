#pragma once

#include "platform/foundation/Bytes.h"

#include <optional>
#include <string>
#include <utility>

namespace tarn {

// What became of a text that a user typed: the bytes that it stands for; or the message that tells why it stands for
// none; or neither, where there is nothing to do and nothing to say.
class BytesOrAlert final {
public:
  // Neither.
  BytesOrAlert() = default;
  explicit BytesOrAlert(Bytes bytes) : bytes_(std::move(bytes)) {}
  // The bytes where there are some, else the message.
  BytesOrAlert(std::optional<Bytes> bytes, std::string alert) : bytes_(std::move(bytes)) {
    if (!bytes_) alert_ = std::move(alert);
  }

  bool hasValue() const { return bytes_.has_value(); }
  // Only where hasValue() is true.
  const Bytes& value() const { return *bytes_; }
  // The text of the alert; empty where there is none to show.
  const std::string& alert() const { return alert_; }

private:
  std::optional<Bytes> bytes_;
  std::string alert_;
};

}  // namespace tarn
