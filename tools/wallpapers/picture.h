#pragma once

#include "vector.h"

#include <QImage>
#include <functional>
#include <vector>

namespace brisklet {

/// A picture in linear light, 1 = the brightest diffuse white; values above are kept until it is developed.
class Picture {
 public:
  Picture(int width, int height);

  int width() const { return width_; }
  int height() const { return height_; }
  Vec3& at(int x, int y) { return pixels_[index(x, y)]; }
  Vec3 at(int x, int y) const { return pixels_[index(x, y)]; }

 private:
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
  }

  int width_, height_;
  std::vector<Vec3> pixels_;
};

/// What happens between the lens and the print.
struct Film {
  float exposure = 1;      ///< factor on the light
  float bloom = 0.05f;     ///< share of the light that the lens scatters
  float grain = 1.6f;      ///< standard deviation in the mid tones, in 1/255 of the print
  float vignette = 0.12f;  ///< share of the light that the corners lose
};

/// Calls `row` for every row, on all processors. Rows must not depend on each other.
void forEachRow(int rows, const std::function<void(int)>& row);

/// Gaussian blur; `sigma` in pixels; edges are extended.
[[nodiscard]] Picture blurred(const Picture& picture, float sigma);

/// The print: lens scatter, vignette, a film's tone curve, grain, and only then eight bits.
[[nodiscard]] QImage developed(const Picture& picture, const Film& film, std::uint32_t seed);

Picture dawn(int width, int height);
Picture night(int width, int height);
Picture dunes(int width, int height);
Picture glass(int width, int height);
Picture sea(int width, int height);

}  // namespace brisklet
