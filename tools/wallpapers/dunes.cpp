#include "landscape.h"
#include "noise.h"

namespace brisklet {

namespace {

constexpr std::uint32_t seed = 3100;

/// From the ground to the sun: low, on the left, a little ahead of the camera.
const Vec3 sun = normalized({-0.88f, 0.26f, 0.37f});

const Vec3 sunlight = Vec3{1.00f, 0.70f, 0.47f} * 3.0f;
const Vec3 skylight = Vec3{0.29f, 0.29f, 0.46f} * 0.46f;
const Vec3 sand = srgb(0xc39a78);

/// Height of one train of dunes: the wind climbs a long slope to a sharp crest and the sand slides off behind
/// it. `phase` counts dunes.
float duneProfile(float phase) {
  constexpr float crest = 0.66f;
  const float t = phase - std::floor(phase);
  if (t < crest) {
    const float s = t / crest;
    return s * s * (1.75f - 0.75f * s);
  }
  const float s = (1 - t) / (1 - crest);
  return s * (0.72f + 0.28f * s);
}

float baseHeight(float x, float y) {
  // The wind blows to the right and towards the camera; crests wind across it, into the distance.
  const float along = 0.95f * x - 0.31f * y, across = 0.31f * x + 0.95f * y;
  const float bend = 0.62f * noise({across / 250, along / 560, 1.5f}, seed) +
                     0.20f * noise({across / 96, along / 260, 7.5f}, seed + 1);
  const float size = 0.72f + 0.50f * noise({x / 330, y / 330, 3.5f}, seed + 2);
  const float swell = 18 * noise({x / 620, y / 620, 9.5f}, seed + 3);
  return swell + 42 * size * duneProfile(along / 235 + bend);
}

float height(float x, float y) {
  // Smaller dunes ride on the long slopes of the large ones.
  const float along = 0.97f * x - 0.24f * y, across = 0.24f * x + 0.97f * y;
  const float bend = 0.5f * noise({across / 46, along / 120, 2.5f}, seed + 10);
  const float where = smoothstep(0.0f, 0.5f, noise({x / 170, y / 170, 5.5f}, seed + 11));
  return baseHeight(x, y) + 2.2f * where * duneProfile(along / 37 + bend) +
         0.35f * noise({along / 9, across / 24, 0.5f}, seed + 12);
}

/// Share of the sun's disc that is seen from a place, 0..1.
float sunSeen(float x, float y, float z) {
  float seen = 1;
  for (float step = 1; step < 420; step *= 1.12f) {
    const float over = z + sun.z * step - baseHeight(x + sun.x * step, y + sun.y * step);
    seen = std::min(seen, 0.5f + over / (0.035f * step + 0.15f));
    if (seen <= 0) return 0;
  }
  return smoothstep(0, 1, seen);
}

Vec3 skyColour(float slopeX, float slopeZ) {
  // Dust: warm and pale at the horizon, nearly brown above, brighter on the sun's side.
  const float up = clamp01(slopeZ / 0.30f);
  const Vec3 low = srgb(0xc08a6c) * 0.62f, middle = srgb(0x8f6259) * 0.62f, high = srgb(0x4b3a47) * 0.50f;
  const Vec3 colour =
      up < 0.4f ? mix(low, middle, smoothstep(0, 0.4f, up)) : mix(middle, high, smoothstep(0.4f, 1, up));
  const float veil = fbm({slopeX * 5, slopeZ * 26, 0.5f}, 4, seed + 30);
  return colour * (1 - 0.9f * slopeX) * (1 + 0.05f * veil);
}

Vec3 shade(float x, float y, float slopeX, float slopeZ) {
  const float z = height(x, y);
  const float footprint = std::max(0.06f, y / 3400);
  const float dx = (height(x + footprint, y) - height(x - footprint, y)) / (2 * footprint);
  const float dy = (height(x, y + footprint) - height(x, y - footprint)) / (2 * footprint);
  Vec3 normal{-dx, -dy, 1};

  // Wind ripples, as long as they are wider than a pixel.
  const float phase = (0.97f * x - 0.24f * y) / 0.8f + 1.4f * noise({x / 5, y / 5, 4.5f}, seed + 20) +
                      4 * noise({x / 31, y / 31, 8.5f}, seed + 21);
  const float patch = smoothstep(-0.35f, 0.45f, noise({x / 23, y / 41, 3.5f}, seed + 24));
  const float lee = smoothstep(-0.45f, -0.2f, dx);
  normal.x += 0.11f * std::cos(6.2831853f * phase) * smoothstep(0.17f, 0.05f, footprint) * patch * lee;
  const float grains = smoothstep(0.5f, 0.1f, footprint) * noise({x / 0.16f, y / 0.3f, 6.5f}, seed + 22);
  normal.x += 0.04f * grains;
  normal = normalized(normal);

  const float direct = std::max(0.0f, dot(normal, sun)) * sunSeen(x, y, z);
  // The sky is brightest above the sunless horizon behind the camera.
  const float open =
      0.25f + 0.55f * normal.z + 0.45f * std::max(0.0f, dot(normal, Vec3{0.35f, -0.85f, 0.2f}));
  // Light that the sunlit neighbours throw back into the shade.
  const Vec3 bounce = sunlight * sand * (0.040f * (1 - normal.z * normal.z) + 0.012f);
  const float tint = 1 + 0.07f * fbm({x / 40, y / 40, 2.5f}, 3, seed + 23);
  const Vec3 lit = sand * tint * (sunlight * direct * 0.32f + skylight * open * 0.55f + bounce);

  const float haze = 1 - std::exp(-y / 2600 * (1 - 0.25f * slopeX));
  return mix(lit, skyColour(slopeX, std::max(0.0f, slopeZ)), haze);
}

}  // namespace

Picture dunes(int width, int height_) {
  Camera camera;
  camera.width = width;
  camera.height = height_;
  camera.focal = 3.3f * static_cast<float>(width);
  camera.horizon = 0.36f * static_cast<float>(height_);
  camera.eye = 135;
  camera.near = 150;
  camera.far = 9000;
  // Lit slivers along far crests are much narrower than a pixel.
  return rendered(camera, 4, height, shade, skyColour);
}

}  // namespace brisklet
