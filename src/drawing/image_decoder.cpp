#include "drawing/image_decoder.h"

#include "drawing/exif_orientation.h"
#include "drawing/float_plane.h"
#include "drawing/pictures.h"

#include <libheif/heif.h>

#include <QBuffer>
#include <QByteArray>
#include <QColorSpace>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QTransform>
#include <QtEndian>
#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

bool isAllowedSize(qint64 width, qint64 height) {
  return width > 0 && height > 0 && width <= maxImagePixels / height;
}

/// The format by the first bytes, as Qt names it; "heif" for HEIC and AVIF; empty if it is none of ours.
QByteArray formatOf(const QByteArray& data) {
  const auto at = [&](qsizetype offset, QByteArrayView bytes) {
    return data.size() >= offset + bytes.size() && QByteArrayView(data).sliced(offset, bytes.size()) == bytes;
  };
  if (at(0, "\xff\xd8\xff")) return "jpeg";
  if (at(0, "\x89PNG\r\n\x1a\n")) return "png";
  if (at(0, "RIFF") && at(8, "WEBP")) return "webp";
  if (at(0, "GIF87a") || at(0, "GIF89a")) return "gif";
  if (at(0, "BM")) return "bmp";
  if (at(0, QByteArrayView("II*\0", 4)) || at(0, QByteArrayView("MM\0*", 4))) return "tiff";
  if (at(4, "ftyp")) return "heif";
  return {};
}

/// What makes the picture of a file. Comments, texts and thumbnails stay out: their readers may make
/// thousands of bytes of one.
struct PictureData {
  QByteArray bytes;  // empty if the picture is cut short
  qint64 scans = 1;  // how often a decoder goes over it
};

/// Qt's reader would fill up the rest of a cut JPEG with grey.
PictureData pictureInJpeg(QByteArrayView data) {
  PictureData picture{data.first(2).toByteArray(), 0};
  const auto byteAt = [&](qsizetype at) { return at < data.size() ? static_cast<uchar>(data[at]) : 0; };
  for (qsizetype at = 2, length = 0; at + 1 < data.size(); at += length) {
    const int marker = byteAt(at + 1);
    bool isNeeded = true;
    if (byteAt(at) != 0xff) {
      // Within the entropy-coded data of a scan.
      const qsizetype next = data.indexOf('\xff', at);
      length = (next < 0 ? data.size() : next) - at;
    } else if (marker == 0xff) {
      length = 1;
    } else if (marker <= 1 || (marker >= 0xd0 && marker <= 0xd9)) {
      length = 2;
    } else {
      length = std::min<qsizetype>(2 + (byteAt(at + 2) << 8 | byteAt(at + 3)), data.size() - at);
      const QByteArrayView content = data.sliced(at, length).sliced(std::min<qsizetype>(4, length));
      constexpr int app0 = 0xe0, app1 = 0xe1, app2 = 0xe2, app14 = 0xee, app15 = 0xef, comment = 0xfe;
      if (marker >= app0 && marker <= app15)
        isNeeded = marker == app0 || marker == app14 || (marker == app1 && content.startsWith("Exif")) ||
                   (marker == app2 && content.startsWith("ICC_PROFILE"));
      else
        isNeeded = marker != comment;
      if (marker == 0xda) ++picture.scans;
    }
    if (isNeeded) picture.bytes.append(data.sliced(at, length));
    if (byteAt(at) == 0xff && marker == 0xd9) return picture;
  }
  return {};
}

PictureData pictureInPng(QByteArrayView data) {
  PictureData picture{data.first(8).toByteArray()};
  for (qsizetype at = 8, length = 0; data.size() - at >= 12; at += length) {
    length = 12 + static_cast<qsizetype>(qFromBigEndian<quint32>(data.data() + at));
    if (length > data.size() - at) return {};
    const QByteArrayView name = data.sliced(at + 4, 4);
    // Capitals name the chunks that every decoder needs; of the others, those of colour and transparency.
    if (QChar::isUpper(static_cast<uchar>(name[0])) || name == "tRNS" || name == "gAMA" || name == "cHRM" ||
        name == "sRGB" || name == "iCCP")
      picture.bytes.append(data.sliced(at, length));
    if (name == "IEND") return picture;
  }
  return {};
}

PictureData pictureIn(const QByteArray& data, const QByteArray& format) {
  if (format == "jpeg") return pictureInJpeg(data);
  if (format == "png") return pictureInPng(data);
  return {data};
}

/// Ten bytes are a scan over the whole picture: without a limit, a small file would take hours. Programs
/// write about ten scans.
bool isAllowedWork(qint64 scans, const QSize& size) {
  constexpr qint64 scansOfTheLargest = 16, pixelsPerScanAtLeast = 1'000'000;
  return scans <= scansOfTheLargest * maxImagePixels /
                      (static_cast<qint64>(size.width()) * size.height() + pixelsPerScanAtLeast);
}

QImage transformed(const QImage& image, QImageIOHandler::Transformations transformation) {
  const QImage mirrored = image.mirrored(transformation.testFlag(QImageIOHandler::TransformationMirror),
                                         transformation.testFlag(QImageIOHandler::TransformationFlip));
  return transformation.testFlag(QImageIOHandler::TransformationRotate90)
             ? mirrored.transformed(QTransform().rotate(90))
             : mirrored;
}

std::optional<QImage> decodedByQt(const QByteArray& data, const QByteArray& format) {
  PictureData picture = pictureIn(data, format);
  if (picture.bytes.isEmpty()) return std::nullopt;
  QBuffer buffer(&picture.bytes);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer, format);
  reader.setAutoDetectImageFormat(false);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  if (!isAllowedSize(size.width(), size.height()) || !isAllowedWork(picture.scans, size)) return std::nullopt;
  QImage image = reader.read();
  if (image.isNull()) return std::nullopt;
  if (format == "png" || format == "webp") {
    const auto transformation = exifTransformation(data);
    if (transformation != QImageIOHandler::TransformationNone &&
        !reader.supportsOption(QImageIOHandler::ImageTransformation))
      image = transformed(image, transformation);
  }
  return image;
}

struct FreeContext {
  void operator()(heif_context* context) const { heif_context_free(context); }
};
struct FreeHandle {
  void operator()(heif_image_handle* handle) const { heif_image_handle_release(handle); }
};
struct FreeImage {
  void operator()(heif_image* image) const { heif_image_release(image); }
};
struct FreeOptions {
  void operator()(heif_decoding_options* options) const { heif_decoding_options_free(options); }
};

bool isGood(const heif_error& error) {
  return error.code == heif_error_Ok;
}

QColorSpace colorSpaceOf(const heif_image_handle* handle) {
  if (const std::size_t size = heif_image_handle_get_raw_color_profile_size(handle); size > 0) {
    QByteArray profile(static_cast<qsizetype>(size), '\0');
    if (isGood(heif_image_handle_get_raw_color_profile(handle, profile.data())))
      return QColorSpace::fromIccProfile(profile);
  }
  return {};
}

/// The HEIC or AVIF picture. The format's own rotation and mirroring is applied; the EXIF orientation beside
/// it says the same again and is not.
std::optional<QImage> decodedByHeif(const QByteArray& data) {
  const std::unique_ptr<heif_context, FreeContext> context(heif_context_alloc());
  if (!context || !isGood(heif_context_read_from_memory_without_copy(
                      context.get(), data.constData(), static_cast<std::size_t>(data.size()), nullptr)))
    return std::nullopt;

  heif_image_handle* rawHandle = nullptr;
  if (!isGood(heif_context_get_primary_image_handle(context.get(), &rawHandle))) return std::nullopt;
  const std::unique_ptr<heif_image_handle, FreeHandle> handle(rawHandle);
  if (!isAllowedSize(heif_image_handle_get_width(handle.get()), heif_image_handle_get_height(handle.get())))
    return std::nullopt;

  const std::unique_ptr<heif_decoding_options, FreeOptions> options(heif_decoding_options_alloc());
  if (!options) return std::nullopt;
  options->convert_hdr_to_8bit = 1;
  heif_image* rawImage = nullptr;
  if (!isGood(heif_decode_image(handle.get(), &rawImage, heif_colorspace_RGB, heif_chroma_interleaved_RGBA,
                                options.get())))
    return std::nullopt;
  const std::unique_ptr<heif_image, FreeImage> decoded(rawImage);

  int stride = 0;
  const uchar* pixels = heif_image_get_plane_readonly(decoded.get(), heif_channel_interleaved, &stride);
  const int width = heif_image_get_width(decoded.get(), heif_channel_interleaved);
  const int height = heif_image_get_height(decoded.get(), heif_channel_interleaved);
  if (!pixels || !isAllowedSize(width, height)) return std::nullopt;
  const bool hasAlpha = heif_image_handle_has_alpha_channel(handle.get()) != 0;
  const bool premultiplied = heif_image_handle_is_premultiplied_alpha(handle.get()) != 0;
  QImage image = QImage(pixels, width, height, stride,
                        !hasAlpha       ? QImage::Format_RGBX8888
                        : premultiplied ? QImage::Format_RGBA8888_Premultiplied
                                        : QImage::Format_RGBA8888)
                     .convertToFormat(hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
  if (image.isNull()) return std::nullopt;
  image.setColorSpace(colorSpaceOf(handle.get()));
  return image;
}

/// Eight bits of each channel, dithered: a gradient of sixteen would come out in bands.
QImage inEightBits(const QImage& image) {
  const QImage deep = image.convertToFormat(QImage::Format_RGBA64);
  QImage shallow(image.size(), QImage::Format_ARGB32);
  for (int y = 0; y < deep.height(); ++y) {
    const auto* from = reinterpret_cast<const QRgba64*>(deep.constScanLine(y));
    auto* to = reinterpret_cast<QRgb*>(shallow.scanLine(y));
    for (int x = 0; x < deep.width(); ++x) {
      const auto level = [dither = ditherAt(x, y)](quint16 value) {
        return static_cast<int>(static_cast<float>(value) / 257 + dither * 255 / 256);
      };
      to[x] = qRgba(level(from[x].red()), level(from[x].green()), level(from[x].blue()), from[x].alpha8());
    }
  }
  if (!image.hasAlphaChannel()) shallow.convertTo(QImage::Format_RGB32);
  return shallow;
}

/// The same pixels without what else a picture carries: texts, a resolution, a colour space.
QImage pixelsOf(QImage image) {
  auto* owner = new QImage(std::move(image));
  return {owner->bits(),
          owner->width(),
          owner->height(),
          owner->bytesPerLine(),
          owner->format(),
          [](void* kept) { delete static_cast<QImage*>(kept); },
          owner};
}

}  // namespace

std::optional<QImage> decodeImageFile(const QString& path, Transparency transparency) {
  // Neither folders, nor pipes that block, nor devices that never end.
  const QFileInfo info(path);
  if (!info.isFile() || info.size() <= 0 || info.size() > maxImageFileBytes) return std::nullopt;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QByteArray data = file.read(info.size());

  const QByteArray format = formatOf(data);
  if (format.isEmpty()) return std::nullopt;
  std::optional<QImage> decoded = format == "heif" ? decodedByHeif(data) : decodedByQt(data, format);
  if (!decoded) return std::nullopt;
  QImage image = *std::move(decoded);

  const QColorSpace colorSpace = image.colorSpace();
  if (image.depth() == 64 || image.format() == QImage::Format_Grayscale16) image = inEightBits(image);
  image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
  if (colorSpace.isValid() && colorSpace != QColorSpace(QColorSpace::SRgb)) {
    image.setColorSpace(colorSpace);
    image.convertToColorSpace(QColorSpace::SRgb);
  }
  if (transparency == Transparency::OverBlack)
    image = overBlack(std::move(image));
  else
    image.convertTo(QImage::Format_ARGB32_Premultiplied);
  if (image.isNull()) return std::nullopt;
  return pixelsOf(std::move(image));
}

QStringList readableImageSuffixes() {
  QStringList suffixes;
  const QList<QByteArray> readable = QImageReader::supportedImageFormats();
  for (const char* suffix : {"jpg", "jpeg", "png", "webp", "gif", "bmp", "tif", "tiff"})
    if (readable.contains(suffix)) suffixes.append(QLatin1String(suffix));
  if (heif_have_decoder_for_format(heif_compression_HEVC)) suffixes << u"heic"_s << u"heif"_s;
  if (heif_have_decoder_for_format(heif_compression_AV1)) suffixes << u"avif"_s;
  return suffixes;
}

}  // namespace brisklet
