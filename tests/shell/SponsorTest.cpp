#include "resources/Resources.h"
#include "shell/AppDelegate.h"
#include "tests/support/AlertRecorder.h"
#include "tests/support/StandInStore.h"
#include "tests/support/TemporaryDataHome.h"
#include "tests/support/widgets/Hand.h"

#include <gtest/gtest.h>

namespace tarn::test {

namespace {

using Texts = std::vector<std::string>;
using State = SKPaymentTransaction::State;

struct Sponsoring : testing::Test {
  void open() {
    ASSERT_TRUE(loadResources());
    delegate.clickedSponsor();
    settle();
  }
  SponsorLayout& form() { return delegate.sponsorWC()->content().outlets(); }

  TemporaryDataHome dataHome;
  AlertRecorder alerts;
  AppDelegate delegate;
};

}  // namespace

TEST_F(Sponsoring, WithoutAStoreTheWindowIsThereAndSaysSo) {
  open();
  EXPECT_TRUE(form().window.isVisible());
  EXPECT_EQ(alerts.messages(), Texts{"Tips can not be paid here: this platform has no store."});
  click(*form().btnSponsor1.widget());
  EXPECT_EQ(alerts.shown().size(), 1U);
  form().window.widget()->close();
  EXPECT_FALSE(form().window.isVisible());
}

TEST_F(Sponsoring, AButtonPaysTheProductOfItsNumberOnceTheStoreOffersIt) {
  StandInStore store;
  open();
  EXPECT_EQ(store.requested.size(), 5U);
  click(*form().btnSponsor2.widget());
  EXPECT_TRUE(store.payments.empty());
  store.answer(SKProductsResponse{{{"tarn_sponsor5"}, {"tarn_sponsor2"}, {"tarn_sponsor1"}}});
  settle();
  for (NSButton* button : {&form().btnSponsor1, &form().btnSponsor2, &form().btnSponsor3, &form().btnSponsor5})
    click(*button->widget());
  EXPECT_EQ(store.payments, (Texts{"tarn_sponsor1", "tarn_sponsor2", "tarn_sponsor5"}));

  SKPaymentQueue::defaultQueue().updateTransactions({{"purchasing", State::purchasing},
                                                     {"purchased", State::purchased},
                                                     {"failed", State::failed},
                                                     {"restored", State::restored},
                                                     {"deferred", State::deferred}});
  EXPECT_EQ(store.finished, (Texts{"purchased", "failed", "restored"}));
  EXPECT_TRUE(alerts.shown().empty());
}

TEST_F(Sponsoring, TheItemAgainMakesAFreshWindowThatAloneIsToldOfARefusal) {
  StandInStore store;
  open();
  const auto before = store.answer;
  form().btnSponsor1.setStringValue("old");
  open();
  EXPECT_NE(form().btnSponsor1.stringValue(), "old");
  before(SKError{"The shop is closed."});
  settle();
  EXPECT_TRUE(alerts.shown().empty());
  store.answer(SKError{"The shop is closed."});
  settle();
  EXPECT_EQ(alerts.messages(), Texts{"The shop is closed."});
  EXPECT_TRUE(form().window.isVisible());
}

}  // namespace tarn::test
