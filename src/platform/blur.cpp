#include "platform/blur.h"

#include "platform/picture_memory.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace brisklet {

namespace {

/// One pixel, or a sum of pixels: four channels in the order of memory.
using Pixel = float __attribute__((vector_size(16)));
using PixelBytes = unsigned char __attribute__((vector_size(4)));

/// Some neighbouring samples and their weights, which add up to 1.
struct Window {
  int first = 0;
  std::vector<float> weights;
};

/// A picture of `Pixel`, without padding.
struct Plane {
  int width = 0, height = 0;
  std::vector<Pixel> pixels;

  Plane(int w, int h)
      : width(w), height(h), pixels(static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}
  Pixel* row(int y) { return pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width); }
  const Pixel* row(int y) const { return const_cast<Plane*>(this)->row(y); }
};

/// Moves the weights of samples outside [0, count) to the border's sample: the border goes on outwards.
Window clamped(int first, const std::vector<double>& weights, int count) {
  double sum = 0;
  for (const double weight : weights) sum += weight;
  const int last = first + static_cast<int>(weights.size()) - 1;
  Window window;
  window.first = std::clamp(first, 0, count - 1);
  window.weights.assign(static_cast<std::size_t>(std::clamp(last, 0, count - 1) - window.first + 1), 0.0F);
  for (std::size_t i = 0; i < weights.size(); ++i) {
    const int at = std::clamp(first + static_cast<int>(i), 0, count - 1) - window.first;
    window.weights[static_cast<std::size_t>(at)] += static_cast<float>(weights[i] / sum);
  }
  return window;
}

/// Averages of equal parts: `count` samples become `parts`, whose borders may cut through samples.
std::vector<Window> averaging(int count, int parts) {
  std::vector<Window> windows;
  const double length = static_cast<double>(count) / parts;
  for (int part = 0; part < parts; ++part) {
    const double begin = part * length, end = (part + 1) * length;
    const int first = static_cast<int>(begin);
    std::vector<double> weights;
    for (int at = first; at < std::min(count, static_cast<int>(std::ceil(end - 1e-9))); ++at)
      weights.push_back(std::min<double>(end, at + 1) - std::max<double>(begin, at));
    windows.push_back(clamped(first, weights, count));
  }
  return windows;
}

std::vector<Window> gaussian(int count, double sigma) {
  const int radius = static_cast<int>(std::ceil(3.5 * sigma));
  std::vector<double> weights;
  for (int offset = -radius; offset <= radius; ++offset)
    weights.push_back(std::exp(-0.5 * (offset / sigma) * (offset / sigma)));
  std::vector<Window> windows;
  for (int at = 0; at < count; ++at) windows.push_back(clamped(at - radius, weights, count));
  return windows;
}

/// Cubic B-spline interpolation of `parts` samples at `count` places: smooth in value, slope and curvature.
std::vector<Window> enlarging(int parts, int count) {
  std::vector<Window> windows;
  for (int at = 0; at < count; ++at) {
    if (parts == count) {
      windows.push_back({at, {1}});
      continue;
    }
    const double place = (at + 0.5) * parts / count - 0.5;
    const double floor = std::floor(place), t = place - floor;
    windows.push_back(clamped(static_cast<int>(floor) - 1,
                              {(1 - t) * (1 - t) * (1 - t), 3 * t * t * t - 6 * t * t + 4,
                               -3 * t * t * t + 3 * t * t + 3 * t + 1, t * t * t},
                              parts));
  }
  return windows;
}

Plane filteredAcross(const Plane& source, const std::vector<Window>& windows) {
  Plane result(static_cast<int>(windows.size()), source.height);
  for (int y = 0; y < source.height; ++y) {
    const Pixel* from = source.row(y);
    Pixel* to = result.row(y);
    for (const Window& window : windows) {
      Pixel sum{};
      const Pixel* sample = from + window.first;
      for (const float weight : window.weights) sum += *sample++ * weight;
      *to++ = sum;
    }
  }
  return result;
}

void filterRowDown(const Plane& source, const Window& window, Pixel* to) {
  std::fill_n(to, source.width, Pixel{});
  for (std::size_t i = 0; i < window.weights.size(); ++i) {
    const Pixel* from = source.row(window.first + static_cast<int>(i));
    const float weight = window.weights[i];
    for (int x = 0; x < source.width; ++x) to[x] += from[x] * weight;
  }
}

Plane filteredDown(const Plane& source, const std::vector<Window>& windows) {
  Plane result(source.width, static_cast<int>(windows.size()));
  for (int y = 0; y < result.height; ++y)
    filterRowDown(source, windows[static_cast<std::size_t>(y)], result.row(y));
  return result;
}

Pixel loaded(const uchar* bytes) {
  PixelBytes pixel;
  std::memcpy(&pixel, bytes, sizeof pixel);
  return __builtin_convertvector(pixel, Pixel);
}

/// The picture made smaller, every pixel the average of the part that it stands for.
Plane reduced(const QImage& source, int width, int height) {
  const std::vector<Window> across = averaging(source.width(), width);
  const std::vector<Window> down = averaging(source.height(), height);
  Plane result(width, height);
  std::vector<Pixel> sums(static_cast<std::size_t>(source.width()));
  for (int y = 0; y < height; ++y) {
    std::fill(sums.begin(), sums.end(), Pixel{});
    const Window& rows = down[static_cast<std::size_t>(y)];
    for (std::size_t i = 0; i < rows.weights.size(); ++i) {
      const uchar* from = source.constScanLine(rows.first + static_cast<int>(i));
      for (Pixel& sum : sums) {
        sum += loaded(from) * rows.weights[i];
        from += 4;
      }
    }
    Pixel* to = result.row(y);
    for (const Window& window : across) {
      Pixel sum{};
      const Pixel* sample = sums.data() + window.first;
      for (const float weight : window.weights) sum += *sample++ * weight;
      *to++ = sum;
    }
  }
  return result;
}

/// Thresholds between 0 and 1 in the order of Bayer's matrix: rounding by them keeps a slow gradient's
/// average, where rounding to the nearest would show bands.
constexpr int ditherSize = 8;
constexpr std::array<std::array<float, ditherSize>, ditherSize> ditherThresholds = [] {
  std::array<std::array<float, ditherSize>, ditherSize> thresholds{};
  for (unsigned y = 0; y < ditherSize; ++y) {
    for (unsigned x = 0; x < ditherSize; ++x) {
      unsigned rank = 0;
      for (unsigned bit = 0; bit < 3; ++bit)
        rank = rank * 4 + ((((x ^ y) >> bit) & 1U) * 2 + ((y >> bit) & 1U));
      thresholds[y][x] = (static_cast<float>(rank) + 0.5F) / (ditherSize * ditherSize);
    }
  }
  return thresholds;
}();

/// Enlarges to the size of `result` and rounds.
void enlargeInto(QImage& result, const Plane& source) {
  const std::vector<Window> down = enlarging(source.height, result.height());
  struct Taps {
    int first;
    std::array<float, 4> weights;
  };
  // A window at the border has fewer samples: it is moved inwards and filled up with zeros.
  std::vector<Taps> across;
  for (const Window& window : enlarging(source.width, result.width())) {
    Taps taps{std::max(0, std::min(window.first, source.width - 4)), {}};
    for (std::size_t i = 0; i < window.weights.size(); ++i)
      taps.weights[i + static_cast<std::size_t>(window.first - taps.first)] = window.weights[i];
    across.push_back(taps);
  }
  std::vector<Pixel> row(static_cast<std::size_t>(std::max(4, source.width)));
  for (int y = 0; y < result.height(); ++y) {
    filterRowDown(source, down[static_cast<std::size_t>(y)], row.data());
    const auto& thresholds = ditherThresholds[static_cast<std::size_t>(y % ditherSize)];
    uchar* to = result.scanLine(y);
    for (std::size_t x = 0; x < across.size(); ++x) {
      const Taps& taps = across[x];
      const Pixel* from = row.data() + taps.first;
      const Pixel sum = from[0] * taps.weights[0] + from[1] * taps.weights[1] + from[2] * taps.weights[2] +
                        from[3] * taps.weights[3] + thresholds[x % ditherSize];
      using PixelInts = int __attribute__((vector_size(16)));
      const PixelBytes bytes = __builtin_convertvector(__builtin_convertvector(sum, PixelInts), PixelBytes);
      std::memcpy(to, &bytes, sizeof bytes);
      to += sizeof bytes;
    }
  }
}

}  // namespace

QImage blurred(const QImage& source, double sigma) {
  if (source.isNull()) return {};
  QImage picture = source;
  if (picture.format() != QImage::Format_RGB32 && picture.format() != QImage::Format_ARGB32_Premultiplied)
    picture = whole(picture.convertToFormat(picture.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                                      : QImage::Format_RGB32));
  if (!(sigma > 0)) return picture;

  // A wide blur is done on a small picture. Making it small and large again blurs too: by a box, and by a
  // cubic B-spline, which is four boxes; each has a variance of 1/12.
  const double reduction = std::max(1.0, sigma / 2.5);
  const int width = std::max(1, static_cast<int>(std::ceil(picture.width() / reduction)));
  const int height = std::max(1, static_cast<int>(std::ceil(picture.height() / reduction)));
  const auto remaining = [&](int large, int small) {
    if (small == large) return sigma;
    const double smallSigma = sigma * small / large;
    return std::sqrt(std::max(1e-3, smallSigma * smallSigma - 5.0 / 12));
  };
  Plane small = reduced(picture, width, height);
  small = filteredDown(small, gaussian(height, remaining(picture.height(), height)));
  small = filteredAcross(small, gaussian(width, remaining(picture.width(), width)));
  QImage result = newPicture(picture.size(), picture.format());
  enlargeInto(result, small);
  return result;
}

}  // namespace brisklet
