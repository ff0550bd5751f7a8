#include "drawing/exif_orientation.h"

#include <QByteArrayView>
#include <QtEndian>
#include <array>

namespace brisklet {

namespace {

/// The number at an offset, 0 beyond the end.
template <typename Number>
Number numberAt(QByteArrayView data, qsizetype at, bool isLittleEndian) {
  if (at < 0 || at > data.size() - static_cast<qsizetype>(sizeof(Number))) return 0;
  return isLittleEndian ? qFromLittleEndian<Number>(data.data() + at)
                        : qFromBigEndian<Number>(data.data() + at);
}

/// The content of the first chunk of the name in a sequence of chunks, each a name and a length of four bytes
/// in either order.
QByteArrayView chunkNamed(QByteArrayView data, qsizetype at, QByteArrayView name, bool isPng) {
  while (at >= 0 && at <= data.size() - 8) {
    const qsizetype length = numberAt<quint32>(data, at + (isPng ? 0 : 4), !isPng);
    if (data.sliced(at + (isPng ? 4 : 0), 4) == name)
      return length <= data.size() - at - 8 ? data.sliced(at + 8, length) : QByteArrayView();
    at += 8 + (isPng ? length + 4 : length + (length & 1));
  }
  return {};
}

/// The orientation, 1 to 8, in a TIFF structure; 1 if there is none.
int orientationIn(QByteArrayView tiff) {
  const bool isLittleEndian = tiff.startsWith("II");
  const qsizetype directory = numberAt<quint32>(tiff, 4, isLittleEndian);
  const int entries = numberAt<quint16>(tiff, directory, isLittleEndian);
  for (int i = 0; i < entries; ++i) {
    const qsizetype entry = directory + 2 + 12 * i;
    if (numberAt<quint16>(tiff, entry, isLittleEndian) != 0x0112) continue;
    const int orientation = numberAt<quint16>(tiff, entry + 8, isLittleEndian);
    return orientation >= 1 && orientation <= 8 ? orientation : 1;
  }
  return 1;
}

}  // namespace

QImageIOHandler::Transformations exifTransformation(const QByteArray& file) {
  QByteArrayView exif =
      file.startsWith("RIFF") ? chunkNamed(file, 12, "EXIF", false) : chunkNamed(file, 8, "eXIf", true);
  if (exif.startsWith(QByteArrayView("Exif\0\0", 6))) exif = exif.sliced(6);
  using Handler = QImageIOHandler;
  static constexpr std::array byOrientation{Handler::TransformationNone,
                                            Handler::TransformationMirror,
                                            Handler::TransformationRotate180,
                                            Handler::TransformationFlip,
                                            Handler::TransformationFlipAndRotate90,
                                            Handler::TransformationRotate90,
                                            Handler::TransformationMirrorAndRotate90,
                                            Handler::TransformationRotate270};
  return byOrientation[static_cast<std::size_t>(orientationIn(exif) - 1)];
}

}  // namespace brisklet
