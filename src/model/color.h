#pragma once

#include <QString>

namespace brisklet {

/// A colour in the sRGB colour space, components 0 to 1.
struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  double opacity = 1;

  /// The opaque colour of "#" and six hexadecimal digits. White space around it and a missing "#" are
  /// forgiven; any other number of characters gives mid grey, and reading stops at the first character that
  /// is no digit. Never fails.
  [[nodiscard]] static Color fromHex(const QString& text);

  [[nodiscard]] friend bool operator==(const Color&, const Color&) = default;
};

}  // namespace brisklet
