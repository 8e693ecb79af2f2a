#pragma once

#include "platform/foundation/PostToMainQueue.h"
#include "resources/OperationTabLayout.h"
#include "wire/ServerItem.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace tarn {

// The way back from a background block to its tab, which it holds weakly. Blocks copy it; any thread.
class TabPoster final {
public:
  explicit TabPoster(std::weak_ptr<void> tab) : tab_(std::move(tab)) {}

  // As postToMainQueue(), with the tab as owner.
  template <class Step>
  void post(Step step) const {
    postToMainQueue(tab_, std::move(step));
  }

private:
  std::weak_ptr<void> tab_;
};

// What sets some work that is done at once apart.
struct WorkTraits {
  // What is awaited, for the user.
  std::string awaited;
  // It may choose another database: no block of the queue may find itself in another one than it began in.
  bool runsAlone = false;
  // It makes a lost connection anew, which selects the database by itself.
  bool connects = false;
};

// A tab's connection, and how the tab's work goes to its queue, on the right database, and comes back. Main queue only;
// `Work` runs on the server's queue, where it touches no part of the tab but through the poster.
class TabQueue final {
public:
  using Work = std::function<void(ServerItem& server, const TabPoster& tab)>;

  explicit TabQueue(OperationTabLayout& outlets) : outlets_(outlets) {}

  // The tab that owns all this, for the weak references of blocks. Call it before anything else.
  void setTab(std::weak_ptr<void> tab) { tab_ = std::move(tab); }
  TabPoster poster() const { return TabPoster(tab_); }
  // Keeps the tab, for an operation that may raise an alert, behind which the tab may be closed.
  std::shared_ptr<void> tab() const { return tab_.lock(); }

  // Nothing until the tab opens.
  const std::shared_ptr<ServerItem>& server() const { return server_; }
  void setServer(std::shared_ptr<ServerItem> server) { server_ = std::move(server); }

  // The database that popDatabase shows, or showed before it was emptied: what is read and written is this one.
  int database() const { return database_; }
  void setDatabase(int database) { database_ = database; }

  // Queues work that reads or writes keys of the database shown now. Where the wire stands elsewhere when its turn
  // comes, SELECT is sent first, with the running blocks ended and no other started; if that fails, the work is
  // dropped. The queue label follows its beginning. Without a server nothing happens.
  void addInShownDatabase(Work work) { addInDatabase(database_, std::move(work)); }
  // The same for the database that was shown when the work was asked for.
  void addInDatabase(int database, Work work);

  // Does such work now, between the queue's blocks, on a thread of its own which is waited for: see performAwaited. No
  // SELECT of theirs comes between. Where the wire stands elsewhere, SELECT is sent first, when the running blocks have
  // ended; if that fails, or without a server, the work is dropped, and the answer is false.
  bool performInDatabase(int database, const std::function<void(ServerItem& server)>& work, const WorkTraits& traits);

  // Queues a SELECT of this database, behind the running blocks and before all others. Then, on the main queue, `ended`
  // is called with whether the server took it. The queue label follows. Without a server nothing happens.
  void addSelect(int database, std::function<void(bool selected)> ended);

  // Moves the activity bar until the last copy of the token goes, on whatever thread: a block holds one, so that one
  // that is cancelled ends its work too.
  std::shared_ptr<void> beginWork();

  // The label shows how many operations the server's queue counts now.
  void updateDealingQueueLabel();

private:
  void endWork();

  OperationTabLayout& outlets_;
  std::weak_ptr<void> tab_;
  std::shared_ptr<ServerItem> server_;
  int database_ = 0;
  int working_ = 0;
};

}  // namespace tarn
