#include "lockscreen/wallpaper.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "pictures.h"

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

class Wallpapers : public testing::Test {
 protected:
  const QImage& filled(const QString& wallpaper, const QString& url = {}) {
    SequenceDocument document = documentWith(0, wallpaper);
    document.wallpaperUrl = url;
    return source_.filled(document, {117, 253});
  }

  QString saved(const QString& name, const QColor& color, const QSize& size = {40, 30}) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    const QString path = folder_.filePath(name);
    EXPECT_TRUE(image.save(path, "png"));
    return path;
  }

  QTemporaryDir folder_;
  WallpaperSource source_;
};

TEST_F(Wallpapers, unknownAndUnreadableOnesAreBuiltInOne) {
  const QImage one = filled(u"one"_s);
  EXPECT_EQ(one.size(), QSize(117, 253));
  for (const QString& other : {u"two"_s, u"three"_s, u"four"_s}) EXPECT_NE(filled(other), one);
  QFile broken(folder_.filePath(u"broken.jpg"_s));
  ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
  broken.write("no picture");
  broken.close();
  EXPECT_EQ(filled({}), one);
  EXPECT_EQ(filled(u"One"_s), one);
  EXPECT_EQ(filled(u"custom"_s), one);
  EXPECT_EQ(filled(u"custom"_s, folder_.filePath(u"missing.jpg"_s)), one);
  EXPECT_EQ(filled(u"custom"_s, folder_.path()), one);
  EXPECT_EQ(filled(u"custom"_s, broken.fileName()), one);
}

TEST_F(Wallpapers, photoIsReadAgainOnlyWhenItsFileChanged) {
  const QString path = saved(u"photo.png"_s, Qt::red);
  const QImage red = filled(u"custom"_s, path);
  EXPECT_EQ(red.pixel(60, 100), qRgb(255, 0, 0));
  EXPECT_EQ(filled(u"custom"_s, path).cacheKey(), red.cacheKey());
  saved(u"photo.png"_s, Qt::blue, {50, 30});
  EXPECT_EQ(filled(u"custom"_s, path).pixel(60, 100), qRgb(0, 0, 255));
  ASSERT_TRUE(QFile::resize(path, 30));
  EXPECT_EQ(filled(u"custom"_s, path), filled(u"one"_s));
  ASSERT_TRUE(QFile::remove(path));
  EXPECT_EQ(filled(u"custom"_s, path), filled(u"one"_s));
}

TEST(PhotoFill, coversTheCanvasFromThePhotosMiddle) {
  // A wide photo whose middle third is green, cut to a narrow canvas.
  QImage photo(900, 300, QImage::Format_RGB32);
  photo.fill(Qt::red);
  QPainter(&photo).fillRect(300, 0, 300, 300, Qt::green);
  const QImage filled = photoFill(photo, {100, 100});
  ASSERT_EQ(filled.size(), QSize(100, 100));
  EXPECT_EQ(filled.pixel(2, 50), qRgb(0, 255, 0));
  EXPECT_EQ(filled.pixel(97, 50), qRgb(0, 255, 0));
  EXPECT_EQ(photoFill(photo, {300, 100}).pixel(95, 50), qRgb(255, 0, 0));
}

TEST(PhotoFill, extremeShapesStayWithinMemory) {
  for (const QSize& size : {QSize(1, 1), QSize(1, 20000), QSize(20000, 1)}) {
    QImage photo(size, QImage::Format_RGB32);
    photo.fill(Qt::green);
    const QImage filled = photoFill(photo, {1170, 2532});
    ASSERT_EQ(filled.size(), QSize(1170, 2532));
    EXPECT_EQ(filled.pixel(1169, 2531), qRgb(0, 255, 0));
  }
}

}  // namespace
}  // namespace brisklet
