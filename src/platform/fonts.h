#pragma once

#include <QFont>

namespace brisklet {

enum class FontWeight { Regular = 400, Medium = 500, Semibold = 600, Bold = 700 };

/// The system font: Inter, embedded in the program, then colour emoji and the scripts that Inter lacks.
/// Unhinted, so that one layout in points holds at every scale. One point is one unit of an unscaled painter.
[[nodiscard]] QFont systemFont(double sizePt, FontWeight weight, double trackingPt = 0);

}  // namespace brisklet
