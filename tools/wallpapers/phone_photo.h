#pragma once

#include <QImage>
#include <QString>

namespace brisklet {

/// Writes an upright picture the way a phone held upright does: the sensor's rows run along the phone's long
/// side, and an Exif tag says how to turn them. False if the file cannot be written.
[[nodiscard]] bool writePhonePhoto(const QImage& picture, const QString& path, int quality);

}  // namespace brisklet
