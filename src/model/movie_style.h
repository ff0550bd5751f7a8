#pragma once

#include <QSize>

namespace brisklet {

/// How a movie shows its document: by default the lock screen alone, on which cards stand from one frame to
/// the next.
struct MovieStyle {
  /// Cards move as they do on the stage, behind the stage's glass.
  bool inMotion = false;
  /// The page in pixels on which the phone lies; empty for the lock screen alone.
  QSize page;

  friend bool operator==(const MovieStyle&, const MovieStyle&) = default;
};

/// Width and height of a page, both even, lie within these.
inline constexpr int shortestPageSide = 320, longestPageSide = 4096;

[[nodiscard]] constexpr bool isPage(const QSize& size) {
  const auto isSide = [](int side) {
    return side >= shortestPageSide && side <= longestPageSide && side % 2 == 0;
  };
  return isSide(size.width()) && isSide(size.height());
}

}  // namespace brisklet
