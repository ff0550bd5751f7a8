#pragma once

#include <QProxyStyle>

namespace brisklet {

/// The style of what the studio does not paint by itself: dialogs, menus and tooltips.
class StudioStyle : public QProxyStyle {
  Q_OBJECT

 public:
  StudioStyle();

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
};

}  // namespace brisklet
