#include "drawing/float_plane.h"

#include "base/cores.h"
#include "base/vectorised.h"

#include <QtGlobal>
#include <algorithm>
#include <array>
#include <cmath>

namespace brisklet {
namespace {

std::vector<float> gaussianKernel(double sigma) {
  const int radius = std::max(1, static_cast<int>(std::ceil(3 * sigma)));
  std::vector<double> weights;
  double sum = 0;
  for (int i = -radius; i <= radius; ++i) {
    weights.push_back(std::exp(-0.5 * i * i / (sigma * sigma)));
    sum += weights.back();
  }
  std::vector<float> kernel;
  for (double weight : weights) kernel.push_back(static_cast<float>(weight / sum));
  return kernel;
}

std::vector<float> ditherRow(std::size_t pixels, int y) {
  std::vector<float> row(pixels);
  for (std::size_t x = 0; x < pixels; ++x) row[x] = x < 8 ? ditherAt(static_cast<int>(x), y) : row[x - 8];
  return row;
}

BRISKLET_VECTORISED void quantise(QRgb* __restrict pixels, const float* __restrict red,
                                  const float* __restrict green, const float* __restrict blue,
                                  const float* __restrict alpha, const float* __restrict dither, int count) {
  for (int x = 0; x < count; ++x) {
    const auto level = [d = dither[x]](float value) {
      return static_cast<QRgb>(std::min(std::max(static_cast<int>(value * 255 + d), 0), 255));
    };
    pixels[x] = level(alpha[x]) << 24 | level(red[x]) << 16 | level(green[x]) << 8 | level(blue[x]);
  }
}

}  // namespace

FloatPlane::FloatPlane(int columns, int rows)
    : width(columns),
      height(rows),
      samples(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {}

FloatPlane alphaOf(const QImage& picture) {
  FloatPlane plane(picture.width(), picture.height());
  for (int y = 0; y < plane.height; ++y) {
    const auto* line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
    for (int x = 0; x < plane.width; ++x) plane.row(y)[x] = static_cast<float>(qAlpha(line[x])) / 255;
  }
  return plane;
}

FloatPlane blurred(const FloatPlane& plane, double sigma) {
  if (!(sigma > 0) || plane.samples.empty()) return plane;
  const std::vector<float> kernel = gaussianKernel(sigma);
  const int radius = static_cast<int>(kernel.size()) / 2;

  FloatPlane across(plane.width, plane.height);
  std::vector<float> extended(static_cast<std::size_t>(plane.width + 2 * radius));
  for (int y = 0; y < plane.height; ++y) {
    const float* source = plane.row(y);
    std::fill_n(extended.begin(), radius, source[0]);
    std::copy_n(source, plane.width, extended.begin() + radius);
    std::fill_n(extended.end() - radius, radius, source[plane.width - 1]);
    float* out = across.row(y);
    for (std::size_t k = 0; k < kernel.size(); ++k) {
      const float weight = kernel[k];
      const float* shifted = extended.data() + k;
      for (int x = 0; x < plane.width; ++x) out[x] += weight * shifted[x];
    }
  }

  FloatPlane both(plane.width, plane.height);
  for (int y = 0; y < plane.height; ++y) {
    float* out = both.row(y);
    for (std::size_t k = 0; k < kernel.size(); ++k) {
      const float weight = kernel[k];
      const float* source = across.row(std::clamp(y + static_cast<int>(k) - radius, 0, plane.height - 1));
      for (int x = 0; x < plane.width; ++x) out[x] += weight * source[x];
    }
  }
  return both;
}

PlaneEnlarger::PlaneEnlarger(int planeWidth, int pixels, double cellsPerPixelX) : planeWidth_(planeWidth) {
  taps_.reserve(static_cast<std::size_t>(pixels));
  for (int x = 0; x < pixels; ++x) taps_.push_back(tapAt((x + 0.5) * cellsPerPixelX));
}

PlaneEnlarger::Tap PlaneEnlarger::tapAt(double cell) {
  // The uniform cubic B-spline; cell centres lie at halves.
  const double position = cell - 0.5;
  const double whole = std::floor(position);
  const float t = static_cast<float>(position - whole);
  const float u = 1 - t;
  return {static_cast<int>(whole) - 1,
          {u * u * u / 6, (3 * t * t * t - 6 * t * t + 4) / 6, (3 * u * u * u - 6 * u * u + 4) / 6,
           t * t * t / 6}};
}

void PlaneEnlarger::row(const FloatPlane& plane, double cellY, std::span<float> out) const {
  Q_ASSERT(plane.width == planeWidth_ && out.size() == taps_.size());
  const Tap down = tapAt(cellY);
  // Two cells more on either side, so that the taps at the ends need no care.
  std::vector<float> blended(static_cast<std::size_t>(plane.width) + 4);
  for (int k = 0; k < 4; ++k) {
    const float* source = plane.row(std::clamp(down.cell + k, 0, plane.height - 1));
    for (int x = 0; x < plane.width; ++x)
      blended[static_cast<std::size_t>(x) + 2] += down.weights[k] * source[x];
  }
  blended[0] = blended[1] = blended[2];
  blended[blended.size() - 1] = blended[blended.size() - 2] = blended[blended.size() - 3];
  for (std::size_t x = 0; x < out.size(); ++x) {
    const Tap& tap = taps_[x];
    const float* from = blended.data() + std::clamp(tap.cell + 2, 0, planeWidth_);
    out[x] = tap.weights[0] * from[0] + tap.weights[1] * from[1] + tap.weights[2] * from[2] +
             tap.weights[3] * from[3];
  }
}

ColorPlanes colorsOf(const QImage& picture) {
  ColorPlanes planes;
  for (std::size_t channel = 0; channel < planes.size(); ++channel) {
    planes[channel] = FloatPlane(picture.width(), picture.height());
    for (int y = 0; y < picture.height(); ++y) {
      const auto* line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
      for (int x = 0; x < planes[channel].width; ++x)
        planes[channel].row(y)[x] = static_cast<float>(line[x] >> (16 - 8 * channel) & 0xff) / 255;
    }
  }
  return planes;
}

QImage enlarged(std::span<const FloatPlane> planes, const QSize& pixels) {
  QImage picture(pixels, QImage::Format_RGB32);
  const PlaneEnlarger enlarger(planes[0].width, pixels.width(),
                               static_cast<double>(planes[0].width) / pixels.width());
  const double cellsPerPixelY = static_cast<double>(planes[0].height) / pixels.height();
  auto* line = reinterpret_cast<QRgb*>(picture.bits());
  inHalves(0, pixels.height(), [&](int begin, int end) {
    std::array<std::vector<float>, 4> rows;
    for (auto& row : rows) row.assign(static_cast<std::size_t>(pixels.width()), 1);
    for (int y = begin; y < end; ++y) {
      for (std::size_t channel = 0; channel < planes.size(); ++channel)
        enlarger.row(planes[channel], (y + 0.5) * cellsPerPixelY, rows[channel]);
      quantise(line + y * qsizetype{pixels.width()}, rows[0].data(), rows[1].data(), rows[2].data(),
               rows[3].data(), ditherRow(rows[0].size(), y).data(), pixels.width());
    }
  });
  return picture;
}

float ditherAt(int x, int y) {
  // Bayer's 8 x 8 matrix: bits of x ^ y and y, interleaved from the lowest up.
  static const auto thresholds = [] {
    std::array<float, 64> matrix{};
    for (unsigned row = 0; row < 8; ++row) {
      for (unsigned column = 0; column < 8; ++column) {
        unsigned value = 0;
        for (unsigned bit = 0; bit < 3; ++bit) {
          value = value << 2 | ((row ^ column) >> bit & 1) << 1 | (row >> bit & 1);
        }
        matrix[row * 8 + column] = (static_cast<float>(value) + 0.5F) / 64;
      }
    }
    return matrix;
  }();
  return thresholds[static_cast<std::size_t>(y & 7) * 8 + static_cast<std::size_t>(x & 7)];
}

}  // namespace brisklet
