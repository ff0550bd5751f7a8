#include "picture.h"

#include "noise.h"

#include <array>
#include <atomic>
#include <numbers>
#include <thread>

namespace brisklet {

namespace {

/// A running mean of `2 * radius + 1` along one line of `count` pixels `stride` apart.
void boxLine(const Vec3* in, Vec3* out, int count, std::ptrdiff_t stride, int radius) {
  const auto pixel = [&](int i) { return in[std::clamp(i, 0, count - 1) * stride]; };
  const float share = 1.0f / static_cast<float>(2 * radius + 1);
  Vec3 sum;
  for (int i = -radius; i <= radius; ++i) sum += pixel(i);
  for (int i = 0; i < count; ++i) {
    out[i * stride] = sum * share;
    sum += pixel(i + radius + 1) - pixel(i - radius);
  }
}

/// The tone curve of the ACES reference rendering, in Narkowicz's fit.
float toned(float v) {
  return clamp01(v * (2.51f * v + 0.03f) / (v * (2.43f * v + 0.59f) + 0.14f));
}

float encoded(float v) {
  return v <= 0.0031308f ? v * 12.92f : 1.055f * std::pow(v, 1 / 2.4f) - 0.055f;
}

/// A normal deviate for each pixel and layer.
float deviate(int x, int y, int layer, std::uint32_t seed) {
  const float a = std::max(hashedUnit(x, y, layer, seed), 1e-7f);
  const float b = hashedUnit(x, y, layer + 64, seed);
  return std::sqrt(-2 * std::log(a)) * std::cos(2 * std::numbers::pi_v<float> * b);
}

}  // namespace

Picture::Picture(int width, int height)
    : width_(width),
      height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

void forEachRow(int rows, const std::function<void(int)>& row) {
  std::atomic<int> next = 0;
  std::vector<std::jthread> workers;
  for (unsigned i = 0; i < std::max(1u, std::thread::hardware_concurrency()); ++i) {
    workers.emplace_back([&] {
      for (int y = next++; y < rows; y = next++) row(y);
    });
  }
}

Picture blurred(const Picture& picture, float sigma) {
  // Three running means come within a few per cent of a Gaussian.
  const int radius = std::max(1, static_cast<int>(std::lround(sigma * 0.94f)));
  Picture from = picture, to = picture;
  for (int pass = 0; pass < 3; ++pass) {
    forEachRow(from.height(), [&](int y) { boxLine(&from.at(0, y), &to.at(0, y), from.width(), 1, radius); });
    forEachRow(from.width(),
               [&](int x) { boxLine(&to.at(x, 0), &from.at(x, 0), from.height(), from.width(), radius); });
  }
  return from;
}

QImage developed(const Picture& picture, const Film& film, std::uint32_t seed) {
  const int width = picture.width(), height = picture.height();
  const float unit = static_cast<float>(width) / 1290;
  const Picture near = blurred(picture, 9 * unit);
  const Picture wide = blurred(picture, 70 * unit);

  QImage print(width, height, QImage::Format_RGB888);
  uchar* const bits = print.bits();
  const auto bytesPerLine = print.bytesPerLine();
  forEachRow(height, [&](int y) {
    uchar* line = bits + y * bytesPerLine;
    for (int x = 0; x < width; ++x) {
      Vec3 light = mix(picture.at(x, y), 0.4f * near.at(x, y) + 0.6f * wide.at(x, y), film.bloom);
      const float dx = 2 * static_cast<float>(x) / static_cast<float>(width) - 1;
      const float dy = 2 * static_cast<float>(y) / static_cast<float>(height) - 1;
      light = light * (film.exposure * (1 - film.vignette * 0.5f * (dx * dx + dy * dy)));

      // Grain is a little wider than a pixel: each deviate is shared with its neighbours.
      float clump = 0;
      for (const auto [ox, oy, weight] :
           {std::array{0, 0, 60}, std::array{1, 0, 24}, std::array{0, 1, 24}, std::array{1, 1, 10}}) {
        clump += static_cast<float>(weight) / 70 * deviate(x + ox, y + oy, 0, seed);
      }
      int layer = 1;
      for (const float channel : {light.x, light.y, light.z}) {
        const float value = encoded(toned(channel));
        // Strongest in the mid tones, as on film; never less than what hides the steps of eight bits.
        const float strength = film.grain * (0.45f + 2.2f * value * (1 - value));
        const float grain = strength * (0.92f * clump + 0.38f * deviate(x, y, layer++, seed));
        *line++ = static_cast<uchar>(std::clamp(std::lround(value * 255 + grain), 0L, 255L));
      }
    }
  });
  return print;
}

}  // namespace brisklet
