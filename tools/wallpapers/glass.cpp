#include "noise.h"
#include "picture.h"

namespace brisklet {

namespace {

constexpr std::uint32_t seed = 4100;

/// The lights behind the pane. Coordinates in widths of the picture from its centre, y down.
Vec3 behind(float x, float y) {
  const Vec3 graphite = srgb(0x2b3138), steel = srgb(0x8597a6), ice = srgb(0xd3e2ec);
  Vec3 light = graphite * mix(0.59f, 1.10f, smoothstep(-1.1f, 1.1f, y));
  // A wide crescent of light: a soft disc with a darker one in front of it.
  const float outer = std::hypot(x - 0.05f, y - 0.30f), inner = std::hypot(x + 0.22f, y - 0.12f);
  const float disc = smoothstep(0.78f, 0.30f, outer), hole = smoothstep(0.46f, 0.72f, inner);
  light += steel * (0.34f * disc * hole);
  const float heart = smoothstep(0.66f, 0.44f, outer) * smoothstep(0.54f, 0.90f, inner);
  light += ice * (0.30f * heart + 1.5f * heart * heart * heart);
  // Where it ends, the light of a lamp.
  const float ends = (outer - 0.635f) / 0.055f;
  light += srgb(0xff9a5c) * (0.36f * std::exp(-ends * ends) * smoothstep(0.50f, 0.95f, inner) *
                             smoothstep(-0.42f, 0.45f, y) * smoothstep(-0.55f, 0.30f, x));
  // A broad beam from the lower left to the upper right.
  const float beam = (y + 0.75f * x - 0.42f) / 0.55f;
  light += steel * (0.05f * std::exp(-beam * beam) * smoothstep(-0.75f, 0.3f, y));
  const float edge = (x + 0.20f + 0.12f * y) / 0.16f;
  light += steel * (0.035f * std::exp(-edge * edge) * smoothstep(-1.0f, 0.2f, y));
  // A second, low and cool.
  light += srgb(0x54718a) * (0.30f * std::exp(-3.2f * std::hypot(x + 0.45f, (y - 1.05f) * 0.8f)));
  return light;
}

}  // namespace

Picture glass(int width, int height) {
  Picture picture(width, height);
  constexpr float reeds = 15;  // across the width
  constexpr int samples = 3;
  forEachRow(height, [&](int row) {
    for (int column = 0; column < width; ++column) {
      Vec3 sum;
      for (int s = 0; s < samples; ++s) {
        const float x = (static_cast<float>(column) + (static_cast<float>(s) + 0.5f) / samples) /
                            static_cast<float>(width) -
                        0.5f;
        const float y =
            (static_cast<float>(row) + 0.5f - 0.5f * static_cast<float>(height)) / static_cast<float>(width);
        const float at = (x + 0.5f) * reeds;
        const float reed = std::floor(at);
        const float t = 2 * (at - reed) - 1;  // -1..1 across one reed
        const float wave = 0.10f * noise({at * 0.7f, y * 1.3f, 0.5f}, seed);
        const float slope = t * 0.92f / std::sqrt(1.06f - 0.85f * t * t) + wave;
        Vec3 light;
        for (int c = 0; c < 3; ++c) {
          const float bend = 0.155f * (1 + 0.035f * static_cast<float>(c - 1));
          const Vec3 seen = behind(x - slope * bend, y + 0.02f * wave);
          (c == 0 ? light.x : c == 1 ? light.y : light.z) = c == 0 ? seen.x : c == 1 ? seen.y : seen.z;
        }
        const float edge = t * t * t * t;
        light = light * ((1 - 0.62f * edge * edge) * (1 - 0.22f * t * t));
        // Each reed's shoulder mirrors a narrow window; the glass was drawn, which left streaks along it.
        const float streaks =
            noise({x * 900, y * 5, 2.5f}, seed + 2) + noise({x * 300, y * 3, 5.5f}, seed + 3);
        const float shoulder = std::exp(-90 * (t + 0.80f) * (t + 0.80f));
        const float window = smoothstep(-1.0f, 0.8f, y);
        light = light * (1 + 0.05f * streaks);
        light += srgb(0xbfd3e0) * (0.05f * shoulder * (0.4f + 0.6f * window));
        const float line = (t + 0.86f) / 0.022f;
        light += srgb(0xe4eff6) * ((0.006f + 0.22f * window * window) * std::exp(-line * line) *
                                   (0.8f + 0.5f * noise({reed * 7.3f, y * 2.1f, 8.5f}, seed + 4)));
        sum += light;
      }
      picture.at(column, row) = sum * (1.0f / samples);
    }
  });
  return picture;
}

}  // namespace brisklet
