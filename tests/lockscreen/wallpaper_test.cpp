#include "lockscreen/wallpaper.h"

#include "pictures.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

QImage plain(const QColor& color, const QSize& size) {
  QImage image(size, QImage::Format_RGB32);
  image.fill(color);
  return image;
}

class Wallpapers : public testing::Test {
 protected:
  QImage filled(const QString& wallpaper, const QString& url = {}) {
    SequenceDocument document = documentWith(0, wallpaper);
    document.wallpaperUrl = url;
    return source_.filled(document, {117, 253});
  }

  QTemporaryDir folder_;
  WallpaperSource source_;
};

TEST_F(Wallpapers, unknownAndUnreadableOnesAreBuiltInOne) {
  const QImage one = filled(u"one"_s);
  EXPECT_EQ(one.size(), QSize(117, 253));
  for (const QString& other : {u"two"_s, u"three"_s, u"four"_s}) EXPECT_NE(filled(other), one);
  for (const QString& unknown : {u""_s, u"One"_s, u"custom"_s}) EXPECT_EQ(filled(unknown), one);
  for (const QString& path : {folder_.filePath(u"missing.jpg"_s), folder_.path()})
    EXPECT_EQ(filled(u"custom"_s, path), one);
}

TEST_F(Wallpapers, photoIsReadAgainOnlyWhenItsFileChanged) {
  const QString path = folder_.filePath(u"photo.png"_s);
  ASSERT_TRUE(plain(Qt::red, {40, 30}).save(path));
  const QImage red = filled(u"custom"_s, path);
  EXPECT_EQ(red.pixel(60, 100), qRgb(255, 0, 0));
  EXPECT_EQ(filled(u"custom"_s, path).cacheKey(), red.cacheKey());
  ASSERT_TRUE(plain(Qt::blue, {50, 30}).save(path));
  EXPECT_EQ(filled(u"custom"_s, path).pixel(60, 100), qRgb(0, 0, 255));
  ASSERT_TRUE(QFile::resize(path, 30));
  EXPECT_EQ(filled(u"custom"_s, path), filled(u"one"_s)) << "damaged";
  ASSERT_TRUE(QFile::remove(path));
  EXPECT_EQ(filled(u"custom"_s, path), filled(u"one"_s));
}

TEST_F(Wallpapers, photoThatOthersReadComesWhenItIsTaken) {
  const QString path = folder_.filePath(u"photo.png"_s);
  ASSERT_TRUE(plain(Qt::red, {40, 30}).save(path));
  source_.leavePhotosToOthers();
  const QImage two = filled(u"two"_s);
  EXPECT_EQ(filled(u"custom"_s, path), two);
  const auto reading = source_.unread();
  ASSERT_TRUE(reading);
  source_.take(*reading, WallpaperSource::read(*reading));
  EXPECT_EQ(filled(u"custom"_s, path).pixel(60, 100), qRgb(255, 0, 0));
  EXPECT_FALSE(source_.unread());
}

TEST(PhotoFill, coversTheCanvasFromThePhotosMiddle) {
  // A wide photo whose middle third is green, cut to a narrow canvas.
  QImage photo = plain(Qt::red, {900, 300});
  QPainter(&photo).fillRect(300, 0, 300, 300, Qt::green);
  EXPECT_EQ(photoFill(photo, {100, 100}).copy(2, 0, 96, 100), plain(Qt::green, {96, 100}));
  EXPECT_EQ(photoFill(photo, {300, 100}).pixel(95, 50), qRgb(255, 0, 0));
  // Extreme shapes stay within memory.
  for (const QSize& size : {QSize(1, 1), QSize(1, 20000), QSize(20000, 1)})
    EXPECT_EQ(photoFill(plain(Qt::green, size), {1170, 2532}), plain(Qt::green, {1170, 2532}));
}

TEST(PhotoFill, leavesNoRingsOfWhatIsTooFine) {
  QImage stripes(1000, 1000, QImage::Format_RGB32);
  for (int x = 0; x < 1000; ++x) QPainter(&stripes).fillRect(x, 0, 1, 1000, x % 2 ? Qt::white : Qt::black);
  const QImage reduced = photoFill(stripes, {610, 610});
  for (int x = 10; x < 600; ++x) EXPECT_NEAR(qGreen(reduced.pixel(x, 300)), 127.5, 12) << x;
}

}  // namespace
}  // namespace brisklet
