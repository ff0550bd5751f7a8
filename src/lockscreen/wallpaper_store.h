#pragma once

#include <QImage>
#include <QString>

namespace brisklet {

namespace WallpaperStore {

/// The folder of the stored photos: `Brisklet` in the user's data directory.
[[nodiscard]] QString directory();

/// Stores a JPEG copy (quality 92) under a new name and returns its path. Throws `Error`; a failed save
/// leaves no file.
[[nodiscard]] QString save(const QImage& image);

}  // namespace WallpaperStore

}  // namespace brisklet
