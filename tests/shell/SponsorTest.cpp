#include "tests/support/StandInStore.h"
#include "tests/support/program/ProgramTest.h"

namespace tarn::test {

using Sponsoring = ProgramTest;

TEST_F(Sponsoring, AButtonPaysTheProductOfItsNumberAndTheLastWindowAloneSaysWhatFailed) {
  StandInStore store;
  const auto open = [] {
    AppDelegate::shared()->clickedSponsor();
    settle();
  };
  open();
  const auto first = store.answer;
  open();
  first(SKError{"The shop is closed."});
  const SponsorLayout& form = AppDelegate::shared()->sponsorWC()->content().outlets();
  EXPECT_EQ(store.requested.size(), 5U);
  click(form.btnSponsor2);
  EXPECT_TRUE(store.payments.empty());
  store.answer(SKProductsResponse{{{"tarn_sponsor5"}, {"tarn_sponsor2"}, {"tarn_sponsor1"}}});
  settle();
  for (const NSButton* button : {&form.btnSponsor1, &form.btnSponsor2, &form.btnSponsor3, &form.btnSponsor5})
    click(*button);
  EXPECT_EQ(store.payments, (Texts{"tarn_sponsor1", "tarn_sponsor2", "tarn_sponsor5"}));

  using enum SKPaymentTransaction::State;
  SKPaymentQueue::defaultQueue().updateTransactions(
      {{"1", purchasing}, {"2", purchased}, {"3", failed}, {"4", restored}, {"5", deferred}});
  EXPECT_EQ(store.finished, (Texts{"2", "3", "4"}));
  EXPECT_EQ(alerts.messages(), Texts());
  open();
  store.answer(SKError{"The shop is closed."});
  settle();
  EXPECT_EQ(alerts.messages(), Texts{"The shop is closed."});
}

}  // namespace tarn::test
