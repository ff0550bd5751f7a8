#include "studio/studio_style.h"

#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

#include "studio/palette.h"

namespace brisklet {

namespace {

constexpr int tooltipMargin = 5;  // pt

}  // namespace

StudioStyle::StudioStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void StudioStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
  if (element != PE_PanelTipLabel) {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    return;
  }
  painter->fillRect(option->rect, Studio::hoveredLine);
  painter->fillRect(option->rect.adjusted(1, 1, -1, -1), Studio::white);
}

int StudioStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  return metric == PM_ToolTipLabelFrameWidth ? tooltipMargin
                                             : QProxyStyle::pixelMetric(metric, option, widget);
}

}  // namespace brisklet
