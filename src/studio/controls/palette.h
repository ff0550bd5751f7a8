#pragma once

#include <QColor>

namespace brisklet {

/// The colours of the studio.
namespace Studio {

/// The 8-bit sRGB colour nearest to components from 0 to 1.
[[nodiscard]] constexpr QColor srgb(double red, double green, double blue, double opacity = 1) {
  const auto bits = [](double component) { return static_cast<int>(component * 255 + 0.5); };
  return {bits(red), bits(green), bits(blue), bits(opacity)};
}

/// Text, solid buttons, selection outlines.
inline constexpr QColor ink = srgb(0.067, 0.067, 0.071);
/// Background of the columns.
inline constexpr QColor paper = srgb(0.965, 0.965, 0.969);
/// Rules, unselected outlines, borders of fields.
inline constexpr QColor line = srgb(0.906, 0.906, 0.914);
/// Secondary text, labels, symbols.
inline constexpr QColor mute = srgb(0.42, 0.42, 0.45);
/// Backdrop of the stage.
inline constexpr QColor stage = srgb(0.055, 0.055, 0.071);

inline constexpr QColor white = srgb(1, 1, 1);

/// The outline of what the pointer is on, where it is `line` at rest.
inline constexpr QColor hoveredLine = srgb(0.80, 0.80, 0.815);
/// Laid over what the pointer is on, and over what is pressed.
inline constexpr QColor hoverVeil = srgb(0.067, 0.067, 0.071, 0.05);
inline constexpr QColor pressVeil = srgb(0.067, 0.067, 0.071, 0.1);
/// A solid button under the pointer, and pressed.
inline constexpr QColor hoveredInk = srgb(0.17, 0.17, 0.178);
inline constexpr QColor pressedInk = srgb(0.26, 0.26, 0.27);

/// What an empty field asks for.
inline constexpr QColor placeholder = srgb(0.62, 0.62, 0.645);
/// The mark of keyboard focus, and behind selected text: the only hue among the greys.
inline constexpr QColor focus = srgb(0.20, 0.47, 0.96);
inline constexpr QColor textSelection = srgb(0.78, 0.87, 1);

}  // namespace Studio

}  // namespace brisklet
