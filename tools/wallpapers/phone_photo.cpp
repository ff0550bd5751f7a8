#include "phone_photo.h"

#include <QBuffer>
#include <QSaveFile>
#include <QTransform>

namespace brisklet {

namespace {

/// An APP1 segment with a big-endian TIFF directory of one entry, Orientation (0x0112, SHORT): 6, "turn a
/// quarter to the right to see it upright" (Exif 2.3, 4.6.4 A).
constexpr unsigned char orientationSegment[] = {0xff, 0xe1, 0x00, 0x22, 'E',  'x',  'i',  'f',  0x00,
                                                0x00, 'M',  'M',  0x00, 0x2a, 0x00, 0x00, 0x00, 0x08,
                                                0x00, 0x01, 0x01, 0x12, 0x00, 0x03, 0x00, 0x00, 0x00,
                                                0x01, 0x00, 0x06, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00};

}  // namespace

bool writePhonePhoto(const QImage& picture, const QString& path, int quality) {
  const QImage asSensed = picture.transformed(QTransform().rotate(-90));
  QBuffer jpeg;
  if (!jpeg.open(QIODevice::WriteOnly) || !asSensed.save(&jpeg, "jpg", quality)) return false;
  constexpr qsizetype startMarker = 2;
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return false;
  file.write(jpeg.data().left(startMarker));
  file.write(reinterpret_cast<const char*>(orientationSegment), sizeof orientationSegment);
  file.write(jpeg.data().mid(startMarker));
  return file.commit();
}

}  // namespace brisklet
