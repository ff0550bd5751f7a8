#include "lockscreen/wallpaper_store.h"

#include "base/error.h"
#include "drawing/pictures.h"
#include "model/text.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImageWriter>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr int jpegQuality = 92;

QByteArray jpegOf(const QImage& image) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QImageWriter writer(&buffer, "jpeg");
  writer.setQuality(jpegQuality);
  if (!writer.write(overBlack(image)) || bytes.isEmpty())
    throw Error(u"Could not store the photo: it cannot be written as a JPEG."_s);
  return bytes;
}

}  // namespace

QString WallpaperStore::directory() {
  const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  return data.isEmpty() ? QString() : data + u"/Brisklet"_s;
}

QString WallpaperStore::save(const QImage& image) {
  const QString folder = directory();
  if (folder.isEmpty()) throw Error(u"Could not store the photo: this user has no folder for data."_s);
  if (!QDir().mkpath(folder))
    throw Error(u"Could not store the photo: the folder “%1” cannot be made."_s.arg(folder));
  const QByteArray jpeg = jpegOf(image);

  QString path = u"%1/wallpaper-%2.jpg"_s.arg(folder, newUuid());
  QFile file(path);
  const bool isOpen = file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
  if (!isOpen || file.write(jpeg) != jpeg.size() || !file.flush()) {
    const QString reason = file.errorString();
    file.close();
    // Not `file.remove()`, which does nothing when what is buffered cannot be written.
    if (isOpen) QFile::remove(path);
    throw Error(u"Could not store the photo as “%1”: %2."_s.arg(path, reason));
  }
  return path;
}

}  // namespace brisklet
