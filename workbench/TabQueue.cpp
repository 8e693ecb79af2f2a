#include "workbench/TabQueue.h"

#include "platform/appkit/NSApplication.h"
#include "workbench/StatusTexts.h"

namespace tarn {

namespace {

// False if the connection stands elsewhere, and the server didn't take the SELECT.
bool goesTo(int database, ServerItem& server) {
  return server.currentDbIdx() == database || server.selectDb(database);
}

}  // namespace

TabQueue::TabQueue(OperationTabLayout& outlets, const TabState& state)
    : outlets_(outlets), state_(state), activity_(outlets.activityBar) {}

void TabQueue::addInDatabase(int database, Work work) {
  if (!state_.server) return;
  const auto run = [this, work = std::move(work), server = state_.server, database, tab = poster(),
                    token = beginWork()] {
    // While this runs no SELECT can start, so the answer stays true until the work has ended.
    if (server->currentDbIdx() == database) return work(*server, tab);
    server->operationQueue().addBarrierBlock([this, work, server, database, tab, token] {
      if (goesTo(database, *server)) return work(*server, tab);
      tab.post([this] { updateDealingQueueLabel(); });
    });
  };
  state_.server->operationQueue().addOperationWithBlock(run);
}

void TabQueue::performInDatabase(int database, const std::function<void(ServerItem& server)>& work) {
  const std::shared_ptr<ServerItem> server = state_.server;
  if (!server) return;
  const WaitCursor cursor;
  bool isElsewhere = false;
  server->operationQueue().performBesideOperations([&] {
    isElsewhere = server->currentDbIdx() != database;
    if (!isElsewhere) work(*server);
  });
  if (!isElsewhere) return;
  server->operationQueue().performAsBarrier([&] {
    if (goesTo(database, *server)) work(*server);
  });
}

void TabQueue::addSelect(int database, std::function<void(bool selected)> ended) {
  if (!state_.server) return;
  state_.server->operationQueue().addBarrierBlock(
      [this, database, ended = std::move(ended), server = state_.server, tab = poster(), token = beginWork()] {
        tab.post([this] { updateDealingQueueLabel(); });
        tab.post([this, ended, selected = server->selectDb(database)] {
          updateDealingQueueLabel();
          ended(selected);
        });
      });
}

void TabQueue::updateDealingQueueLabel() {
  if (!state_.server) return;
  outlets_.labDealingQueue.setStringValue(dealingQueueText(state_.server->operationQueue().operationCount()));
}

}  // namespace tarn
