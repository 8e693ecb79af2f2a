#include "platform/appkit/ImageIcon.h"
#include "platform/appkit/NSImage.h"
#include "resources/Resources.h"
#include "tests/support/widgets/Hand.h"

#include <QImage>
#include <QPixmap>
#include <gtest/gtest.h>

namespace tarn::test {
namespace {

class Images : public testing::Test {
protected:
  static void SetUpTestSuite() { ASSERT_TRUE(loadResources()); }

  static QImage drawn(const char* name, qreal scale = 1) {
    return imageIcon(NSImage::imageNamed(name)).pixmap(QSize(16, 16), scale).toImage();
  }

  // How light the opaque parts are, from 0 to 255.
  static double lightness(const QImage& image) {
    double sum = 0;
    double weight = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        const QColor color = image.pixelColor(x, y);
        sum += static_cast<double>(color.lightness()) * color.alpha();
        weight += color.alpha();
      }
    }
    return weight == 0 ? 0 : sum / weight;
  }
};

TEST_F(Images, AreThereAndOthersAreNot) {
  EXPECT_TRUE(NSImage::exists("server-running"));
  EXPECT_FALSE(NSImage::exists("no such image"));
  EXPECT_TRUE(imageIcon(NSImage()).isNull());
}

TEST_F(Images, TellEachStatusByItsShapeToo) {
  std::vector<QImage> shapes;
  for (const char* name : {"server", "server-running", "server-disconnected", "server-connecting", "db"}) {
    shapes.push_back(drawn(name).convertToFormat(QImage::Format_Alpha8));
    for (std::size_t other = 0; other + 1 < shapes.size(); ++other)
      EXPECT_NE(shapes[other], shapes.back()) << name;
  }
}

TEST_F(Images, AreDrawnForTheScaleAndThePalette) {
  const QImage sharp = drawn("server", 2);
  EXPECT_EQ(sharp.width(), qRound(16 * sharp.devicePixelRatio()));
  EXPECT_GE(sharp.width(), 32);
  EXPECT_NE(sharp, drawn("server").scaled(sharp.size()));
  const double inLight = lightness(drawn("db"));
  useDarkPalette(true);
  EXPECT_GT(lightness(drawn("db")), inLight + 100);
  useDarkPalette(false);
}

}  // namespace
}  // namespace tarn::test
