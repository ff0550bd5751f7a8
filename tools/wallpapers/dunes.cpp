#include "landscape.h"
#include "noise.h"

namespace brisklet {

namespace {

constexpr std::uint32_t seed = 3100;

/// From the ground to the sun: low, on the right, ahead of the camera.
const Vec3 sun = normalized({0.80f, 0.50f, 0.245f});

const Vec3 sunlight = Vec3{1.00f, 0.59f, 0.35f};
const Vec3 skylight = Vec3{0.30f, 0.27f, 0.46f};
const Vec3 sand = srgb(0xc99876);
constexpr float eye = 62, highest = 75;

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

/// The dunes of the plain: the wind blows to the left and away, their crests wind across it.
float plain(float x, float y) {
  const float along = -0.95f * x + 0.31f * y, across = 0.31f * x + 0.95f * y;
  const float bend = 0.62f * noise({across / 250, along / 560, 1.5f}, seed) +
                     0.20f * noise({across / 96, along / 260, 7.5f}, seed + 1);
  const float size = 0.62f + 0.60f * noise({x / 330, y / 330, 3.5f}, seed + 2);
  const float swell = 14 * noise({x / 620, y / 620, 9.5f}, seed + 3);
  return swell + 34 * size * smoothstep(90, 520, y) * duneProfile(along / 210 + bend);
}

/// How far to the right of the great dune's crest a place is; the crest winds from the camera into the
/// distance.
float besideCrest(float x, float y) {
  const float u = std::log(std::max(y, 40.0f) / 100);
  const float slope = 0.012f + 0.118f * std::cos(2.3f * u) + 0.012f * noise({y / 70, 0.5f, 0.5f}, seed + 5);
  return x - y * slope;
}

/// The great dune: a long back towards the wind, an edge, and behind it sand at the steepest that it can lie.
float greatDune(float y, float beside) {
  const float crest = 12 + 34 * smoothstep(110, 430, y) * smoothstep(1500, 600, y) +
                      2.5f * noise({y / 60, 3.5f, 0.5f}, seed + 6);
  if (beside < 0) return crest + 0.62f * beside;
  const float back = beside / (2.4f * crest + 20);
  return crest * (1 - 0.75f * back - 0.25f * back * back);
}

float baseHeight(float x, float y) {
  const float low = plain(x, y), high = greatDune(y, besideCrest(x, y)) + 0.4f * low;
  // Sand fills the corner where they meet.
  constexpr float corner = 6;
  const float h = clamp01(0.5f + 0.5f * (high - low) / corner);
  return mix(low, high, h) + 0.5f * corner * h * (1 - h);
}

float height(float x, float y) {
  // Smaller dunes ride on the long slopes of the large ones.
  const float along = -0.97f * x + 0.24f * y, across = 0.24f * x + 0.97f * y;
  const float bend = 0.5f * noise({across / 46, along / 120, 2.5f}, seed + 10);
  const float where = smoothstep(0.05f, 0.5f, noise({x / 170, y / 170, 5.5f}, seed + 11)) *
                      smoothstep(10, 40, std::abs(besideCrest(x, y)));
  return baseHeight(x, y) + 2.0f * where * duneProfile(along / 37 + bend) +
         1.5f * noise({along / 26, across / 70, 1.5f}, seed + 13) +
         0.22f * noise({along / 9, across / 24, 0.5f}, seed + 12);
}

/// Share of the sun's disc that is seen from a place, 0..1; what rides on the large dunes shades nothing.
float sunSeen(float x, float y) {
  const float z = baseHeight(x, y) + 0.3f;
  constexpr float growth = 1.2f;
  const auto seenOver = [&](float step) {
    const float over = z + sun.z * step - baseHeight(x + sun.x * step, y + sun.y * step);
    return 0.5f + over / (0.014f * step + 0.2f);
  };
  float least = 4, nearest = 1;
  for (float step = 0.7f; z + sun.z * step < highest && least > -3; step *= growth) {
    const float seen = seenOver(step);
    if (seen < least) {
      least = seen;
      nearest = step;
    }
  }
  // The edge that the light passes closest lies between the steps.
  for (float reach = nearest * (growth - 1) * 0.6f; least > 0 && least < 4 && reach > 0.3f; reach *= 0.6f) {
    for (const float step : {nearest - reach, nearest + reach}) {
      const float seen = seenOver(step);
      if (seen < least) {
        least = seen;
        nearest = step;
      }
    }
  }
  return smoothstep(0, 1, least);
}

Vec3 skyColour(float slopeX, float slopeZ) {
  // Dust: warm and pale at the horizon, nearly brown above, brighter on the sun's side.
  const float up = clamp01(slopeZ / 0.45f);
  const Vec3 low = srgb(0xcf9570) * 0.72f, middle = srgb(0x8f6259) * 0.62f, high = srgb(0x4b3a47) * 0.50f;
  const Vec3 colour =
      up < 0.4f ? mix(low, middle, smoothstep(0, 0.37f, up)) : mix(middle, high, smoothstep(0.4f, 1, up));
  const float veil = fbm({slopeX * 3.3f, slopeZ * 17, 0.5f}, 4, seed + 30);
  // The sun stands outside, on the right; the dust about it glows.
  const float away = std::hypot(slopeX - 0.34f, 2.1f * (slopeZ - 0.035f));
  return colour * (1 + 0.35f * slopeX) * (1 + 0.05f * veil) +
         Vec3{1.0f, 0.62f, 0.36f} * (1.4f * std::exp(-away / 0.068f));
}

Vec3 shade(float x, float y, float slopeX, float slopeZ) {
  const float footprint = std::max(0.03f, y / 3000);
  const float dx = (height(x + footprint, y) - height(x - footprint, y)) / (2 * footprint);
  const float dy = (height(x, y + footprint) - height(x, y - footprint)) / (2 * footprint);
  Vec3 normal{-dx, -dy, 1};
  const float steep = smoothstep(0.42f, 0.56f, std::hypot(dx, dy));

  // Wind ripples, as long as they are wider than a pixel; none where the sand slides.
  const float phase = (0.97f * x - 0.24f * y) / 0.62f + 1.5f * noise({x / 4, y / 4, 4.5f}, seed + 20) +
                      5 * noise({x / 26, y / 26, 8.5f}, seed + 21);
  const float patch = smoothstep(-0.5f, 0.35f, noise({x / 23, y / 41, 3.5f}, seed + 24));
  const float ripple = std::sin(6.2831853f * phase + 0.7f * std::sin(6.2831853f * phase));
  normal.x += 0.17f * ripple * smoothstep(0.20f, 0.05f, footprint) * (0.35f + 0.65f * patch) * (1 - steep);
  // Tongues of sand that slid down the steep side.
  const float beside = besideCrest(x, y);
  const float tongues = fbm({y / 2.6f + beside / 14, beside / 11, 6.5f}, 5, seed + 25, 0.62f) +
                        1.2f * (ridged({y / 7 + beside / 12, beside / 26, 1.5f}, 4, seed + 26) - 0.45f);
  normal.y += 0.5f * steep * tongues * smoothstep(0.8f, 0.1f, footprint);
  const float grains = smoothstep(0.30f, 0.04f, footprint) * noise({x / 0.07f, y / 0.14f, 6.5f}, seed + 22);
  normal.x += 0.07f * grains;
  normal = normalized(normal);

  const float facing = std::max(0.0f, dot(normal, sun));
  const float direct = facing > 0 ? facing * sunSeen(x, y) : 0;
  // The sky is brightest above the sunless horizon behind the camera.
  const float open =
      0.25f + 0.55f * normal.z + 0.45f * std::max(0.0f, dot(normal, Vec3{-0.35f, -0.85f, 0.2f}));
  // The dust about the sun is a light of its own, which reaches where the sun does not.
  const float dust = std::max(0.0f, dot(normal, normalized({0.78f, 0.48f, 0.40f})));
  // Light that the sunlit neighbours throw back into the shade.
  const Vec3 bounce = sunlight * sand * (0.16f * (1 - normal.z * normal.z) + 0.03f) *
                      (1 + 1.6f * smoothstep(-15, -70, beside));
  const float tint = 1 + 0.08f * fbm({x / 30, y / 30, 2.5f}, 4, seed + 23) + 0.26f * steep * tongues;
  // The edge lets some of the light behind it through.
  const float rim = std::exp(-std::abs(beside) / (0.25f + y * 0.0006f)) * direct;
  const Vec3 lit =
      sand * tint *
      (sunlight * (3.3f * direct + 5.0f * rim + 0.16f * dust) + skylight * open * 0.50f + bounce);

  const float haze = 1 - std::exp(-y / 2300 * (1 + 0.5f * slopeX));
  return mix(lit, skyColour(slopeX, std::max(0.0f, slopeZ)), haze);
}

}  // namespace

Picture dunes(int width, int height_) {
  Camera camera;
  camera.width = width;
  camera.height = height_;
  camera.focal = 2.2f * static_cast<float>(width);
  camera.horizon = 0.36f * static_cast<float>(height_);
  camera.eye = eye;
  camera.near = 55;
  camera.far = 9000;
  return rendered(camera, 3, height, shade, skyColour);
}

}  // namespace brisklet
