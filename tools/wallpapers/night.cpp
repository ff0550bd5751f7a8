#include "landscape.h"
#include "noise.h"

namespace brisklet {

namespace {

constexpr std::uint32_t seed = 2200;

/// Where the moon stands behind the ridges, as slopes of the line of sight.
constexpr float moonX = 0.05f, moonZ = 0.022f;
constexpr float eye = 1150;

const Vec3 moonlight = srgb(0xbcd6ee);

/// Mountains without trees, above the valley floor. They grow with the distance, so that near and far ridges
/// are equally rich in the picture.
float mountains(float x, float y) {
  const float px = x * (16000 / (y + 2500) + 0.4f), py = 5200 * std::log(y / 1000) + 0.14f * y;
  const float bendX = 900 * noise({px / 4100, py / 4100, 1.5f}, seed);
  const float bendY = 900 * noise({px / 4100, py / 4100, 6.5f}, seed + 1);
  const float massif = 0.5f + 0.5f * noise({px / 8000, py / 7000, 2.5f}, seed + 2);
  const float ridge = ridged({(px + bendX) / 5600, (py + bendY) / 4600, 3.5f}, 8, seed + 3);
  const float far = smoothstep(3000, 26000, y);
  return 60 + 500 * far + (620 + mix(300.0f, 2100.0f, far) * massif) * (ridge - 0.30f);
}

/// Conifers: one a cell, a cone each, only where there is soil.
float trees(float x, float y, float ground) {
  if (y > 9000 || ground > 1150) return 0;
  constexpr float cell = 9;
  float tallest = 0;
  const int cx = static_cast<int>(std::floor(x / cell)), cy = static_cast<int>(std::floor(y / cell));
  for (int j = -1; j <= 1; ++j) {
    for (int i = -1; i <= 1; ++i) {
      const int tx = cx + i, ty = cy + j;
      const float px = (static_cast<float>(tx) + hashedUnit(tx, ty, 0, seed + 40)) * cell;
      const float py = (static_cast<float>(ty) + hashedUnit(tx, ty, 1, seed + 40)) * cell;
      const float tall = 9 + 19 * hashedUnit(tx, ty, 2, seed + 40) * hashedUnit(tx, ty, 3, seed + 40);
      const float away = std::hypot(x - px, y - py);
      tallest = std::max(tallest, tall - away * 4.6f);
    }
  }
  return std::max(0.0f, tallest) * smoothstep(1150, 850, ground);
}

float height(float x, float y) {
  const float ground = mountains(x, y);
  return ground + trees(x, y, ground);
}

Vec3 skyColour(float slopeX, float slopeZ) {
  const float up = std::max(0.0f, slopeZ);
  const Vec3 deep = srgb(0x070d22) * 0.75f, low = srgb(0x1d3a66) * 0.80f;
  Vec3 colour = mix(deep, low, std::exp(-up / 0.115f));
  const float away = std::hypot((slopeX - moonX), (slopeZ - moonZ) * 1.15f);
  colour += moonlight * (0.13f * std::exp(-away / 0.05f) + 0.06f * std::exp(-away / 0.17f));
  return colour;
}

/// Stars with a faint band of unresolved ones; dimmer towards the horizon.
Vec3 stars(float slopeX, float slopeZ) {
  const float clear = smoothstep(0.02f, 0.22f, slopeZ);
  if (clear <= 0) return {};
  const float bandAt = (slopeX * 0.80f + (slopeZ - 0.26f) * 0.60f) / 0.10f;
  const float band =
      std::exp(-bandAt * bandAt) * (0.55f + 0.75f * fbm({slopeX * 16, slopeZ * 16, 4.5f}, 5, seed + 61));
  Vec3 light = srgb(0x6f8fd0) * (0.020f * std::max(0.0f, band));
  for (int layer = 0; layer < 3; ++layer) {
    const float cell = layer == 0 ? 0.0165f : layer == 1 ? 0.0072f : 0.0034f;
    const int cx = static_cast<int>(std::floor(slopeX / cell)),
              cy = static_cast<int>(std::floor(slopeZ / cell));
    for (int j = -1; j <= 1; ++j) {
      for (int i = -1; i <= 1; ++i) {
        const int sx = cx + i, sy = cy + j;
        const float chance = layer == 2 ? 0.10f + 0.75f * clamp01(band) : 0.55f;
        if (hashedUnit(sx, sy, layer, seed + 50) > chance) continue;
        const float px = (static_cast<float>(sx) + hashedUnit(sx, sy, layer, seed + 51)) * cell;
        const float py = (static_cast<float>(sy) + hashedUnit(sx, sy, layer, seed + 52)) * cell;
        const float rare = hashedUnit(sx, sy, layer, seed + 53);
        const float bright = (layer == 0 ? 0.60f : layer == 1 ? 0.16f : 0.06f) * rare * rare * rare;
        const float away = std::hypot(slopeX - px, slopeZ - py) / 0.00026f;
        if (away > 6) continue;
        const float warm = hashedUnit(sx, sy, layer, seed + 54);
        light += mix(srgb(0xa9c4ff), srgb(0xffe6c8), warm * warm) * (bright * std::exp(-0.5f * away * away));
      }
    }
  }
  return light * clear;
}

Vec3 shade(float x, float y, float slopeX, float slopeZ) {
  const float z = height(x, y);
  const float footprint = std::max(1.0f, y / 2600);
  const float dx = (height(x + footprint, y) - height(x - footprint, y)) / (2 * footprint);
  const float dy = (height(x, y + footprint) - height(x, y - footprint)) / (2 * footprint);
  const Vec3 normal = normalized({-dx, -dy, 1});
  const Vec3 toMoon = normalized({0.55f, 0.62f, 0.42f});
  const float direct = std::max(0.0f, dot(normal, toMoon));
  const float snow = smoothstep(1150, 1500, z + 220 * noise({x / 300, y / 300, 0.5f}, seed + 30)) *
                     smoothstep(0.45f, 0.75f, normal.z);
  const Vec3 albedo = mix(srgb(0x1a2638), srgb(0x7f93ad), snow);
  const Vec3 lit =
      albedo * (srgb(0x3b5684) * (0.55f * (0.5f + 0.5f * normal.z)) + moonlight * (0.40f * direct));

  // Mist lies in the valley, densest on its floor; all air scatters a little.
  const float depth = 210;
  const float drop = eye - z;
  const float path = std::sqrt(1 + slopeX * slopeX + slopeZ * slopeZ) * y;
  const float column = std::abs(drop) < 1 ? std::exp(-z / depth)
                                          : depth * (std::exp(-z / depth) - std::exp(-eye / depth)) / drop;
  const float drift = 1 + 0.8f * fbm({x / 2200, y / 2600, 0.5f}, 4, seed + 31);
  const float mist = 1 - std::exp(-path * (0.0013f * std::max(0.10f, drift) * column + 0.0000175f));
  const Vec3 glow = skyColour(slopeX, std::max(slopeZ, -0.02f) * 0.8f);
  const Vec3 air = glow * 0.82f + srgb(0x17305a) * 0.12f;
  const Vec3 valley = mix(srgb(0x2d456b) * 0.78f, air, smoothstep(2500, 15000, y));
  return mix(lit, valley, mist);
}

}  // namespace

Picture night(int width, int height_) {
  Camera camera;
  camera.width = width;
  camera.height = height_;
  camera.focal = 3.0f * static_cast<float>(width);
  camera.horizon = 0.60f * static_cast<float>(height_);
  camera.eye = eye;
  camera.near = 2400;
  camera.far = 60000;
  return rendered(camera, 2, height, shade, [](float slopeX, float slopeZ) {
    return skyColour(slopeX, slopeZ) + stars(slopeX, slopeZ);
  });
}

}  // namespace brisklet
