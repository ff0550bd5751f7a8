#pragma once

#include <QByteArray>
#include <QImageIOHandler>

namespace brisklet {

/// What the orientation tag in a PNG's or a WebP's EXIF data says is to be done with the picture. (Qt reads
/// the tag of JPEG and TIFF itself.)
[[nodiscard]] QImageIOHandler::Transformations exifTransformation(const QByteArray& file);

}  // namespace brisklet
