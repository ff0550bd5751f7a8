#pragma once

#include "picture.h"

#include <limits>

namespace brisklet {

/// A camera held level whose lens is shifted, so that uprights stay upright: every column of the picture
/// looks along one vertical plane. Lengths in metres; x to the right, y away from the camera, z up.
struct Camera {
  int width = 0, height = 0;  ///< pixels
  float focal = 1;            ///< pixels per unit of slope
  float horizon = 0;          ///< row of the horizon
  float eye = 0;              ///< height of the camera
  float near = 1, far = 2;    ///< distances between which there is ground

  float slopeOfColumn(float column) const { return (column - static_cast<float>(width) * 0.5f) / focal; }
  float slopeOfRow(float row) const { return (horizon - row) / focal; }
};

inline constexpr float noGround = std::numeric_limits<float>::infinity();

/// How far away the ground is in each row of one column, from a height function `height(x, y)`; `noGround`
/// where the sky begins. Walks from near to far, filling upwards what rises above all that is nearer.
template <typename Height>
void traceColumn(const Camera& camera, float column, int rowsPerPixel, const Height& height,
                 std::vector<float>& distances) {
  const int rows = camera.height * rowsPerPixel;
  distances.assign(static_cast<std::size_t>(rows), noGround);
  const float slope = camera.slopeOfColumn(column);
  const auto rowAt = [&](float y) {
    return (camera.horizon - camera.focal * (height(slope * y, y) - camera.eye) / y) *
           static_cast<float>(rowsPerPixel);
  };
  float y = camera.near, top = static_cast<float>(rows), lastY = y, lastRow = rowAt(y);
  while (y < camera.far && top > 0) {
    const float row = rowAt(y);
    if (row < top) {
      const int from = std::clamp(static_cast<int>(std::ceil(row - 0.5f)), 0, rows);
      const int to = std::clamp(static_cast<int>(std::ceil(top - 0.5f)), 0, rows);
      for (int r = from; r < to; ++r) {
        const float along =
            lastRow > row ? clamp01((lastRow - (static_cast<float>(r) + 0.5f)) / (lastRow - row)) : 1.0f;
        distances[static_cast<std::size_t>(r)] = mix(lastY, y, along);
      }
      top = row;
    }
    lastRow = row;
    lastY = y;
    // Level ground moves by about two thirds of a row with each step.
    y +=
        std::min(0.65f * y * y / (camera.focal * camera.eye * static_cast<float>(rowsPerPixel)), 0.0004f * y);
  }
}

/// The picture of a landscape: `shade(x, y, slopeX, slopeZ)` colours the ground, `sky(slopeX, slopeZ)` the
/// rest; slopes are those of the line of sight, per metre away. `samples` x `samples` per pixel.
template <typename Height, typename Shade, typename Sky>
Picture rendered(const Camera& camera, int samples, const Height& height, const Shade& shade,
                 const Sky& sky) {
  // Columns are independent, so each worker renders a column of pixels.
  Picture picture(camera.width, camera.height);
  forEachRow(camera.width, [&](int column) {
    std::vector<float> distances;
    std::vector<Vec3> sums(static_cast<std::size_t>(camera.height));
    for (int sub = 0; sub < samples; ++sub) {
      const float at =
          static_cast<float>(column) + (static_cast<float>(sub) + 0.5f) / static_cast<float>(samples);
      traceColumn(camera, at, samples, height, distances);
      const float slopeX = camera.slopeOfColumn(at);
      for (int r = 0; r < camera.height * samples; ++r) {
        const float y = distances[static_cast<std::size_t>(r)];
        const float slopeZ = camera.slopeOfRow((static_cast<float>(r) + 0.5f) / static_cast<float>(samples));
        sums[static_cast<std::size_t>(r / samples)] +=
            y == noGround ? sky(slopeX, slopeZ) : shade(slopeX * y, y, slopeX, slopeZ);
      }
    }
    for (int row = 0; row < camera.height; ++row) {
      picture.at(column, row) =
          sums[static_cast<std::size_t>(row)] * (1.0f / static_cast<float>(samples * samples));
    }
  });
  return picture;
}

}  // namespace brisklet
