#include "platform/appkit/ImageIcon.h"
#include "platform/appkit/NSImage.h"
#include "platform/foundation/NSLocalizedString.h"
#include "resources/OperationTabLayout.h"
#include "resources/Resources.h"
#include "tests/support/widgets/Hand.h"

#include <QImage>
#include <QPixmap>
#include <gtest/gtest.h>

#include <cstdlib>

namespace tarn::test {
namespace {

QImage drawn(const char* name, qreal scale = 1) {
  return imageIcon(NSImage::imageNamed(name)).pixmap(QSize(16, 16), scale).toImage();
}

// How light the strokes are, from 0 to 255.
int lightestStroke(const QImage& image) {
  int lightest = 0;
  for (int pixel = 0; pixel < image.width() * image.height(); ++pixel) {
    const QColor color = image.pixelColor(pixel % image.width(), pixel / image.width());
    if (color.alpha() > 200) lightest = std::max(lightest, color.lightness());
  }
  return lightest;
}

}  // namespace

TEST(Resources, AreThereAndOthersAreNot) {
  ASSERT_TRUE(loadResources());
  EXPECT_TRUE(NSImage::exists("server-running"));
  EXPECT_FALSE(NSImage::exists("no such image"));
  EXPECT_TRUE(imageIcon(NSImage()).isNull());
}

TEST(Resources, TellEachStatusByItsShapeAndAreDrawnForTheScaleAndThePalette) {
  ASSERT_TRUE(loadResources());
  std::vector<QImage> shapes;
  for (const char* name : {"server", "server-running", "server-disconnected", "server-connecting", "db"}) {
    shapes.push_back(drawn(name).convertToFormat(QImage::Format_Alpha8));
    EXPECT_EQ(std::count(shapes.begin(), shapes.end(), shapes.back()), 1) << name;
  }
  const QImage sharp = drawn("server", 2);
  EXPECT_EQ(sharp.width(), qRound(16 * sharp.devicePixelRatio()));
  EXPECT_GE(sharp.width(), 32);
  EXPECT_NE(sharp, drawn("server").scaled(sharp.size()));
  const int inLight = lightestStroke(drawn("db"));
  useDarkPalette(true);
  EXPECT_GT(lightestStroke(drawn("db")), inLight + 100);
  useDarkPalette(false);
}

// What the windows say in the language that this run is in: without one in English, the texts being their own keys.
TEST(Resources, SayTheirTextsInTheLanguageOfTheRun) {
  const bool chinese = std::getenv("TARN_TRANSLATIONS") != nullptr;
  const OperationTabLayout tab;
  EXPECT_EQ(tab.btnSave.stringValue(), chinese ? "保存" : "Save");
  EXPECT_EQ(tab.labStatus.stringValue(), chinese ? "状态：未连接" : "Status:NotConnected");
  EXPECT_EQ(localizedString(""), "");
  EXPECT_EQ(localizedString("My Favourite"), chinese ? "我的收藏" : "My Favourite");
}

}  // namespace tarn::test
