#include "lockscreen/wallpaper.h"

#include "drawing/image_decoder.h"
#include "drawing/pictures.h"
#include "drawing/resampled.h"
#include "lockscreen/bundle_image.h"
#include "model/catalogue.h"
#include "model/color.h"

#include <QColor>
#include <QFileInfo>
#include <QRectF>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

/// Other pictures are made from one of this size, so that a window can be resized without decoding anew.
constexpr QSize printSize(1170, 2532);

QImage plainFill(const QSize& pixels) {
  const Color color = Color::fromHex(u"#9bb4be"_s);
  QImage image(pixels, QImage::Format_RGB32);
  image.fill(QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                              static_cast<float>(color.blue)));
  return image;
}

}  // namespace

QImage photoFill(const QImage& photo, const QSize& pixels) {
  if (photo.isNull() || pixels.isEmpty()) return {};
  const double scale = std::max(static_cast<double>(pixels.width()) / photo.width(),
                                static_cast<double>(pixels.height()) / photo.height());
  QRectF shown(0, 0, pixels.width() / scale, pixels.height() / scale);
  shown.moveCenter({photo.width() / 2.0, photo.height() / 2.0});
  return resampled(photo, shown, pixels);
}

const QImage& WallpaperSource::filled(const SequenceDocument& document, const QSize& pixels,
                                      PhotoChanges changes) {
  std::pair asked{document.wallpaper, document.wallpaperUrl};
  if (changes == PhotoChanges::Followed || asked_ != asked) origin_ = originOf(document);
  asked_ = std::move(asked);
  // Finer than a movie's frame only a movie is.
  WallpaperReading wanted{origin_,
                          changes == PhotoChanges::Followed ? printSize : pixels.expandedTo(printSize)};
  unread_.reset();
  if (!readsPhotos_ && !origin_.path.isEmpty() && print_.key() && print_.key() != wanted) {
    unread_ = std::move(wanted);
    wanted = *print_.key();
  }
  return image_.get({wanted, pixels}, [&] {
    const QImage& print = print_.get(wanted, [&] { return read(wanted); });
    return pixels == print.size() ? print : overBlack(photoFill(print, pixels));
  });
}

WallpaperOrigin WallpaperSource::originOf(const SequenceDocument& document) {
  if (document.wallpaper == customId && !document.wallpaperUrl.contains(QChar(u'\0'))) {
    const QFileInfo file(document.wallpaperUrl);
    if (file.isFile()) return {{}, document.wallpaperUrl, file.size(), file.lastModified()};
  }
  for (const Studio::Wallpaper& wallpaper : Studio::wallpapers()) {
    if (document.wallpaper == wallpaper.id) return {wallpaper.id, {}, -1, {}};
  }
  return {u"one"_s, {}, -1, {}};
}

QImage WallpaperSource::read(const WallpaperReading& reading) {
  const auto& [origin, pixels] = reading;
  if (!origin.path.isEmpty()) {
    if (const auto photo = decodeImageFile(origin.path)) return overBlack(photoFill(*photo, pixels));
  }
  const auto builtIn = BundleImage::named(origin.path.isEmpty() ? origin.name : u"one"_s);
  return builtIn ? overBlack(photoFill(*builtIn, pixels)) : plainFill(pixels);
}

}  // namespace brisklet
