#include "noise.h"
#include "picture.h"

namespace brisklet {

namespace {

// A sea of cloud seen from above at first light. Kilometres; x right, y away, z up.
constexpr std::uint32_t seed = 1100;
constexpr float eye = 2.6f, cloudTop = 1.55f, cloudBase = 0.2f, farthest = 70;

const Vec3 sun = normalized({0.42f, 0.88f, 0.10f});
const Vec3 sunlight = Vec3{1.00f, 0.58f, 0.36f} * 1.25f;

Vec3 skyColour(Vec3 direction) {
  const float up = std::max(0.0f, direction.z);
  const float towards = std::max(0.0f, dot(direction, sun));
  const Vec3 zenith = srgb(0x3a5684) * 0.62f, middle = srgb(0x7d7fa6) * 0.60f, low = srgb(0xe0a086) * 0.62f;
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

float density(Vec3 p, int octaves) {
  if (p.z > cloudTop + 0.35f || p.z < cloudBase) return 0;
  const float hills = fbm({p.x / 5.5f, p.y / 5.5f, 0.5f}, 3, seed + 1);
  const float top = cloudTop - 0.38f + 0.62f * hills;
  const Vec3 q{p.x / 1.05f, p.y / 1.05f, p.z / 0.8f};
  const float billow = fbm(q, octaves, seed + 10, 0.52f);
  return clamp01((top - p.z) / 0.34f + 1.05f * billow);
}

}  // namespace

Picture dawn(int width, int height) {
  Picture picture(width, height);
  const float focal = 1.75f * static_cast<float>(width), horizon = 0.55f * static_cast<float>(height);
  forEachRow(height, [&](int row) {
    for (int column = 0; column < width; ++column) {
      const Vec3 direction =
          normalized({(static_cast<float>(column) + 0.5f - 0.5f * static_cast<float>(width)) / focal, 1,
                      (horizon - static_cast<float>(row) - 0.5f) / focal});
      const Vec3 sky = withCirrus(skyColour(direction), direction);
      float through = 1;
      Vec3 light;
      if (direction.z < -0.001f) {
        const float jitter = hashedUnit(column, row, 0, seed);
        float at = (cloudTop + 0.35f - eye) / direction.z;
        const float towards = dot(direction, sun);
        // Light goes on mostly forwards in a cloud, with a little thrown back.
        const float phase = 0.35f + 0.75f * std::pow(std::max(0.0f, towards), 8.0f) + 0.15f * (1 - towards);
        const Vec3 hazeColour = skyColour(normalized({direction.x, direction.y, 0.015f}));
        for (int i = 0; i < 220 && through > 0.01f && at < farthest; ++i) {
          const float step = std::max(0.022f, 0.0055f * at);
          const Vec3 p = Vec3{0, 0, eye} + direction * (at + jitter * step);
          if (p.z < cloudBase) break;
          const float d = density(p, at < 18 ? 6 : 4);
          if (d > 0.01f) {
            float optical = 0;
            for (int k = 1; k <= 5; ++k) {
              const float reach = 0.05f * static_cast<float>(k * k);
              optical += density(p + sun * reach, 3) * 0.05f * static_cast<float>(2 * k - 1);
            }
            const float direct = 0.75f * std::exp(-2.6f * optical) + 0.25f * std::exp(-0.7f * optical);
            const float high = smoothstep(0.5f, cloudTop, p.z);
            const Vec3 ambient = mix(srgb(0x33456c) * 0.35f, srgb(0x6f7fae) * 0.62f, high);
            const Vec3 lit = sunlight * (direct * phase * 0.62f) + ambient * 0.55f;
            const float haze = 1 - std::exp(-at / 26);
            const float cover = 1 - std::exp(-d * step * 7.5f);
            light += mix(lit, hazeColour, haze) * (through * cover);
            through *= 1 - cover;
          }
          at += step;
        }
        const Vec3 beyond = hazeColour;
        light += beyond * through;
      } else {
        light = sky;
      }
      picture.at(column, row) = light;
    }
  });
  return picture;
}

}  // namespace brisklet
