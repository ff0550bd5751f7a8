#pragma once

#include <QColor>
#include <QPainter>
#include <QSizeF>
#include <QString>

namespace brisklet {

/// The size in points that the named symbol takes beside text of this font size.
[[nodiscard]] QSizeF symbolSize(const QString& name, double fontSizePt);

/// Draws the named symbol in one colour, centred on `center`, at the size of `symbolSize`. A name without a
/// symbol draws nothing.
void drawSymbol(QPainter& painter, const QString& name, double fontSizePt, const QPointF& center,
                const QColor& color);

}  // namespace brisklet
