#pragma once

#include "platform/foundation/NSOperationQueue.h"
#include "resources/OperationTabLayout.h"
#include "workbench/QueueActivity.h"
#include "workbench/TabPoster.h"
#include "workbench/TabState.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tarn {

// How a tab's work goes to its server's queue, on the right database, and comes back. Main queue only; `Work` runs on
// the server's queue, where it touches no part of the tab but through the poster.
class TabQueue final {
public:
  using Work = std::function<void(ServerItem& server, const TabPoster& tab)>;

  TabQueue(OperationTabLayout& outlets, const TabState& state);

  // The tab that owns all this, for the weak references of blocks. Call it before anything else.
  void setTab(std::weak_ptr<void> tab) { tab_ = std::move(tab); }
  TabPoster poster() const { return TabPoster(tab_); }
  // Keeps the tab, for an operation that may raise an alert, behind which the tab may be closed.
  std::shared_ptr<void> tab() const { return tab_.lock(); }

  // Queues work that reads or writes keys of the database shown now. Where the wire stands elsewhere when its turn
  // comes, SELECT is sent first, with the running blocks ended and no other started; if that fails, the work is
  // dropped. Without a server nothing happens.
  void addInShownDatabase(Work work) { addInDatabase(state_.database, std::move(work)); }
  // The same for the database that was shown when the work was asked for.
  void addInDatabase(int database, Work work);

  // Does such work here and now, between the queue's blocks, and under a wait cursor; no SELECT of theirs comes
  // between. Where the wire stands elsewhere, SELECT is sent first, when the running blocks have ended; if that fails,
  // the work is dropped.
  void performInDatabase(int database, const std::function<void(ServerItem& server)>& work);

  // Queues a SELECT of this database, behind the running blocks and before all others. Then, on the main queue, `ended`
  // is called with whether the server took it. The queue label follows. Without a server nothing happens.
  void addSelect(int database, std::function<void(bool selected)> ended);

  // See QueueActivity.
  std::shared_ptr<void> beginWork() { return activity_.beginWork(poster()); }

  // The label shows how many operations the server's queue counts now.
  void updateDealingQueueLabel();

  // Frees many rows on another thread: those of a million take longer than an event should.
  template <class Row>
  void dispose(std::vector<Row> rows) {
    if (rows.size() < manyRows) return;
    auto shared = std::make_shared<std::vector<Row>>(std::move(rows));
    garbage_.addOperationWithBlock([shared = std::move(shared)]() mutable { shared.reset(); });
  }

private:
  static constexpr std::size_t manyRows = 10'000;

  OperationTabLayout& outlets_;
  const TabState& state_;
  std::weak_ptr<void> tab_;
  QueueActivity activity_;
  NSOperationQueue garbage_{1};
};

}  // namespace tarn
