#include "platform/symbol_image.h"

#include "platform/picture_memory.h"

#include <QCache>
#include <QFile>
#include <QSvgRenderer>
#include <QTransform>
#include <cmath>
#include <map>
#include <memory>

namespace brisklet {

namespace {

/// A symbol's drawing is this high, in its own units, where the font is one point high.
constexpr double unitsPerPoint = 100;

/// The drawing of this name, parsed once; null if there is none.
QSvgRenderer* drawing(const QString& name) {
  static std::map<QString, std::unique_ptr<QSvgRenderer>> drawings;
  const auto [entry, isNew] = drawings.try_emplace(name);
  const QString path = QStringLiteral(":/symbols/%1.svg").arg(name);
  if (isNew && !name.contains(u'/') && QFile::exists(path)) {
    auto renderer = std::make_unique<QSvgRenderer>(path);
    if (renderer->isValid() && !renderer->viewBoxF().isEmpty()) entry->second = std::move(renderer);
  }
  return entry->second.get();
}

/// The symbol in one colour, filling `place` of a picture of `size` pixels.
QImage tinted(QSvgRenderer& renderer, const QSize& size, const QRectF& place, const QColor& color) {
  QImage image = newPicture(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  renderer.render(&painter, place);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(image.rect(), color);
  return image;
}

}  // namespace

QSizeF symbolSize(const QString& name, double fontSizePt) {
  const QSvgRenderer* renderer = drawing(name);
  return renderer ? renderer->viewBoxF().size() * (fontSizePt / unitsPerPoint) : QSizeF();
}

void drawSymbol(QPainter& painter, const QString& name, double fontSizePt, const QPointF& center,
                const QColor& color) {
  QSvgRenderer* renderer = drawing(name);
  const QSizeF size = symbolSize(name, fontSizePt);
  if (!renderer || size.isEmpty()) return;

  // The picture is made for the pixels that it covers, so that it is sharp at every scale.
  const QTransform toDevice = painter.deviceTransform();
  const double scale = std::sqrt(std::abs(toDevice.determinant()));
  const QPointF deviceCenter = toDevice.map(center);
  const QSizeF deviceSize = size * scale;
  if (!(deviceSize.width() < 8192 && deviceSize.height() < 8192) || !(scale > 0)) return;
  QRectF place(QPointF(), deviceSize);
  place.moveCenter(deviceCenter);
  const QRect pixels = place.toAlignedRect();
  place.translate(-pixels.topLeft());

  static QCache<QString, QImage> pictures(16 << 20);  // bytes
  const QString key = QStringLiteral("%1 %2 %3 %4 %5 %6")
                          .arg(name)
                          .arg(place.x(), 0, 'f', 2)
                          .arg(place.y(), 0, 'f', 2)
                          .arg(place.width(), 0, 'f', 2)
                          .arg(place.height(), 0, 'f', 2)
                          .arg(color.rgba64(), 0, 16);
  QImage picture;
  if (const QImage* known = pictures.object(key)) {
    picture = *known;
  } else {
    picture = tinted(*renderer, pixels.size(), place, color);
    pictures.insert(key, new QImage(picture), picture.sizeInBytes());
  }
  painter.save();
  // Not a reset, which would keep a widget's offset within its window.
  painter.setWorldTransform(toDevice.inverted() * painter.worldTransform());
  painter.drawImage(pixels.topLeft(), picture);
  painter.restore();
}

}  // namespace brisklet
