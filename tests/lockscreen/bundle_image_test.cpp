#include "lockscreen/bundle_image.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace brisklet {

namespace {

/// Files of its own in the folder `images` beside the executable.
class BundleImageFiles : public testing::Test {
 protected:
  ~BundleImageFiles() override {
    for (const QString& path : written_) QFile::remove(path);
    QDir().rmdir(folder_);  // unless others are in it
  }

  void write(const QString& name, const QColor& color) {
    QDir().mkpath(folder_);
    QImage image(4, 4, QImage::Format_ARGB32);
    image.fill(color);
    written_ << folder_ + '/' + name;
    ASSERT_TRUE(image.save(written_.back()));
  }
  [[nodiscard]] static QColor colorOf(const QString& name) {
    return BundleImage::named(name).value_or(QImage()).pixelColor(1, 1);
  }

  const QString folder_ = QCoreApplication::applicationDirPath() + "/images";
  QStringList written_;
};

TEST_F(BundleImageFiles, embeddedPicturesComeFirstAndKeepTheirTransparency) {
  const auto embedded = BundleImage::named("tiktok");
  ASSERT_TRUE(embedded);
  EXPECT_TRUE(embedded->hasAlphaChannel());
  write("tiktok.jpg", Qt::green);
  EXPECT_EQ(BundleImage::named("tiktok"), embedded);
}

TEST_F(BundleImageFiles, endingsAreTriedInOrderAndWhatDoesNotDecodeIsPassedOver) {
  EXPECT_FALSE(BundleImage::named("sample-app"));
  write("sample-app.png", Qt::blue);
  EXPECT_EQ(colorOf("sample-app"), QColor(Qt::blue));
  write("sample-app.jpg", Qt::black);
  EXPECT_EQ(colorOf("sample-app"), QColor(Qt::black));
  ASSERT_TRUE(QFile::resize(folder_ + "/sample-app.jpg", 0));
  EXPECT_EQ(colorOf("sample-app"), QColor(Qt::blue));
}

TEST_F(BundleImageFiles, aNameThatCouldLeaveTheFolderIsNotFound) {
  write("sample-app.png", Qt::blue);
  write(".hidden.png", Qt::blue);
  const QStringList names{"",
                          "../images/sample-app",
                          "x/../tiktok",
                          folder_ + "/sample-app",
                          ".hidden",
                          "a\\b",
                          "..",
                          QString("sample-app.png") + QChar(0)};
  for (const QString& name : names) EXPECT_FALSE(BundleImage::named(name)) << name.toStdString();
}

}  // namespace

}  // namespace brisklet
