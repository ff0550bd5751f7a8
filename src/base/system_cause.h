#pragma once

#include <QString>

namespace brisklet {

/// The cause behind an `errno` value, in words that end a sentence.
[[nodiscard]] QString systemCause(int errorNumber);

}  // namespace brisklet
