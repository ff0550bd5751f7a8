#pragma once

#include <QFont>

namespace brisklet {

enum class FontWeight { Regular = 400, Medium = 500, Semibold = 600, Bold = 700 };

/// How a text is set. Sizes are exact to any fraction of a point.
struct TextStyle {
  double sizePt = 0;
  FontWeight weight = FontWeight::Regular;
  double trackingPt = 0;  // added after every character

  friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

/// The system font for widgets: Inter, embedded in the program, then colour emoji and the scripts that Inter
/// lacks. Unhinted, so that one layout in points holds at every scale; one point is one unit of an unscaled
/// painter, whatever the screen. Qt knows only whole sizes of this kind and rounds others: pictures are
/// drawn with `TextLine` and `TextBlock`, which are exact.
[[nodiscard]] QFont systemFont(double sizePt, FontWeight weight, double trackingPt = 0);

/// The font in which a style is laid out: `unitsPerPoint` times as large, since Qt draws whole sizes only.
struct LayoutFont {
  QFont font;
  double unitsPerPoint = 1;
};
[[nodiscard]] LayoutFont layoutFont(const TextStyle& style);

}  // namespace brisklet
