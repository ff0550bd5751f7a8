#include "drawing/resampled.h"

#include "drawing/float_plane.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace brisklet {
namespace {

/// In memory a pixel is blue, green, red and alpha.
constexpr int channels = 4, alpha = 3;

/// A cubic of the family that keeps straight lines straight, at a distance from its middle. It passes through
/// the samples at softness 0 and is the B-spline at 1.
double cubic(double distance, double softness) {
  const double x = std::abs(distance), b = softness, c = (1 - softness) / 2;
  if (x >= 2) return 0;
  if (x < 1) return ((12 - 9 * b - 6 * c) * x * x * x + (-18 + 12 * b + 6 * c) * x * x + 6 - 2 * b) / 6;
  return ((-b - 6 * c) * x * x * x + (6 * b + 30 * c) * x * x + (-12 * b - 48 * c) * x + 8 * b + 24 * c) / 6;
}

/// Which cells one way make each output pixel, and with what weights.
struct Taps {
  int perPixel;
  std::vector<int> firstCell;
  std::vector<float> weights;

  Taps(double begin, double length, int cells, int pixels) {
    const double scale = pixels / length;
    const double stretch = std::max(1.0, 1 / scale);
    // From here on the grid of the samples would show.
    constexpr double wholly = 3;
    const double softness = std::clamp((scale - 1) / (wholly - 1), 0.0, 1.0);
    const int reached = static_cast<int>(std::ceil(4 * stretch)) + 1;
    perPixel = std::min(reached, cells);
    for (int pixel = 0; pixel < pixels; ++pixel) {
      const double middle = begin + (pixel + 0.5) / scale - 0.5;
      const int lowest = static_cast<int>(std::floor(middle - 2 * stretch));
      const int first = std::clamp(lowest, 0, cells - perPixel);
      std::vector<double> shares(static_cast<std::size_t>(perPixel));
      double sum = 0;
      for (int cell = lowest; cell <= lowest + reached; ++cell) {
        const double weight = cubic((cell - middle) / stretch, softness);
        shares[static_cast<std::size_t>(std::clamp(cell - first, 0, perPixel - 1))] += weight;
        sum += weight;
      }
      firstCell.push_back(first);
      for (double share : shares) weights.push_back(static_cast<float>(share / sum));
    }
  }

  [[nodiscard]] const float* of(int pixel) const {
    return weights.data() + static_cast<std::size_t>(pixel) * static_cast<std::size_t>(perPixel);
  }
};

}  // namespace

QImage resampled(const QImage& picture, const QRectF& source, const QSize& pixels) {
  const QRect reached = source.toAlignedRect() & picture.rect();
  if (pixels.isEmpty() || reached.isEmpty()) return {};
  QImage in = (reached == picture.rect() ? picture : picture.copy(reached))
                  .convertToFormat(picture.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                             : QImage::Format_RGB32);
  if (reached == source && reached.size() == pixels) return in;
  QRectF part = source.translated(-reached.topLeft());

  // What is to become much smaller is first brought to about twice its size by means, which is fast.
  const QSize doubled(static_cast<int>(std::ceil(2.0 * pixels.width() * in.width() / part.width())),
                      static_cast<int>(std::ceil(2.0 * pixels.height() * in.height() / part.height())));
  if (doubled.width() < in.width() && doubled.height() < in.height()) {
    const double x = static_cast<double>(doubled.width()) / in.width();
    const double y = static_cast<double>(doubled.height()) / in.height();
    part = {part.x() * x, part.y() * y, part.width() * x, part.height() * y};
    in = in.scaled(doubled, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  }

  QImage out(pixels, in.format());
  if (in.isNull() || out.isNull()) return {};
  const Taps across(part.left(), part.width(), in.width(), pixels.width());
  const Taps down(part.top(), part.height(), in.height(), pixels.height());
  const std::size_t samples = static_cast<std::size_t>(in.width()) * channels;
  std::vector<float> blended(samples);
  for (int y = 0; y < pixels.height(); ++y) {
    std::fill(blended.begin(), blended.end(), 0.0F);
    for (int k = 0; k < down.perPixel; ++k) {
      const float weight = down.of(y)[k];
      const uchar* row = in.constScanLine(down.firstCell[static_cast<std::size_t>(y)] + k);
      for (std::size_t i = 0; i < samples; ++i) blended[i] += weight * static_cast<float>(row[i]);
    }
    uchar* line = out.scanLine(y);
    for (int x = 0; x < pixels.width(); ++x) {
      const float* from = blended.data() + across.firstCell[static_cast<std::size_t>(x)] * channels;
      const float* weights = across.of(x);
      float sums[channels]{};
      for (int k = 0; k < across.perPixel; ++k)
        for (int channel = 0; channel < channels; ++channel)
          sums[channel] += weights[k] * from[k * channels + channel];
      const auto level = [&, dither = ditherAt(x, y)](int channel, int most) {
        return static_cast<uchar>(std::clamp(static_cast<int>(std::floor(sums[channel] + dither)), 0, most));
      };
      uchar* pixel = line + x * channels;
      pixel[alpha] = out.hasAlphaChannel() ? level(alpha, 255) : 255;
      for (int color = 0; color < alpha; ++color) pixel[color] = level(color, pixel[alpha]);
    }
  }
  return out;
}

}  // namespace brisklet
