#include "drawing/symbol_image.h"

#include "drawing/device_pixels.h"
#include "drawing/pictures.h"

#include <QCache>
#include <QFile>
#include <QSvgRenderer>
#include <map>
#include <memory>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// A symbol's drawing is this high, in its own units, where the font is one point high.
constexpr double unitsPerPoint = 100;

/// The drawing of this name, parsed once in each thread; null if there is none.
QSvgRenderer* drawing(const QString& name) {
  thread_local std::map<QString, std::unique_ptr<QSvgRenderer>> drawings;
  const auto [entry, isNew] = drawings.try_emplace(name);
  const QString path = u":/symbols/%1.svg"_s.arg(name);
  if (isNew && !name.contains(u'/') && QFile::exists(path)) {
    auto renderer = std::make_unique<QSvgRenderer>(path);
    if (renderer->isValid() && !renderer->viewBoxF().isEmpty()) entry->second = std::move(renderer);
  }
  return entry->second.get();
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
  const QSizeF deviceSize = size * deviceScale(painter);
  if (deviceSize.isEmpty() || !(deviceSize.width() < 8192 && deviceSize.height() < 8192)) return;
  QRectF place(QPointF(), deviceSize);
  place.moveCenter(painter.deviceTransform().map(center));
  const QRect pixels = place.toAlignedRect();
  place.translate(-pixels.topLeft());

  thread_local QCache<QString, QImage> pictures(16 << 20);  // bytes
  const QString key = u"%1 %2 %3 %4 %5 %6"_s.arg(name)
                          .arg(place.x(), 0, 'f', 2)
                          .arg(place.y(), 0, 'f', 2)
                          .arg(place.width(), 0, 'f', 2)
                          .arg(place.height(), 0, 'f', 2)
                          .arg(color.rgba64(), 0, 16);
  if (!pictures.contains(key)) {
    const auto paint = [&](QPainter& tinting) {
      renderer->render(&tinting, place);
      tinting.setCompositionMode(QPainter::CompositionMode_SourceIn);
      tinting.fillRect(QRect(QPoint(), pixels.size()), color);
    };
    auto picture = std::make_unique<QImage>(painted(pixels.size(), 1, paint));
    const qsizetype bytes = picture->sizeInBytes();
    pictures.insert(key, picture.release(), bytes);
  }
  if (const QImage* picture = pictures.object(key)) drawOnPixels(painter, pixels.topLeft(), *picture);
}

}  // namespace brisklet
