#include "platform/appkit/text/RowStarts.h"

namespace tarn {

std::optional<RowStarts::Start> RowStarts::start(std::size_t block) const {
  const auto found = starts_.find(block);
  return found == starts_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<RowStarts::Start> RowStarts::next(std::size_t block, const Start& before) {
  const std::optional<Start> known = start(block);
  if (!known) return {};
  const bool isShown = block >= firstShown_ && block <= lastShown_;
  const bool stays = known->isExact || !before.isExact || isShown;
  if (stays && known->position >= before.position) return known;
  forgetFrom(block);
  return {};
}

void RowStarts::setShown(std::size_t first, std::size_t last) {
  firstShown_ = first;
  lastShown_ = last;
}

}  // namespace tarn
