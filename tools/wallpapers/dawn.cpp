#include "noise.h"
#include "picture.h"

#include <array>

namespace brisklet {

namespace {

// A sea of cloud seen from above at first light. Kilometres; x right, y away, z up.
constexpr std::uint32_t seed = 1100;
constexpr float eye = 3.1f, cloudTop = 1.55f, cloudBase = 0.2f, farthest = 70;

/// Where the sun stands above the clouds, as slopes of the line of sight, and the radius of its disc.
constexpr float sunX = 0.175f, sunZ = 0.030f, sunRadius = 0.0072f;
/// From the clouds to the sun: a little higher than it is seen, so that its light reaches into the hollows.
const Vec3 sun = normalized({sunX + 0.12f, 1, 0.125f});
const Vec3 sunlight = Vec3{1.00f, 0.49f, 0.25f} * 2.0f;

Vec3 skyColour(Vec3 direction) {
  const float up = std::max(0.0f, direction.z);
  const Vec3 zenith = srgb(0x566c94) * 0.645f, middle = srgb(0x8e87a8) * 0.52f, low = srgb(0xe39a7c) * 0.62f;
  Vec3 colour = mix(mix(low, middle, smoothstep(0, 0.10f, up)), zenith, smoothstep(0.04f, 0.36f, up));
  const float away = std::hypot(direction.x / direction.y - sunX, 1.25f * (direction.z / direction.y - sunZ));
  colour += srgb(0xffa860) * (1.1f * std::exp(-away / 0.040f) + 0.42f * std::exp(-away / 0.115f));
  return colour;
}

Vec3 sunDisc(Vec3 direction) {
  const float away = std::hypot(direction.x / direction.y - sunX, 1.05f * (direction.z / direction.y - sunZ));
  return srgb(0xffe0a8) * (16 * smoothstep(1.06f, 0.94f, away / sunRadius));
}

/// Thin high cloud, drawn out by the wind and catching the light first.
Vec3 withCirrus(Vec3 colour, Vec3 direction) {
  if (direction.z < 0.01f) return colour;
  const float distance = 6 / direction.z;
  const Vec3 p{direction.x * distance, direction.y * distance, 0};
  const float bendX = fbm({p.x / 14, p.y / 14, 2.5f}, 3, seed + 60);
  const float along = 0.86f * p.x + 0.5f * p.y + 3 * bendX, across = -0.5f * p.x + 0.86f * p.y + 5 * bendX;
  const float streaks = fbm({along / 22, across / 5.5f, 0.5f}, 6, seed + 61, 0.55f);
  const float cover =
      smoothstep(0.02f, 0.75f, streaks + 0.35f * fbm({p.x / 30, p.y / 30, 1.5f}, 2, seed + 62));
  const float seen = cover * smoothstep(0.01f, 0.07f, direction.z) * smoothstep(0.55f, 0.10f, direction.z);
  return mix(colour, colour * 1.05f + srgb(0xf0b0a0) * 0.13f, 0.8f * seen);
}

/// How far inside the cloud a place is: negative outside, 1 a few hundred metres in. Rolling hills of it,
/// with cauliflower heads.
float depthInside(Vec3 p, int octaves) {
  constexpr float soft = 0.30f;
  const float hills = fbm({p.x / 5.2f, p.y / 4.6f, 0.5f}, 3, seed + 1);
  const float inside = (cloudTop - 0.42f + 0.66f * hills - p.z) / soft;
  Vec3 q{p.x / 1.25f, p.y / 1.25f, p.z / 0.95f};
  float heads = 0, amplitude = 0.50f;
  for (int i = 0; i < octaves; ++i) {
    // What is still to come cannot reach here.
    if (const float rest = 2.8f * amplitude; std::abs(inside + heads) > rest) break;
    const float n = noise(q, seed + 10 + static_cast<std::uint32_t>(i));
    // Rounded upwards and creased between, less so in the finest wisps.
    const float round = i < 5 ? 0.75f : 0.35f;
    heads += amplitude * mix(1.3f * n, 3.0f * std::abs(n) - 0.72f, round);
    amplitude *= 0.56f;
    q = nextOctave(q);
  }
  return inside + heads;
}

/// Share of cloud, 0..1: it has an edge, not a haze around it.
float density(float inside) {
  return clamp01(11 * inside);
}

/// Light that reaches the camera along `direction` from the cloud, and in `through` the share of the light
/// from behind the cloud that still does.
Vec3 cloudLight(Vec3 direction, float jitter, float& through) {
  through = 1;
  Vec3 light;
  if (direction.z > -0.001f) return light;
  const float towards = std::max(0.0f, dot(direction, normalized({sunX, 1, sunZ})));
  // Light goes on mostly forwards in a cloud.
  const float phase = 0.40f + 0.55f * std::pow(towards, 7.0f) + 0.9f * std::pow(towards, 60.0f);
  const Vec3 haze = skyColour(normalized({direction.x, direction.y, 0.004f}));
  float at = (cloudTop + 0.4f - eye) / direction.z;
  while (through > 0.01f && at < farthest) {
    const float step = std::max(0.005f, 0.0030f * at);
    const Vec3 p = Vec3{0, 0, eye} + direction * (at + jitter * step);
    if (p.z < cloudBase) break;
    const float inside = depthInside(p, at < 3 ? 10 : at < 5 ? 9 : at < 7 ? 8 : at < 14 ? 7 : 5);
    if (inside > 0) {
      float depth = 0;
      for (int k = 1; k <= 6; ++k) {
        const float reach = 0.022f * static_cast<float>(k * k);
        depth +=
            density(depthInside(p + sun * reach, k < 3 ? 6 : 3)) * 0.022f * static_cast<float>(2 * k - 1);
      }
      const float direct = 0.74f * std::exp(-13.0f * depth) + 0.26f * std::exp(-2.6f * depth);
      const float high = smoothstep(0.8f, cloudTop + 0.1f, p.z);
      const Vec3 ambient = mix(srgb(0x2b3c74) * 0.26f, srgb(0x6f86d2) * 0.33f, high);
      // Hollows see less of the sky.
      const float open = clamp01(0.75f - 1.3f * depthInside(p + Vec3{0, 0, 0.03f}, 8));
      const Vec3 lit = sunlight * (direct * phase) + ambient * (0.45f + 0.75f * open);
      const float cover = 1 - std::exp(-density(inside) * step * 120);
      light += mix(lit, haze, 1 - std::exp(-at / 26)) * (through * cover);
      through *= 1 - cover;
      at += step;
    } else {
      at += std::max(step, -0.10f * inside);
    }
  }
  return light;
}

}  // namespace

Picture dawn(int width, int height) {
  Picture picture(width, height);
  const float focal = 1.75f * static_cast<float>(width), horizon = 0.55f * static_cast<float>(height);
  // Four lines of sight per pixel, at the corners of a tilted square.
  constexpr std::array<std::array<float, 2>, 4> samples{
      {{0.125f, 0.625f}, {0.375f, 0.125f}, {0.625f, 0.875f}, {0.875f, 0.375f}}};
  forEachRow(height, [&](int row) {
    for (int column = 0; column < width; ++column) {
      Vec3 sum;
      int layer = 0;
      for (const auto [right, down] : samples) {
        const float x = static_cast<float>(column) + right - 0.5f * static_cast<float>(width);
        const Vec3 direction = normalized({x / focal, 1, (horizon - static_cast<float>(row) - down) / focal});
        float through = 1;
        sum += cloudLight(direction, hashedUnit(column, row, layer++, seed), through);
        sum += (withCirrus(skyColour(direction), direction) + sunDisc(direction)) * through;
      }
      picture.at(column, row) = sum * (1.0f / samples.size());
    }
  });
  return picture;
}

}  // namespace brisklet
