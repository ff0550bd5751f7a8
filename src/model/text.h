#pragma once

#include <QString>

namespace brisklet {

/// Whether two texts are canonically equivalent Unicode: "é" composed equals "é" decomposed.
[[nodiscard]] bool sameText(const QString& a, const QString& b);

/// The number of user-perceived characters (extended grapheme clusters).
[[nodiscard]] int characterCount(const QString& text);

/// The first user-perceived character; empty for an empty text.
[[nodiscard]] QString firstCharacter(const QString& text);

/// A new random UUID in its 36-character form, hexadecimal digits in upper case.
[[nodiscard]] QString newUuid();

}  // namespace brisklet
