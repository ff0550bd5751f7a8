#include "noise.h"
#include "picture.h"

namespace brisklet {

namespace {

// A sea of cloud seen from above at first light. Kilometres; x right, y away, z up.
constexpr std::uint32_t seed = 1100;
constexpr float eye = 2.6f, cloudTop = 1.55f, cloudBase = 0.2f, farthest = 70;

const Vec3 sun = normalized({0.36f, 0.92f, 0.085f});
const Vec3 sunlight = Vec3{1.00f, 0.56f, 0.33f} * 1.5f;

Vec3 skyColour(Vec3 direction) {
  const float up = std::max(0.0f, direction.z);
  const float towards = std::max(0.0f, dot(direction, sun));
  const Vec3 zenith = srgb(0x566c94) * 0.66f, middle = srgb(0x8e87a8) * 0.52f, low = srgb(0xdb9a86) * 0.42f;
  Vec3 colour = mix(mix(low, middle, smoothstep(0, 0.10f, up)), zenith, smoothstep(0.04f, 0.36f, up));
  colour += srgb(0xffb27a) * (0.16f * std::pow(towards, 60.0f) + 0.10f * std::pow(towards, 9.0f)) *
            std::exp(-up / 0.12f);
  return colour;
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

/// Share of cloud at a place, 0..1: rolling hills of it, with cauliflower heads.
float density(Vec3 p, int octaves) {
  constexpr float soft = 0.30f, relief = 1.0f;
  if (p.z > cloudTop + 0.4f || p.z < cloudBase) return 0;
  const float hills = fbm({p.x / 5.2f, p.y / 4.6f, 0.5f}, 3, seed + 1);
  const float inside = (cloudTop - 0.42f + 0.66f * hills - p.z) / soft;
  if (inside < -relief) return 0;
  if (inside > 1 + relief) return 1;
  Vec3 q{p.x / 1.25f, p.y / 1.25f, p.z / 0.95f};
  float heads = 0, amplitude = 0.52f;
  for (int i = 0; i < octaves; ++i) {
    const float n = noise(q, seed + 10 + static_cast<std::uint32_t>(i));
    // Rounded upwards and creased between, less so in the finest wisps.
    const float round = i < 4 ? 0.75f : 0.3f;
    heads += amplitude * mix(1.3f * n, 3.0f * std::abs(n) - 0.72f, round);
    amplitude *= 0.53f;
    q = nextOctave(q);
  }
  return clamp01(inside + relief * heads);
}

/// Light that reaches the camera along `direction` from the cloud, and in `through` the share of the light
/// from behind the cloud that still does.
Vec3 cloudLight(Vec3 direction, float jitter, float& through) {
  through = 1;
  Vec3 light;
  if (direction.z > -0.001f) return light;
  const float towards = std::max(0.0f, dot(direction, sun));
  // Light goes on mostly forwards in a cloud.
  const float phase = 0.42f + 0.85f * std::pow(towards, 10.0f);
  const Vec3 haze = skyColour(normalized({direction.x, direction.y, 0.004f}));
  float at = (cloudTop + 0.4f - eye) / direction.z;
  while (through > 0.01f && at < farthest) {
    const float step = std::max(0.014f, 0.0042f * at);
    const Vec3 p = Vec3{0, 0, eye} + direction * (at + jitter * step);
    if (p.z < cloudBase) break;
    const float here = density(p, at < 6 ? 8 : at < 14 ? 7 : 5);
    if (here > 0.01f) {
      float depth = 0;
      for (int k = 1; k <= 6; ++k) {
        const float reach = 0.03f * static_cast<float>(k * k);
        depth += density(p + sun * reach, k < 3 ? 5 : 3) * 0.03f * static_cast<float>(2 * k - 1);
      }
      const float direct = 0.70f * std::exp(-7.0f * depth) + 0.30f * std::exp(-1.5f * depth);
      const float high = smoothstep(0.7f, cloudTop + 0.1f, p.z);
      const Vec3 ambient = mix(srgb(0x2b3b66) * 0.22f, srgb(0x7685b4) * 0.30f, high);
      const Vec3 lit = sunlight * (direct * phase * 0.34f) + ambient;
      const float cover = 1 - std::exp(-here * step * 20);
      light += mix(lit, haze, 1 - std::exp(-at / 30)) * (through * cover);
      through *= 1 - cover;
    }
    at += step;
  }
  return light;
}

}  // namespace

Picture dawn(int width, int height) {
  Picture picture(width, height);
  const float focal = 1.75f * static_cast<float>(width), horizon = 0.55f * static_cast<float>(height);
  forEachRow(height, [&](int row) {
    for (int column = 0; column < width; ++column) {
      const float x = static_cast<float>(column) + 0.5f - 0.5f * static_cast<float>(width);
      const Vec3 direction = normalized({x / focal, 1, (horizon - static_cast<float>(row) - 0.5f) / focal});
      float through = 1;
      const Vec3 light = cloudLight(direction, hashedUnit(column, row, 0, seed), through);
      picture.at(column, row) = light + withCirrus(skyColour(direction), direction) * through;
    }
  });
  return picture;
}

}  // namespace brisklet
