#include "lockscreen/wallpaper_store.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "base/error.h"

namespace brisklet {

namespace {

/// A data directory of its own.
class WallpaperStoreFolder : public testing::Test {
 protected:
  void SetUp() override { qputenv("XDG_DATA_HOME", data_.filePath("new/share").toLocal8Bit()); }
  void TearDown() override {
    if (before_.isNull())
      qunsetenv("XDG_DATA_HOME");
    else
      qputenv("XDG_DATA_HOME", before_);
  }

  static QImage photo() {
    QImage image(61, 33, QImage::Format_ARGB32);
    image.fill(QColor(200, 40, 20));
    return image;
  }

  QTemporaryDir data_;
  QByteArray before_ = qgetenv("XDG_DATA_HOME");
};

TEST_F(WallpaperStoreFolder, everySaveIsANewJpegOfTheSamePixels) {
  const QString first = WallpaperStore::save(photo()), second = WallpaperStore::save(photo());
  EXPECT_NE(first, second);
  EXPECT_EQ(QDir(WallpaperStore::directory()).entryList(QDir::Files).size(), 2);
  for (const QString& path : {first, second}) {
    EXPECT_EQ(QFileInfo(path).path(), data_.filePath("new/share/Brisklet"));
    const QString uuid = QStringLiteral("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}");
    EXPECT_TRUE(
        QRegularExpression("^wallpaper-" + uuid + "\\.jpg$").match(QFileInfo(path).fileName()).hasMatch());
    const QImage stored(path, "jpeg");
    EXPECT_EQ(stored.size(), QSize(61, 33));
    EXPECT_NEAR(stored.pixelColor(30, 15).red(), 200, 4);
  }
}

TEST_F(WallpaperStoreFolder, aFailedSaveThrowsAndLeavesNothing) {
  EXPECT_THROW((void)WallpaperStore::save(QImage()), Error);
  EXPECT_THROW((void)WallpaperStore::save(QImage(70'000, 1, QImage::Format_RGB32)), Error);
  EXPECT_TRUE(QDir(WallpaperStore::directory()).entryList(QDir::Files).isEmpty());

  QFile inTheWay(data_.filePath("file"));
  ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
  qputenv("XDG_DATA_HOME", inTheWay.fileName().toLocal8Bit());
  EXPECT_THROW((void)WallpaperStore::save(photo()), Error);
}

}  // namespace

}  // namespace brisklet
