#pragma once

#include <QString>

namespace brisklet {

/// A title as a file name: lower case, everything between runs of "a" to "z" and "0" to "9" one "-", none at
/// the ends. Empty when nothing is left.
[[nodiscard]] QString slug(const QString& title);

}  // namespace brisklet
