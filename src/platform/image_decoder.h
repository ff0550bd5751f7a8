#pragma once

#include <QImage>
#include <QString>
#include <QStringList>
#include <optional>

namespace brisklet {

/// Pictures that claim more pixels than this are not decoded.
inline constexpr qint64 maxImagePixels = 300'000'000;

/// The picture in a file (JPEG, PNG, WebP, GIF, BMP, TIFF, HEIC, AVIF), upright by its orientation tag and in
/// sRGB; nothing when it is missing, unreadable or beyond `maxImagePixels`.
[[nodiscard]] std::optional<QImage> decodeImageFile(const QString& path);

/// The file name endings that `decodeImageFile` reads, in lower case without a dot.
[[nodiscard]] QStringList readableImageSuffixes();

}  // namespace brisklet
