#include "export/frame_pictures.h"

#include "support/documents.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace brisklet {
namespace {

constexpr double never = std::numeric_limits<double>::infinity();
constexpr MovieStyle moving{.inMotion = true, .page = {}};

QImage pictureAt(const SequenceDocument& document, const MovieStyle& style, double timeMs) {
  LockScreenCache cache;
  return FramePictures(document, style, cache).at(timeMs);
}

TEST(FramePictures, aMomentInMotionLooksTheSameFromWhereverOneComes) {
  const SequenceDocument document = documentOf({0, 410, 625});
  LockScreenCache cache;
  FramePictures pictures(document, moving, cache);
  QImage before;
  for (const double timeMs : {0.0, 33.0, 409.0, 440.0, 500.0, 700.0, 800.0}) {
    const QImage picture = pictures.at(timeMs);
    EXPECT_TRUE(picture == pictureAt(document, moving, timeMs)) << timeMs;
    EXPECT_EQ(picture.cacheKey() == before.cacheKey(), timeMs == 33 || timeMs == 409) << timeMs;
    before = picture;
  }
  // In the end the cards stand as if they had never moved.
  const QImage rest = pictures.at(9000);
  EXPECT_EQ(pictures.at(9034).cacheKey(), rest.cacheKey());
  EXPECT_TRUE(rest == pictureAt(document, moving, never));
  EXPECT_TRUE(pictureAt(document, moving, 0) == pictureAt(documentOf({0}), moving, never));
}

TEST(FramePictures, cardsMoveFromTheMomentAtWhichTheyLand) {
  // Both are seen 90 ms after a landing, though no frame stands at either.
  const QImage early = pictureAt(documentOf({0, 400}), moving, 490);
  EXPECT_TRUE(early == pictureAt(documentOf({0, 407}), moving, 497));
  EXPECT_FALSE(early == pictureAt(documentOf({0, 407}), moving, 490));
}

TEST(FramePictures, aPageHoldsThePhoneWithRoundedCorners) {
  const SequenceDocument document = documentOf({0});
  for (const QSize& page : {QSize(1080, 1920), QSize(320, 320), QSize(1920, 1080), QSize(1080, 2532)}) {
    const QRect phone = PageLayout(page).phone;
    EXPECT_LE((phone.center() - QRect(QPoint(), page).center()).manhattanLength(), 2);
    EXPECT_NEAR(std::max(phone.height() / (0.92 * page.height()), phone.width() / (0.86 * page.width())), 1,
                0.005);
    EXPECT_NEAR(phone.width() / 390.0, phone.height() / 844.0, 0.01);
    const QImage picture = pictureAt(document, {.inMotion = false, .page = page}, never);
    ASSERT_EQ(picture.size(), page);
    EXPECT_EQ(picture.format(), QImage::Format_RGB32);
  }
  // White paper shows where the phone ends.
  QImage white(390, 844, QImage::Format_RGB32);
  white.fill(Qt::white);
  const Page page({1080, 1920}, white);
  const QRect phone = page.layout().phone;
  QImage lockScreen(phone.size(), QImage::Format_RGB32);
  lockScreen.fill(Qt::red);
  const QImage picture = page.with(lockScreen);
  EXPECT_NE(picture.pixelColor(phone.topLeft() + QPoint(5, 5)), QColor(Qt::red));
  for (const QPoint& inside : {phone.center(), phone.topLeft() + QPoint(60, 60)})
    EXPECT_EQ(picture.pixelColor(inside), QColor(Qt::red));
}

}  // namespace
}  // namespace brisklet
