#include "studio/picture_chip.h"

#include "base/background.h"
#include "drawing/image_decoder.h"
#include "drawing/symbol_image.h"
#include "lockscreen/bundle_image.h"
#include "lockscreen/wallpaper.h"
#include "model/catalogue.h"
#include "model/color.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QPainter>
#include <cmath>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr double plusFontSize = 16;  // pt
/// The largest chip at three pixels a point, and some.
constexpr int previewPixels = 192;

/// A copy of a picture, square, small enough to be kept and large enough for a chip on any screen.
QImage previewOf(const std::optional<QImage>& picture) {
  return picture ? photoFill(*picture, {previewPixels, previewPixels}) : QImage();
}

/// Whether white stands out from the photo by less than 1.6:1 where the date and the clock are.
bool isTooLightForClock(const QImage& photo) {
  constexpr QRect clock(10, 5, 19, 12);  // on a canvas of a tenth of the lock screen's size
  const QImage canvas = photoFill(photo, {39, 84});
  double light = 0;
  for (int y = clock.top(); y <= clock.bottom(); ++y) {
    for (int x = clock.left(); x <= clock.right(); ++x) {
      const QColor color = canvas.pixelColor(x, y);
      const auto linear = [](double component) { return std::pow(component, 2.2); };
      light +=
          0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
    }
  }
  light /= clock.width() * clock.height();
  return 1.05 / (light + 0.05) < 1.6;
}

}  // namespace

PictureChip::PictureChip(const QString& id, const QString& label, QWidget* parent)
    : Chip(radius, parent), id_(id) {
  setLabel(label);
  if (id != customId) preview_ = previewOf(BundleImage::named(id));
}

void PictureChip::setPhoto(const QString& path) {
  if (path == path_) return;
  path_ = path;
  const auto show = [this, path](const std::pair<QImage, bool>& read) {
    if (path != path_) return;
    std::tie(preview_, isTooLight_) = read;
    update();
    Q_EMIT photoRead();
  };
  if (path.isEmpty()) return show({});
  const auto read = [path] {
    const std::optional<QImage> photo = decodeImageFile(path);
    return std::pair(previewOf(photo), photo && isTooLightForClock(*photo));
  };
  inBackground(this, read, show);
}

void PictureChip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  const RoundedBox box{rect(), radius, outline(), outlineWidth()};
  if (!preview_.isNull()) {
    const QRectF pixels = painter.deviceTransform().mapRect(onPixels(painter, box.rect));
    paintPicture(painter, box, photoFill(preview_, pixels.size().toSize()));
  } else if (id_ == customId) {
    paintBox(painter, box, Studio::white);
    drawSymbol(painter, u"plus"_s, plusFontSize, box.rect.center(), Studio::mute);
  } else {
    const Color substitute = Color::fromHex(u"#9bb4be"_s);
    paintBox(painter, box, Studio::srgb(substitute.red, substitute.green, substitute.blue));
  }
  if (isSelected() && (id_ != customId || !preview_.isNull())) paintSelectionGap(painter, box);
  if (isDown()) paintBox(painter, {.rect = rect(), .radius = radius}, veil());
}

}  // namespace brisklet
