#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

namespace brisklet {

/// The box of the pixels within a rectangle that are ink.
template <class IsInk>
QRect inkBox(const QImage& image, const QRect& within, IsInk isInk) {
  QRect box;
  for (int y = within.top(); y <= within.bottom(); ++y) {
    for (int x = within.left(); x <= within.right(); ++x)
      if (isInk(image.pixelColor(x, y))) box |= QRect(x, y, 1, 1);
  }
  return box;
}

}  // namespace brisklet
