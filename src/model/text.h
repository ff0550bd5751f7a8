#pragma once

#include <QString>

namespace brisklet {

/// Whether two texts are canonically equivalent Unicode: "é" composed equals "é" decomposed.
[[nodiscard]] bool sameText(const QString& a, const QString& b);

/// A new random UUID in its 36-character form, hexadecimal digits in upper case.
[[nodiscard]] QString newUuid();

}  // namespace brisklet
