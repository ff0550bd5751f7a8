#pragma once

#include "studio/controls/control_painting.h"

#include <QImage>
#include <QPainter>

namespace brisklet {

/// A copy of a picture, square, small enough to be kept and large enough for a chip on any screen.
[[nodiscard]] QImage chipPreview(const QImage& picture);

/// Fills the box with a preview.
void paintPreview(QPainter& painter, const RoundedBox& box, const QImage& preview);

/// A white hairline within a selected tile's outline, so that the outline is seen around dark tiles too.
void paintSelectionGap(QPainter& painter, const RoundedBox& box);

}  // namespace brisklet
