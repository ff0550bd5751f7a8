#include "lockscreen/bundle_image.h"

#include "drawing/image_decoder.h"

#include <QCoreApplication>
#include <QDir>

using namespace Qt::StringLiterals;

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
  for (const QString& folder : {u":/images"_s, programs.filePath(u"images"_s),
                                QDir::cleanPath(programs.filePath(u"../share/brisklet/images"_s))}) {
    for (const char* ending : {"jpg", "jpeg", "png"}) {
      const QString path = u"%1/%2.%3"_s.arg(folder, name, QLatin1String(ending));
      if (auto image = decodeImageFile(path, Transparency::Kept)) return image;
    }
  }
  return std::nullopt;
}

}  // namespace brisklet
