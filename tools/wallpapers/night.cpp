#include "landscape.h"
#include "noise.h"

namespace brisklet {

namespace {

constexpr std::uint32_t seed = 2200;

/// Where the moon stands, as slopes of the line of sight, and the radius of its disc.
constexpr float moonX = 0.048f, moonZ = 0.088f, moonRadius = 0.0088f;
constexpr float eye = 1150;

const Vec3 moonlight = srgb(0xbcd6ee);
/// From the ground to the moon: further to the side than it is seen, which shows the ridges' relief.
const Vec3 toMoon = normalized({0.66f, 0.52f, 0.40f});

/// Mountains without trees, above the valley floor. They grow with the distance, so that near and far ridges
/// are equally rich in the picture.
float mountains(float x, float y) {
  const float px = x * (16000 / (y + 2500) + 0.4f), py = 5200 * std::log(y / 1000) + 0.14f * y;
  const float bendX = 900 * noise({px / 4100, py / 4100, 1.5f}, seed);
  const float bendY = 900 * noise({px / 4100, py / 4100, 6.5f}, seed + 1);
  const float massif = 0.5f + 0.5f * noise({px / 8000, py / 7000, 2.5f}, seed + 2);
  const float ridge = ridged({(px + bendX) / 5600, (py + bendY) / 4600, 3.5f}, 8, seed + 3);
  const float far = smoothstep(3000, 26000, y);
  const float ground = 60 + 500 * far + (620 + mix(300.0f, 2100.0f, far) * massif) * (ridge - 0.30f);
  // The fjord winds towards the moon.
  const float middle = y * 0.046f + 300 * std::sin(y / 2600 + 2.6f), width = 400 + 0.014f * y;
  const float gullies = fbm({x / 620, y / 900, 8.5f}, 6, seed + 12, 0.55f);
  const float away = std::abs(x - middle + bendX * 0.35f) / width + 0.42f * gullies;
  const float water = smoothstep(1.9f, 0.7f, away) * smoothstep(24000, 15000, y);
  return mix(ground, -80.0f, water);
}

/// Conifers: one a cell, a cone each, only where there is soil.
float trees(float x, float y, float ground) {
  if (y > 9000 || ground > 1150 || ground < 2) return 0;
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

/// Of the ground, the trees on it, or the fjord's water, which is at 0.
float height(float x, float y) {
  const float ground = mountains(x, y);
  return std::max(0.0f, ground + trees(x, y, ground));
}

Vec3 skyColour(float slopeX, float slopeZ) {
  const float up = std::max(0.0f, slopeZ);
  const Vec3 deep = srgb(0x070d22) * 0.70f, low = srgb(0x1d3a66) * 0.77f;
  Vec3 colour = mix(deep, low, std::exp(-up / 0.115f));
  const float away = std::hypot(slopeX - moonX, slopeZ - moonZ);
  return colour + moonlight * (0.30f * std::exp(-away / 0.022f) + 0.10f * std::exp(-away / 0.075f) +
                               0.02f * std::exp(-away / 0.18f));
}

/// The disc with its plains, and what is near enough to it to be outshone counts as its light.
Vec3 moon(float slopeX, float slopeZ) {
  const float x = (slopeX - moonX) / moonRadius, z = (slopeZ - moonZ) / moonRadius;
  const float from = std::hypot(x, z);
  if (from > 1.1f) return {};
  const float plains =
      smoothstep(-0.06f, 0.22f, fbm({1.3f * x + 0.3f, 1.3f * z, 3.5f}, 4, seed + 70) + 0.05f);
  const float craters = fbm({x * 5, z * 5, 1.5f}, 4, seed + 71, 0.7f);
  const float bright = (0.92f - 0.60f * plains) * (1 + 0.25f * craters) * (1 - 0.25f * from * from);
  return srgb(0xfbf3e6) * (bright * smoothstep(1.03f, 0.97f, from));
}

/// Thin cloud, which is seen where it drifts by the moon.
float veil(float slopeX, float slopeZ) {
  const float bend = fbm({slopeX * 9, slopeZ * 20, 1.5f}, 3, seed + 80);
  const float streaks = fbm({slopeX * 14 + bend, slopeZ * 62 + 1.2f * bend, 0.5f}, 6, seed + 81, 0.55f);
  return smoothstep(0.0f, 0.6f, streaks) * smoothstep(0.01f, 0.05f, slopeZ) *
         smoothstep(0.21f, 0.10f, slopeZ);
}

/// Stars with a faint band of unresolved ones; dimmer towards the horizon.
Vec3 stars(float slopeX, float slopeZ) {
  const float clear = smoothstep(0.05f, 0.24f, slopeZ);
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

Vec3 sky(float slopeX, float slopeZ) {
  const Vec3 clear = skyColour(slopeX, slopeZ);
  const float away = std::hypot(slopeX - moonX, slopeZ - moonZ);
  const Vec3 lit = clear * 1.25f + moonlight * (0.30f * std::exp(-away / 0.035f));
  const float cloud = 0.7f * veil(slopeX, slopeZ);
  return mix(clear + stars(slopeX, slopeZ), lit, cloud) + moon(slopeX, slopeZ) * (1 - 0.6f * cloud);
}

/// Light from the fjord: the sky and the mountains in its mirror, and the moon in every small wave.
Vec3 water(float x, float y, float slopeX, float slopeZ) {
  const float depth = y * y / (eye * 3870);  // what a row of pixels covers
  float dx = 0, dy = 0;
  for (const float length : {70.0f, 31.0f, 14.0f, 6.0f}) {
    const float seen = smoothstep(0.4f * length, 0.1f * length, depth);
    if (seen <= 0) continue;
    dx += seen * 0.010f * noise({x / length, 0.6f * y / length, 0.5f}, seed + 90);
    dy += seen * 0.016f * noise({x / length, 0.6f * y / length, 7.5f}, seed + 91);
  }
  // Gusts roughen the water in patches; between them it is nearly a mirror.
  const float gust = smoothstep(-0.45f, 0.5f, fbm({x / 420, y / 1100, 0.5f}, 4, seed + 92));
  const float rough = mix(0.014f, 0.058f, gust);
  const int hx = static_cast<int>(std::floor(x * 0.42f)), hy = static_cast<int>(y * 0.21f);
  const float spread = rough * std::sqrt(-2 * std::log(std::max(1e-6f, hashedUnit(hx, hy, 0, seed + 93))));
  const float turn = 6.2831853f * hashedUnit(hx, hy, 1, seed + 93);
  const Vec3 normal = normalized({-dx - spread * std::cos(turn), -dy - spread * std::sin(turn), 1});
  const Vec3 ray = normalized({slopeX, 1, slopeZ});
  const float facing = std::max(0.02f, -dot(normal, ray));
  const Vec3 mirrored = ray + normal * (2 * facing);
  const float mx = mirrored.x / mirrored.y, mz = std::max(0.002f, mirrored.z / mirrored.y);
  const float fresnel = 0.02f + 0.98f * std::pow(1 - facing, 5.0f);
  const float ridge = 0.030f + 0.022f * noise({mx * 28, 0.5f, 0.5f}, seed + 94);
  const Vec3 seen =
      mix(srgb(0x1b2f52) * 0.8f, skyColour(mx, mz), smoothstep(ridge - 0.008f, ridge + 0.008f, mz));
  const float across = (mx - moonX) / 0.012f, along = (mz - moonZ) / 0.016f;
  const Vec3 glint = srgb(0xfff0d8) * (7.0f * std::exp(-0.5f * (across * across + along * along)));
  return srgb(0x0f2a46) * 0.45f + (seen + glint) * fresnel;
}

Vec3 land(float x, float y, float z) {
  const float footprint = std::max(1.0f, y / 3800);
  // A wood is softer than its trees' sides: light comes through and from all around them.
  const auto relief = [&](float px, float py) {
    const float ground = mountains(px, py);
    return ground + 0.45f * smoothstep(9000, 4000, y) * trees(px, py, ground);
  };
  const float dx = (relief(x + footprint, y) - relief(x - footprint, y)) / (2 * footprint);
  const float dy = (relief(x, y + footprint) - relief(x, y - footprint)) / (2 * footprint);
  const Vec3 normal = normalized({-dx, -dy, 1});
  const float direct = std::max(0.0f, dot(normal, toMoon));
  const float snow = smoothstep(620, 1050, z + 260 * noise({x / 300, y / 300, 0.5f}, seed + 30)) *
                     smoothstep(0.40f, 0.68f, normal.z);
  const Vec3 albedo = mix(srgb(0x35486a), srgb(0xb4c4da), snow);
  return albedo * (srgb(0x44639a) * (0.62f * (0.5f + 0.5f * normal.z)) + moonlight * (1.25f * direct));
}

Vec3 shade(float x, float y, float slopeX, float slopeZ) {
  const float z = height(x, y);
  const Vec3 lit = z > 0 ? land(x, y, z) : water(x, y, slopeX, slopeZ);

  // Mist lies in the valley, densest on its floor; all air scatters a little.
  const float depth = 170;
  const float drop = eye - z;
  const float path = std::sqrt(1 + slopeX * slopeX + slopeZ * slopeZ) * y;
  const float column = std::abs(drop) < 1 ? std::exp(-z / depth)
                                          : depth * (std::exp(-z / depth) - std::exp(-eye / depth)) / drop;
  const float drift = 0.55f + 1.1f * fbm({x / 1900, y / 3000, 0.5f}, 4, seed + 31);
  const float mist = 1 - std::exp(-path * (0.00042f * std::max(0.04f, drift) * column + 0.0000165f));
  const Vec3 glow = skyColour(slopeX, std::max(slopeZ, -0.02f) * 0.8f);
  const Vec3 air = glow * 0.85f + srgb(0x17305a) * 0.12f;
  const float away = std::abs(slopeX - moonX);
  const Vec3 valley = mix(srgb(0x3d5a86) * 0.80f + moonlight * (0.12f * std::exp(-away / 0.06f)), air,
                          smoothstep(4000, 22000, y));
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
  return rendered(camera, 2, height, shade, sky);
}

}  // namespace brisklet
