#include "lockscreen/wallpaper_store.h"

#include "base/error.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace brisklet {

namespace {

/// A data directory of its own.
class WallpaperStoreFolder : public testing::Test {
 protected:
  WallpaperStoreFolder() { qputenv("XDG_DATA_HOME", data_.filePath("new/share").toLocal8Bit()); }
  ~WallpaperStoreFolder() override {
    before_.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", before_);
  }

  static QImage photo(int width) {
    QImage image(width, 1, QImage::Format_ARGB32);
    image.fill(QColor(200, 40, 20));
    return image;
  }
  [[nodiscard]] static QStringList stored() {
    return QDir(WallpaperStore::directory()).entryList(QDir::Files);
  }

  QTemporaryDir data_;
  QByteArray before_ = qgetenv("XDG_DATA_HOME");
};

TEST_F(WallpaperStoreFolder, everySaveIsANewJpegOfTheSamePixels) {
  const QRegularExpression path("^" + QRegularExpression::escape(data_.filePath("new/share/Brisklet")) +
                                "/wallpaper-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.jpg$");
  for (int saves = 1; saves <= 2; ++saves) {
    const QString saved = WallpaperStore::save(photo(61));
    EXPECT_TRUE(path.match(saved).hasMatch()) << saved.toStdString();
    const QImage image(saved, "jpeg");
    EXPECT_EQ(image.size(), QSize(61, 1));
    EXPECT_NEAR(image.pixelColor(30, 0).red(), 200, 4);
    EXPECT_EQ(stored().size(), saves);
  }
}

TEST_F(WallpaperStoreFolder, aFailedSaveThrowsAndLeavesNothing) {
  EXPECT_THROW((void)WallpaperStore::save(QImage()), Error);
  EXPECT_TRUE(stored().isEmpty());

  QFile inTheWay(data_.filePath("file"));
  ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
  qputenv("XDG_DATA_HOME", inTheWay.fileName().toLocal8Bit());
  EXPECT_THROW((void)WallpaperStore::save(photo(1)), Error);
}

}  // namespace

}  // namespace brisklet
