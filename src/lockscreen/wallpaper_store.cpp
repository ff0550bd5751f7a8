#include "lockscreen/wallpaper_store.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImageWriter>
#include <QPainter>
#include <QStandardPaths>
#include <QUuid>

#include "base/error.h"
#include "platform/library_messages.h"

namespace brisklet {

namespace {

constexpr int jpegQuality = 92;

QByteArray jpegOf(const QImage& image) {
  QImage opaque = image;
  if (image.hasAlphaChannel()) {
    opaque = QImage(image.size(), QImage::Format_RGB32);
    opaque.fill(Qt::black);
    QPainter(&opaque).drawImage(0, 0, image);
  }
  const QuietLibraries quiet;
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QImageWriter writer(&buffer, "jpeg");
  writer.setQuality(jpegQuality);
  if (!writer.write(opaque) || bytes.isEmpty())
    throw Error(QStringLiteral("Could not store the photo: it cannot be written as a JPEG."));
  return bytes;
}

}  // namespace

QString WallpaperStore::directory() {
  const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  return data.isEmpty() ? QString() : data + QStringLiteral("/Brisklet");
}

QString WallpaperStore::save(const QImage& image) {
  const QString folder = directory();
  if (folder.isEmpty())
    throw Error(QStringLiteral("Could not store the photo: this user has no folder for data."));
  if (!QDir().mkpath(folder))
    throw Error(QStringLiteral("Could not store the photo: the folder “%1” cannot be made.").arg(folder));
  const QByteArray jpeg = jpegOf(image);

  QString path = QStringLiteral("%1/wallpaper-%2.jpg")
                     .arg(folder, QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper());
  QFile file(path);
  const bool isOpen = file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
  if (!isOpen || file.write(jpeg) != jpeg.size() || !file.flush()) {
    const QString reason = file.errorString();
    file.close();
    // Not `file.remove()`, which does nothing when what is buffered cannot be written.
    if (isOpen) QFile::remove(path);
    throw Error(QStringLiteral("Could not store the photo as “%1”: %2.").arg(path, reason));
  }
  return path;
}

}  // namespace brisklet
