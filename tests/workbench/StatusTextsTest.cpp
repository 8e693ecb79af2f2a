#include "workbench/StatusTexts.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(StatusTexts, SayExactlyWhatTheLabelsShow) {
  EXPECT_EQ(serverStatusText(ConnectionStatus::disConnected), "Status:DisConnected");
  EXPECT_EQ(dealingQueueText(2), "Dealing Queue:2");
  EXPECT_EQ(unknownTypeText(), "Type:");
  EXPECT_EQ(typeText("SortedSet"), "Type: SortedSet");
  EXPECT_EQ(unsupportedTypeText("none"), "Type:none (Unsupported Type)");
  EXPECT_EQ(keySizeText(12), "Key Size: 12byte(s)");
  EXPECT_EQ(noDataSizeText(), "Data Size: ");
  EXPECT_EQ(dataSizeText(2), "Data Size: 2byte(s)");
  EXPECT_EQ(dataSizeText(9, 3), "Data Size: 9byte(s) Data Count:3");
  EXPECT_EQ(ttlToolTip("-2"), "(Deleted)");
  EXPECT_EQ(ttlToolTip("-1"), "(Persist)");
  EXPECT_EQ(ttlToolTip("60"), "Second(s)");
  EXPECT_EQ(keyLabelText("GBK"), "Key(GBK):");
  EXPECT_EQ(countShownText(1000000), "Count Shown:1000000");
}

TEST(StatusTexts, KnowTheFiveTypesByTheirExactWords) {
  EXPECT_EQ(valueTypeTitle("zset"), "SortedSet");
  EXPECT_EQ(valueTypeTitle("list"), "List");
  EXPECT_EQ(valueTypeTitle("String"), "");
  EXPECT_EQ(valueTypeTitle("stream"), "");
  EXPECT_EQ(valueTypeTitle("none"), "");
}

}  // namespace
}  // namespace tarn
