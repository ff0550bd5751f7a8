#pragma once

#include <QString>
#include <vector>

namespace brisklet {

/// Where each grapheme, a character as a reader sees it, ends: ascending, the last at the text's size.
[[nodiscard]] std::vector<qsizetype> graphemeEnds(const QString& text);

/// Empty for an empty text.
[[nodiscard]] QString firstGrapheme(const QString& text);

}  // namespace brisklet
