#pragma once

#include <QImage>
#include <QRectF>
#include <QSize>

namespace brisklet {

/// The measures of the stage, in points.
namespace StageMetrics {

inline constexpr double margin = 80, leastScale = 0.2;
inline constexpr double glowOpacity = 0.06, glowStart = 40, glowEnd = 420;
inline constexpr double shadowOpacity = 0.5, shadowBlur = 36, shadowOffset = 18;

}  // namespace StageMetrics

/// How much smaller or larger than life the phone stands on a stage of this size.
[[nodiscard]] double phoneScale(const QSizeF& stage);
/// Where it stands.
[[nodiscard]] QRectF phoneRect(const QSizeF& stage);

/// What is behind the phone: the backdrop, the glow in its middle and the phone's shadow. RGB32, dithered, so
/// that the faint gradients do not show as bands.
[[nodiscard]] QImage stageBackdrop(const QSize& pixels, double pixelsPerPoint);

}  // namespace brisklet
