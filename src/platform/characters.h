#pragma once

#include <QString>
#include <vector>

namespace brisklet {

/// Where each character of the text, as a reader sees it, ends: ascending, the last at the text's size.
[[nodiscard]] std::vector<qsizetype> characterEnds(const QString& text);

}  // namespace brisklet
