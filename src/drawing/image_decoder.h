#pragma once

#include <QImage>
#include <QString>
#include <QStringList>
#include <optional>

namespace brisklet {

/// Pictures that claim more pixels than this, or with 16 bits a channel half as many, are not decoded.
inline constexpr qint64 maxImagePixels = 300'000'000;

/// Files longer than this are not read.
inline constexpr qint64 maxImageFileBytes = 512LL << 20;

/// What becomes of transparent parts. `OverBlack` gives RGB32, `Kept` gives ARGB32 premultiplied.
enum class Transparency { OverBlack, Kept };

/// The picture in a file (JPEG, PNG, WebP, GIF, BMP, TIFF, HEIC, AVIF; the content decides, not the name),
/// upright by its orientation tag and in sRGB; of an animation, the first picture. Pixels alone: what else
/// the file tells, such as where a photo was taken, stays behind. Nothing when the file is missing, not a
/// regular file, unreadable or beyond the limits.
[[nodiscard]] std::optional<QImage> decodeImageFile(const QString& path,
                                                    Transparency transparency = Transparency::OverBlack);

/// The file name endings that `decodeImageFile` reads, in lower case without a dot.
[[nodiscard]] QStringList readableImageSuffixes();

}  // namespace brisklet
