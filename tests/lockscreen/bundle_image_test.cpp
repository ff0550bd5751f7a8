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
  void TearDown() override {
    for (const QString& path : written_) QFile::remove(path);
    if (!existed_) QDir().rmdir(folder());
  }

  static QString folder() { return QCoreApplication::applicationDirPath() + "/images"; }

  void write(const QString& name, const QColor& color) {
    QDir().mkpath(folder());
    QImage image(4, 4, QImage::Format_ARGB32);
    image.fill(color);
    written_ << folder() + '/' + name;
    ASSERT_TRUE(image.save(written_.back(), name.endsWith("png") ? "png" : "jpeg", 100));
  }

 private:
  bool existed_ = QDir(folder()).exists();
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
  EXPECT_EQ(BundleImage::named("sample-app")->pixelColor(1, 1), QColor(Qt::blue));
  write("sample-app.jpg", Qt::black);
  EXPECT_EQ(BundleImage::named("sample-app")->pixelColor(1, 1), QColor(Qt::black));
  QFile broken(folder() + "/sample-app.jpg");
  ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
  broken.close();
  EXPECT_EQ(BundleImage::named("sample-app")->pixelColor(1, 1), QColor(Qt::blue));
}

TEST_F(BundleImageFiles, aNameThatCouldLeaveTheFolderIsNotFound) {
  write("sample-app.png", Qt::blue);
  write(".hidden.png", Qt::blue);
  for (const QString& name :
       {QString(), QStringLiteral("../images/sample-app"), QStringLiteral("./sample-app"),
        folder() + "/sample-app", QStringLiteral(".hidden"), QStringLiteral("a\\b"),
        QStringLiteral("sample-app.png") + QChar(0), QStringLiteral("..")})
    EXPECT_FALSE(BundleImage::named(name)) << name.toStdString();
}

}  // namespace

}  // namespace brisklet
