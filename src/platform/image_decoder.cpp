#include "platform/image_decoder.h"

#include "platform/exif_orientation.h"
#include "platform/library_messages.h"

#include <libheif/heif.h>

#include <QBuffer>
#include <QByteArray>
#include <QColorSpace>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QTransform>
#include <QtEndian>
#include <cstdlib>
#include <memory>

namespace brisklet {

namespace {

/// Memory that Qt may take for one picture: as many pixels as are allowed, of 8 bits a channel. Of 16 bits,
/// half as many.
constexpr int maxAllocationMebibytes = static_cast<int>((maxImagePixels * 4) >> 20) + 1;

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

quint32 byteAt(const QByteArray& data, qsizetype at) {
  return at >= 0 && at < data.size() ? static_cast<uchar>(data[at]) : 0;
}

/// How often the decoder goes over the picture; 0 if its end is not there. Qt's reader fills up the rest of a
/// cut JPEG with grey.
qint64 jpegScans(const QByteArray& data) {
  qint64 scans = 0;
  qsizetype at = 2;
  while (at + 1 < data.size()) {
    if (byteAt(data, at) != 0xff) {
      // Within the entropy-coded data of a scan.
      at = data.indexOf('\xff', at);
      if (at < 0) return 0;
      continue;
    }
    const quint32 marker = byteAt(data, at + 1);
    if (marker == 0xd9) return scans;
    if (marker == 0xda) ++scans;
    if (marker == 0xff) {
      at += 1;
    } else if (marker == 0 || marker == 1 || (marker >= 0xd0 && marker <= 0xd8)) {
      at += 2;
    } else {
      at += 2 + qsizetype(byteAt(data, at + 2) << 8 | byteAt(data, at + 3));
    }
  }
  return 0;
}

/// Ten bytes are a scan over the whole picture: without a limit, a small file would take hours. Programs
/// write about ten scans.
bool isAllowedWork(qint64 scans, const QSize& size) {
  constexpr qint64 scansOfTheLargest = 16, pixelsPerScanAtLeast = 1'000'000;
  return scans <=
         scansOfTheLargest * maxImagePixels / (qint64(size.width()) * size.height() + pixelsPerScanAtLeast);
}

/// Whether the chunks go on to the last one. libpng would say so itself, but to the console.
bool isCompletePng(const QByteArray& data) {
  for (qsizetype at = 8; at + 12 <= data.size();) {
    const qsizetype length = byteAt(data, at) << 24 | byteAt(data, at + 1) << 16 | byteAt(data, at + 2) << 8 |
                             byteAt(data, at + 3);
    if (QByteArrayView(data).sliced(at + 4, 4) == "IEND") return true;
    at += length + 12;
  }
  return false;
}

/// Whether the first picture is there to its end. Qt's reader gives what it has.
bool isCompleteGif(const QByteArray& data) {
  const auto colorTableBytes = [&](quint32 flags) {
    return qsizetype(flags & 0x80 ? 3 << ((flags & 7) + 1) : 0);
  };
  const auto afterBlocks = [&](qsizetype at) {
    while (byteAt(data, at) != 0) at += 1 + byteAt(data, at);
    return at + 1;
  };
  qsizetype at = 13 + colorTableBytes(byteAt(data, 10));
  while (byteAt(data, at) == '!') at = afterBlocks(at + 2);
  if (byteAt(data, at) != ',') return false;
  at += 10 + colorTableBytes(byteAt(data, at + 9));
  return afterBlocks(at + 1) <= data.size();
}

/// Whether all pixels are there, if they are not compressed. Qt's reader leaves out what is not.
bool isCompleteBmp(const QByteArray& data) {
  const auto number = [&](qsizetype at, int bytes) {
    qint64 value = 0;
    for (int i = bytes - 1; i >= 0; --i) value = value << 8 | byteAt(data, at + i);
    return value;
  };
  const bool isOld = number(14, 4) == 12;
  const qint64 width = isOld ? number(18, 2) : number(18, 4);
  const qint64 height =
      isOld ? number(20, 2) : std::abs(static_cast<qint64>(static_cast<qint32>(number(22, 4))));
  const qint64 bitsPerPixel = number(isOld ? 24 : 28, 2);
  const qint64 compression = isOld ? 0 : number(30, 4);
  constexpr qint64 none = 0, bitFields = 3;
  if (compression != none && compression != bitFields) return true;
  const qint64 bytesPerRow = (width * bitsPerPixel + 31) / 32 * 4;
  return isAllowedSize(width, height) && data.size() >= number(10, 4) + bytesPerRow * height;
}

/// Whether the directory, which most writers put behind the pixels, is there. libtiff's word on it would go
/// to the console too.
bool isCompleteTiff(const QByteArray& data) {
  if (data.size() < 8) return false;
  const char* offset = data.constData() + 4;
  return (data[0] == 'I' ? qFromLittleEndian<quint32>(offset) : qFromBigEndian<quint32>(offset)) + 2LL <
         data.size();
}

bool isComplete(const QByteArray& data, const QByteArray& format) {
  if (format == "jpeg") return jpegScans(data) > 0;
  if (format == "png") return isCompletePng(data);
  if (format == "gif") return isCompleteGif(data);
  if (format == "bmp") return isCompleteBmp(data);
  if (format == "tiff") return isCompleteTiff(data);
  return true;
}

QImage transformed(const QImage& image, QImageIOHandler::Transformations transformation) {
  const QImage mirrored = image.mirrored(transformation.testFlag(QImageIOHandler::TransformationMirror),
                                         transformation.testFlag(QImageIOHandler::TransformationFlip));
  return transformation.testFlag(QImageIOHandler::TransformationRotate90)
             ? mirrored.transformed(QTransform().rotate(90))
             : mirrored;
}

std::optional<QImage> decodedByQt(QByteArray& data, const QByteArray& format) {
  if (!isComplete(data, format)) return std::nullopt;
  QBuffer buffer(&data);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer, format);
  reader.setAutoDetectImageFormat(false);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  if (!isAllowedSize(size.width(), size.height())) return std::nullopt;
  if (format == "jpeg" && !isAllowedWork(jpegScans(data), size)) return std::nullopt;
  if (QImageReader::allocationLimit() < maxAllocationMebibytes)
    QImageReader::setAllocationLimit(maxAllocationMebibytes);
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

/// Black behind what is transparent: with premultiplied colours, only the alpha changes.
void putOverBlack(QImage& image) {
  for (int y = 0; y < image.height(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < image.width(); ++x) row[x] |= 0xff000000U;
  }
  image.reinterpretAsFormat(QImage::Format_RGB32);
}

}  // namespace

std::optional<QImage> decodeImageFile(const QString& path, Transparency transparency) {
  // Neither folders, nor pipes that block, nor devices that never end.
  const QFileInfo info(path);
  if (!info.isFile() || info.size() <= 0 || info.size() > maxImageFileBytes) return std::nullopt;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  QByteArray data = file.read(info.size());

  // Bad files are no news: what the readers say of them is of no use to anybody.
  const QuietLibraries quiet;
  const QByteArray format = formatOf(data);
  if (format.isEmpty()) return std::nullopt;
  std::optional<QImage> decoded = format == "heif" ? decodedByHeif(data) : decodedByQt(data, format);
  if (!decoded) return std::nullopt;
  QImage image = *std::move(decoded);

  const QColorSpace colorSpace = image.colorSpace();
  image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
  if (colorSpace.isValid() && colorSpace != QColorSpace(QColorSpace::SRgb)) {
    image.setColorSpace(colorSpace);
    image.convertToColorSpace(QColorSpace::SRgb);
  }
  image.setColorSpace(QColorSpace::SRgb);
  if (transparency == Transparency::Kept || image.hasAlphaChannel())
    image.convertTo(QImage::Format_ARGB32_Premultiplied);
  if (transparency == Transparency::OverBlack && image.hasAlphaChannel()) putOverBlack(image);
  if (image.isNull()) return std::nullopt;
  return image;
}

QStringList readableImageSuffixes() {
  QStringList suffixes;
  const QList<QByteArray> readable = QImageReader::supportedImageFormats();
  for (const char* suffix : {"jpg", "jpeg", "png", "webp", "gif", "bmp", "tif", "tiff"})
    if (readable.contains(suffix)) suffixes.append(QLatin1String(suffix));
  if (heif_have_decoder_for_format(heif_compression_HEVC))
    suffixes << QStringLiteral("heic") << QStringLiteral("heif");
  if (heif_have_decoder_for_format(heif_compression_AV1)) suffixes << QStringLiteral("avif");
  return suffixes;
}

}  // namespace brisklet
