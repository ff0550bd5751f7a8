#include "lockscreen/bundle_image.h"

#include <QCoreApplication>
#include <QDir>

#include "platform/image_decoder.h"

namespace brisklet {

namespace {

bool isPlainFileName(const QString& name) {
  return !name.isEmpty() && !name.startsWith(u'.') && !name.contains(u'/') && !name.contains(u'\\') &&
         !name.contains(QChar(u'\0'));
}

}  // namespace

std::optional<QImage> BundleImage::named(const QString& name) {
  if (!isPlainFileName(name)) return std::nullopt;
  const QDir programs(QCoreApplication::applicationDirPath());
  for (const QString& folder :
       {QStringLiteral(":/images"), programs.filePath(QStringLiteral("images")),
        QDir::cleanPath(programs.filePath(QStringLiteral("../share/brisklet/images")))}) {
    for (const char* ending : {"jpg", "jpeg", "png"}) {
      const QString path = QStringLiteral("%1/%2.%3").arg(folder, name, QLatin1String(ending));
      if (auto image = decodeImageFile(path, Transparency::Kept)) return image;
    }
  }
  return std::nullopt;
}

}  // namespace brisklet
