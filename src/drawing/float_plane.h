#pragma once

#include <QImage>
#include <QSize>
#include <array>
#include <span>
#include <vector>

namespace brisklet {

/// One channel of a soft picture as a grid of samples at the centres of its cells. Floats, because eight bits
/// would show as bands once a blurred picture is enlarged.
struct FloatPlane {
  int width = 0;
  int height = 0;
  std::vector<float> samples;

  FloatPlane() = default;
  FloatPlane(int columns, int rows);

  [[nodiscard]] float* row(int y) {
    return samples.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
  }
  [[nodiscard]] const float* row(int y) const {
    return samples.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
  }
};

/// The alpha of each pixel, 0 to 1; 32-bit pictures alone.
[[nodiscard]] FloatPlane alphaOf(const QImage& picture);

/// A Gaussian blur of `sigma` cells. Edges continue outwards.
[[nodiscard]] FloatPlane blurred(const FloatPlane& plane, double sigma);

/// Enlarges planes of one size row by row, with a cubic spline that leaves no trace of the grid.
class PlaneEnlarger {
 public:
  /// Output pixel x reads the plane at the cell coordinate `(x + 0.5) * cellsPerPixelX`.
  PlaneEnlarger(int planeWidth, int pixels, double cellsPerPixelX);

  /// Output row at the cell coordinate `cellY`; `out` has as many values as there are pixels.
  void row(const FloatPlane& plane, double cellY, std::span<float> out) const;

 private:
  struct Tap {
    int cell;
    float weights[4];
  };
  static Tap tapAt(double cell);

  int planeWidth_;
  std::vector<Tap> taps_;
};

/// Red, green and blue, 0 to 1, of an opaque picture of 32 bits.
using ColorPlanes = std::array<FloatPlane, 3>;
[[nodiscard]] ColorPlanes colorsOf(const QImage& picture);

/// The planes as a picture of this size, RGB32, enlarged by the spline and dithered: red, green and blue, and
/// for the byte that is left a fourth one or 1.
[[nodiscard]] QImage enlarged(std::span<const FloatPlane> planes, const QSize& pixels);

/// The dither threshold of a pixel, between 0 and 1: added before a value is cut to an integer, it turns the
/// fraction into a fixed fine pattern.
[[nodiscard]] float ditherAt(int x, int y);

}  // namespace brisklet
