#include "drawing/text_line.h"
#include "offscreen.h"

#include <QImage>
#include <QPainter>
#include <QString>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace brisklet;

/// Lays out and draws any text in any width: the first byte says the width, the second the size.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  if (size < 2) return -1;
  const double maxWidth = data[0] * 2.0, sizePt = 1 + data[1] / 4.0;
  const QString text =
      QString::fromUtf8(reinterpret_cast<const char*>(data) + 2, static_cast<qsizetype>(size - 2));
  const TextStyle style{sizePt, data[1] % 2 ? FontWeight::Bold : FontWeight::Regular};

  const TextLine line(text, style, maxWidth);
  const TextBlock block(text, style, maxWidth);
  if (!std::isfinite(line.width()) || line.width() > maxWidth + 0.1 || !std::isfinite(block.size().width()))
    std::abort();

  static QImage image(64, 64, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&image);
  line.draw(painter, {0, 40}, Qt::white);
  block.draw(painter, {32, 0}, Qt::white);
  return 0;
}
