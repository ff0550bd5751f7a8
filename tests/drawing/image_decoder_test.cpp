#include "drawing/image_decoder.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QColorSpace>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// 64 x 32 with four colours: red, green / blue, white.
QImage quarters() {
  QImage image(64, 32, QImage::Format_RGB32);
  QPainter painter(&image);
  painter.fillRect(0, 0, 32, 16, QColor(255, 0, 0));
  painter.fillRect(32, 0, 32, 16, QColor(0, 255, 0));
  painter.fillRect(0, 16, 32, 16, QColor(0, 0, 255));
  painter.fillRect(32, 16, 32, 16, QColor(255, 255, 255));
  return image;
}

/// The colours of the four quarters in reading order, as letters.
QByteArray colorsOf(const QImage& image) {
  QByteArray colors;
  for (const double y : {0.25, 0.75}) {
    for (const double x : {0.25, 0.75}) {
      const QRgb pixel = image.pixel(int(image.width() * x), int(image.height() * y));
      const int bits = (qRed(pixel) > 128) << 2 | (qGreen(pixel) > 128) << 1 | (qBlue(pixel) > 128);
      colors += ".b.?r??w"[bits == 2 ? 0 : bits];
      if (bits == 2) colors.back() = 'g';
    }
  }
  return colors;
}

QByteArray encoded(const QImage& image, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  EXPECT_TRUE(image.save(&buffer, format, 95)) << format;
  return bytes;
}

QByteArray bigEndian(quint32 number, int bytes) {
  QByteArray result;
  for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) result += char(number >> shift & 0xff);
  return result;
}

QByteArray exifWith(int orientation) {
  return QByteArray("MM\0*\0\0\0\x08\0\1\1\x12\0\3\0\0\0\1", 18) + bigEndian(quint32(orientation), 2) +
         QByteArray(6, '\0');
}

class ImageDecoder : public testing::Test {
 protected:
  std::optional<QImage> decoded(const QByteArray& bytes,
                                Transparency transparency = Transparency::OverBlack) {
    const QString path = folder_.filePath("picture.txt");
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    file.close();
    return decodeImageFile(path, transparency);
  }

  QTemporaryDir folder_;
};

TEST_F(ImageDecoder, readsEveryFormatByItsContent) {
  for (const char* format : {"jpeg", "png", "webp", "bmp", "tiff"}) {
    const auto image = decoded(encoded(quarters(), format));
    ASSERT_TRUE(image) << format;
    EXPECT_EQ(image->size(), QSize(64, 32)) << format;
    EXPECT_EQ(image->format(), QImage::Format_RGB32) << format;
    EXPECT_EQ(colorsOf(*image), "rgbw") << format;
  }
}

// Both files hold the quarters turned clockwise by the format, and a tag that says the same again.
TEST_F(ImageDecoder, readsHeicAndAvifTurnedByTheFormatAlone) {
  for (const char* name : {"quarters.heic", "quarters.avif"}) {
    QFile file(QStringLiteral(TEST_DATA "/") + QString::fromLatin1(name));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    const QByteArray bytes = file.readAll();
    const auto image = decoded(bytes);
    ASSERT_TRUE(image) << name;
    EXPECT_EQ(image->size(), QSize(32, 64)) << name;
    EXPECT_EQ(colorsOf(*image), "brwg") << name;
    for (const int percent : {10, 50, 95})
      EXPECT_FALSE(decoded(bytes.left(bytes.size() * percent / 100))) << percent;
  }
}

TEST_F(ImageDecoder, turnsAndMirrorsByTheOrientationTag) {
  const char* expected[] = {"rgbw", "grwb", "wbgr", "bwrg", "rbgw", "brwg", "wgbr", "gwrb"};
  const QByteArray jpeg = encoded(quarters(), "jpeg"), png = encoded(quarters(), "png");
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const QByteArray exif = exifWith(orientation);
    QByteArray tagged[2] = {jpeg, png};
    tagged[0].insert(2,
                     "\xff\xe1" + bigEndian(quint32(exif.size() + 8), 2) + QByteArray("Exif\0\0", 6) + exif);
    tagged[1].insert(png.size() - 12,
                     bigEndian(quint32(exif.size()), 4) + "eXIf" + exif + QByteArray(4, '\0'));
    for (const QByteArray& bytes : tagged) {
      const auto image = decoded(bytes);
      ASSERT_TRUE(image) << bytes.left(4).toStdString();
      EXPECT_EQ(image->size(), orientation < 5 ? QSize(64, 32) : QSize(32, 64)) << orientation;
      EXPECT_EQ(colorsOf(*image), expected[orientation - 1]) << orientation << bytes.left(4).toStdString();
    }
  }
}

TEST_F(ImageDecoder, aFileCutShortIsUnreadable) {
  QImage busy(300, 200, QImage::Format_RGB32);
  for (int y = 0; y < 200; ++y)
    for (int x = 0; x < 300; ++x) busy.setPixel(x, y, qRgb(x * 255 / 300, y, x * y * 7 % 256));
  for (const char* format : {"jpeg", "png", "webp"}) {
    const QByteArray bytes = encoded(busy, format);
    for (const int percent : {0, 1, 10, 50, 99})
      EXPECT_FALSE(decoded(bytes.left(bytes.size() * percent / 100))) << format << " " << percent;
  }
}

TEST_F(ImageDecoder, absurdClaimsAreRefusedBeforeAnyPixel) {
  // The header with its checksum, so that it is the size that is refused.
  QByteArray png = encoded(quarters(), "png");
  png.replace(16, 17,
              bigEndian(100'000, 4) + bigEndian(100'000, 4) + bigEndian(0x08020000, 4) + '\0' +
                  bigEndian(0x27309c9f, 4));
  EXPECT_FALSE(decoded(png));

  // A progressive JPEG whose ten bytes a scan go over four megapixels each, and say nothing.
  const auto scanned = [](int scans) {
    QByteArray photo = QByteArray::fromHex("ffd8ffdb004300") + QByteArray(64, 1) +
                       QByteArray::fromHex("ffc2000b0807d007d001011100");
    for (const char* table : {"ffc400140001", "ffc400141001"})
      photo += QByteArray::fromHex(table) + QByteArray(16, 0);
    return photo + QByteArray::fromHex("ffda0008010100013f0000").repeated(scans) + "\xff\xd9";
  };
  EXPECT_TRUE(decoded(scanned(10)));
  EXPECT_FALSE(decoded(scanned(1000)));
}

TEST_F(ImageDecoder, pixelsAloneLeaveAPhoto) {
  QImage photo = quarters();
  photo.setDotsPerMeterX(11811);
  photo.setColorSpace(QColorSpace::AdobeRgb);
  for (const char* key : {"Author", "GPSPosition", "XML:com.adobe.xmp"})
    photo.setText(QString::fromLatin1(key), u"46.9° N, 7.4° E "_s.repeated(9));
  for (const char* format : {"png", "jpeg", "tiff", "webp"}) {
    const auto image = decoded(encoded(photo, format));
    ASSERT_TRUE(image) << format;
    EXPECT_TRUE(image->textKeys().isEmpty()) << format;
    EXPECT_FALSE(image->colorSpace().isValid()) << format;
    EXPECT_EQ(image->dotsPerMeterX(), QImage(1, 1, QImage::Format_RGB32).dotsPerMeterX()) << format;
  }
}

TEST_F(ImageDecoder, coloursOfAnotherColourSpaceBecomeSrgb) {
  QImage image(8, 8, QImage::Format_RGB32);
  image.fill(QColor(200, 100, 50));
  image.setColorSpace(QColorSpace::DisplayP3);
  const auto read = decoded(encoded(image, "png"));
  ASSERT_TRUE(read);
  QImage expected = image;
  expected.convertToColorSpace(QColorSpace::SRgb);
  EXPECT_NE(qRed(expected.pixel(4, 4)), 200);
  EXPECT_NEAR(qRed(read->pixel(4, 4)), qRed(expected.pixel(4, 4)), 1);
  EXPECT_NEAR(qBlue(read->pixel(4, 4)), qBlue(expected.pixel(4, 4)), 1);
}

TEST_F(ImageDecoder, transparentPartsComeOverBlackUnlessKept) {
  QImage image(2, 1, QImage::Format_ARGB32);
  image.setPixel(0, 0, qRgba(255, 255, 255, 0));
  image.setPixel(1, 0, qRgba(255, 255, 255, 128));
  const auto over = decoded(encoded(image, "png")), kept = decoded(encoded(image, "png"), Transparency::Kept);
  ASSERT_TRUE(over && kept);
  EXPECT_EQ(over->pixel(0, 0), qRgb(0, 0, 0));
  EXPECT_EQ(over->pixel(1, 0), qRgb(128, 128, 128));
  EXPECT_EQ(qAlpha(kept->pixel(0, 0)), 0);
  EXPECT_EQ(kept->format(), QImage::Format_ARGB32_Premultiplied);
}

}  // namespace

}  // namespace brisklet
