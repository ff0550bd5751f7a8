#pragma once

#include <QString>
#include <optional>

namespace brisklet {

/// When a ping lands, as its timeline row says it: "lands at 700ms", "lands at 1.4s".
[[nodiscard]] QString delayLabel(double ms);

/// Milliseconds as seconds for the landing-time field: at most six significant digits, "." whatever the
/// locale, an exponent for very large and very small values.
[[nodiscard]] QString secondsText(double ms);

/// The landing time in milliseconds that a text of seconds says, "," read as "."; 0 for a negative number.
/// Nothing when the text is no decimal number through and through, or no finite time.
[[nodiscard]] std::optional<double> readSeconds(const QString& text);

/// Milliseconds as seconds with one decimal and "s".
[[nodiscard]] QString roundSeconds(double ms);

}  // namespace brisklet
