#include "workbench/TabQueue.h"

#include "platform/appkit/WaitPanel.h"
#include "workbench/StatusTexts.h"

#include <algorithm>

namespace tarn {

void TabQueue::addInDatabase(int database, Work work) {
  if (!server_) return;
  const auto begin = [this, work = std::move(work)](ServerItem& server, const TabPoster& tab) {
    tab.post([this] { updateDealingQueueLabel(); });
    work(server, tab);
  };
  const auto run = [this, begin, server = server_, database, tab = poster(), token = beginWork()] {
    // While this runs no SELECT can start, so the answer stays true until the work has ended.
    if (server->currentDbIdx() == database) return begin(*server, tab);
    server->operationQueue().addBarrierBlock([this, begin, server, database, tab, token] {
      if (server->currentDbIdx() == database || server->selectDb(database)) return begin(*server, tab);
      tab.post([this] { updateDealingQueueLabel(); });
    });
  };
  server_->operationQueue().addOperationWithBlock(run);
}

bool TabQueue::performInDatabase(int database, const std::function<void(ServerItem& server)>& work,
                                 const WorkTraits& traits) {
  const std::shared_ptr<ServerItem> server = server_;
  if (!server) return false;
  bool isDone = false;
  const auto isThere = [&] { return server->currentDbIdx() == database || (traits.connects && !server->isAlive()); };
  const auto perform = [&] {
    if (!traits.runsAlone) {
      server->operationQueue().performBesideOperations([&] {
        isDone = isThere();
        if (isDone) work(*server);
      });
    }
    if (isDone) return;
    server->operationQueue().performAsBarrier([&] {
      isDone = isThere() || server->selectDb(database);
      if (isDone) work(*server);
    });
  };
  const auto progress = [server = server.get(), before = server->traffic()] {
    const ByteStream::Traffic now = server->traffic();
    return trafficText(now.sent - std::min(before.sent, now.sent),
                       now.received - std::min(before.received, now.received));
  };
  performAwaited(perform, {traits.awaited, progress, [&server] { server->giveUp(); }});
  return isDone;
}

void TabQueue::addSelect(int database, std::function<void(bool selected)> ended) {
  if (!server_) return;
  server_->operationQueue().addBarrierBlock(
      [this, database, ended = std::move(ended), server = server_, tab = poster(), token = beginWork()] {
        tab.post([this] { updateDealingQueueLabel(); });
        tab.post([this, ended, selected = server->selectDb(database)] {
          updateDealingQueueLabel();
          ended(selected);
        });
      });
}

std::shared_ptr<void> TabQueue::beginWork() {
  if (++working_ == 1) outlets_.activityBar.startAnimation();
  return {nullptr, [this, tab = poster()](std::nullptr_t) { tab.post([this] { endWork(); }); }};
}

void TabQueue::endWork() {
  if (--working_ == 0) outlets_.activityBar.stopAnimation();
}

void TabQueue::updateDealingQueueLabel() {
  if (!server_) return;
  outlets_.labDealingQueue.setStringValue(dealingQueueText(server_->operationQueue().operationCount()));
}

}  // namespace tarn
