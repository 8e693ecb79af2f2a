#include "tests/support/StandInStore.h"
#include "tests/support/program/ProgramTest.h"

namespace tarn::test {

namespace {

using State = SKPaymentTransaction::State;

class Sponsoring : public ProgramTest {
protected:
  static SponsorLayout& open() {
    AppDelegate::shared()->clickedSponsor();
    settle();
    return AppDelegate::shared()->sponsorWC()->content().outlets();
  }
};

}  // namespace

TEST_F(Sponsoring, WithoutAStoreTheWindowIsThereAndSaysSo) {
  const SponsorLayout& form = open();
  EXPECT_TRUE(form.window.isVisible());
  click(form.btnSponsor1);
  EXPECT_EQ(alerts.messages(), Texts{"Tips can not be paid here: this platform has no store."});
  form.window.widget()->close();
  EXPECT_FALSE(form.window.isVisible());
}

TEST_F(Sponsoring, AButtonPaysTheProductOfItsNumberOnceTheStoreOffersIt) {
  StandInStore store;
  const SponsorLayout& form = open();
  EXPECT_EQ(store.requested.size(), 5U);
  click(form.btnSponsor2);
  EXPECT_TRUE(store.payments.empty());
  store.answer(SKProductsResponse{{{"tarn_sponsor5"}, {"tarn_sponsor2"}, {"tarn_sponsor1"}}});
  settle();
  for (const NSButton* button : {&form.btnSponsor1, &form.btnSponsor2, &form.btnSponsor3, &form.btnSponsor5})
    click(*button);
  EXPECT_EQ(store.payments, (Texts{"tarn_sponsor1", "tarn_sponsor2", "tarn_sponsor5"}));

  SKPaymentQueue::defaultQueue().updateTransactions({{"purchasing", State::purchasing},
                                                     {"purchased", State::purchased},
                                                     {"failed", State::failed},
                                                     {"restored", State::restored},
                                                     {"deferred", State::deferred}});
  EXPECT_EQ(store.finished, (Texts{"purchased", "failed", "restored"}));
  EXPECT_TRUE(alerts.shown().empty());
}

TEST_F(Sponsoring, TheItemAgainMakesAFreshWindowThatAloneSaysWhatFailed) {
  StandInStore store;
  open();
  const auto first = store.answer;
  open();
  first(SKError{"The shop is closed."});
  settle();
  EXPECT_TRUE(alerts.shown().empty());
  store.answer(SKError{"The shop is closed."});
  settle();
  EXPECT_EQ(alerts.messages(), Texts{"The shop is closed."});
}

}  // namespace tarn::test
