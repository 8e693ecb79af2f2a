#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/storekit/SKStore.h"
#include "tests/support/RedisServer.h"
#include "tests/support/program/Program.h"

namespace tarn::test {
namespace {

using MainWindow = ProgramTest;
using MainWindowDeathTest = ProgramTest;
using Sponsoring = ProgramTest;

// The platform's store while it lives: it answers when the test says so, and keeps what it was asked.
class StandInStore final : public SKStore {
public:
  StandInStore() { SKStore::install(this); }
  ~StandInStore() override { SKStore::install(nullptr); }

  void requestProducts(const std::set<std::string>& identifiers, std::function<void(Answer)> done) override {
    requested = identifiers;
    answer = std::move(done);
  }
  void addPayment(const SKMutablePayment& payment) override { payments.push_back(payment.productIdentifier()); }
  void finishTransaction(const SKPaymentTransaction& transaction) override {
    finished.push_back(transaction.transactionIdentifier);
  }

  std::set<std::string> requested;
  std::function<void(Answer)> answer;
  std::vector<std::string> payments;
  std::vector<std::string> finished;
};

TEST_F(MainWindowDeathTest, ClosingItEndsTheProcessAlsoWithAnOpenConnection) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        const RedisServer redis({"--databases", "1"});
        open({{"local", redis.port()}});
        openDatabase("local", "db0(");
        window().window.widget()->close();
      },
      testing::ExitedWithCode(0), "");
}

// The menu of the bar takes the keyboard while it is open.
TEST_F(MainWindow, ActsByMenuAndMenuKeyAndTakesItsTabsAlong) {
  open({{"local", 1}});
  clickRow("local");
  tab().txtKey.becomeFirstResponder();
  type("name");
  chooseInMainMenu("Edit", "Select All");
  // To "Cut", past "Undo" and "Redo".
  press(Qt::Key_Alt);
  keys("Right Down Down Down Return");
  EXPECT_EQ(tab().txtKey.stringValue(), "");
  for (const auto& [item, text] : {std::pair("Undo", "name"), std::pair("Redo", ""), std::pair("Paste", "name")}) {
    chooseInMainMenu("Edit", item);
    EXPECT_EQ(tab().txtKey.stringValue(), text) << item;
  }
  EXPECT_TRUE(tab().txtKey.isFirstResponder());
  // Where no text has the keyboard nothing happens.
  window().serverSelection.becomeFirstResponder();
  chooseInMainMenu("Edit", "Paste");
  EXPECT_EQ(tab().txtKey.stringValue(), "name");

  // A change of size reaches the tab.
  newKey("List");
  auto& column = tab().valueDataSetTable.tableColumn(0);
  // More than once, since the tab fits itself a moment later to a new key too.
  for (const int width : {1200, 1300, 1250}) {
    window().window.widget()->resize(width, 700);
    settle();
    column.setWidth(10);
    EXPECT_TRUE(waitUntil([&] { return column.width() == tab().valueDataSetScrollView.frame().width - 8.0; }));
  }

  press(Qt::Key_W, Qt::ControlModifier);
  EXPECT_FALSE(tabOf());
  NSApplication::shared().setShouldTerminate([] { return AppDelegate::shared()->applicationShouldTerminate(); });
  NSOperationQueue::mainQueue().addOperationWithBlock([] { press(Qt::Key_Q, Qt::ControlModifier); });
  EXPECT_EQ(NSApplication::shared().run(), 0);
  NSApplication::shared().setShouldTerminate({});
}

TEST_F(Sponsoring, AButtonPaysTheProductOfItsNumberAndTheLastWindowAloneSaysWhatFailed) {
  StandInStore store;
  const auto open = [] {
    AppDelegate::shared()->clickedSponsor();
    settle();
  };
  open();
  const SponsorLayout& form = AppDelegate::shared()->sponsorWC()->content().outlets();
  EXPECT_EQ(store.requested.size(), 5U);
  click(form.btnSponsor2);
  EXPECT_TRUE(store.payments.empty());
  const auto first = store.answer;
  first(SKProductsResponse{{{"tarn_sponsor5"}, {"tarn_sponsor2"}, {"tarn_sponsor1"}}});
  settle();
  for (const NSButton* button : {&form.btnSponsor1, &form.btnSponsor2, &form.btnSponsor3, &form.btnSponsor5})
    click(*button);
  EXPECT_EQ(store.payments, (Texts{"tarn_sponsor1", "tarn_sponsor2", "tarn_sponsor5"}));
  using enum SKPaymentTransaction::State;
  SKPaymentQueue& queue = SKPaymentQueue::defaultQueue();
  queue.updateTransactions({{"1", purchasing}, {"2", purchased}, {"3", failed}, {"4", restored}, {"5", deferred}});
  EXPECT_EQ(store.finished, (Texts{"2", "3", "4"}));
  // Opens the window anew before the one that is open has its turn.
  struct : SKPaymentTransactionObserver {
    void paymentQueueUpdatedTransactions(const std::vector<SKPaymentTransaction>&) override {
      AppDelegate::shared()->clickedSponsor();
    }
  } reopening;
  SponsorVC& second = AppDelegate::shared()->sponsorWC()->content();
  queue.removeTransactionObserver(&second);
  queue.addTransactionObserver(&reopening);
  queue.addTransactionObserver(&second);
  queue.updateTransactions({{"6", purchased}});
  queue.removeTransactionObserver(&reopening);
  EXPECT_EQ(store.finished, (Texts{"2", "3", "4"}));
  first(SKError{"It is too late."});
  store.answer(SKError{"The shop is closed."});
  settle();
  EXPECT_EQ(alerts.messages(), Texts{"The shop is closed."});
}

}  // namespace
}  // namespace tarn::test
