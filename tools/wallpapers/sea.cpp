#include "landscape.h"
#include "noise.h"

#include <numbers>

namespace brisklet {

namespace {

constexpr std::uint32_t seed = 5200;

/// Where the sun stands, as slopes of the line of sight, and the radius of its disc.
constexpr float sunX = 0.075f, sunZ = 0.034f, sunRadius = 0.0062f;
constexpr float eye = 4.5f;

/// From a coast that is seen far away on the left, and a nearer, lower one on the right.
float coast(float slopeX, float& share) {
  const float far = 0.034f * smoothstep(-0.02f, -0.30f, slopeX) +
                    0.006f * fbm({slopeX * 21, 0.5f, 0.5f}, 5, seed + 1) * smoothstep(0.0f, -0.08f, slopeX);
  const float near = 0.021f * smoothstep(0.17f, 0.33f, slopeX) +
                     0.0035f * fbm({slopeX * 34, 3.5f, 0.5f}, 5, seed + 2) * smoothstep(0.15f, 0.22f, slopeX);
  share = near > far ? 1.0f : 0.0f;
  return std::max(near, far);
}

Vec3 clearSky(float slopeX, float slopeZ) {
  const float up = std::max(0.0f, slopeZ);
  const float across = (slopeX - sunX) * 0.75f, rise = slopeZ - sunZ;
  const float away = std::hypot(across, rise);
  const Vec3 zenith = srgb(0x3d5685) * 0.62f, high = srgb(0x7d84ad) * 0.60f, rose = srgb(0xd18a86) * 0.58f,
             low = srgb(0xf0904f) * 0.66f;
  Vec3 colour = mix(low, rose, smoothstep(0.0f, 0.11f, up));
  colour = mix(colour, high, smoothstep(0.07f, 0.26f, up));
  colour = mix(colour, zenith, smoothstep(0.18f, 0.50f, up));
  colour += srgb(0xffa04a) * (0.62f * std::exp(-away / 0.055f));
  colour += srgb(0xff8a52) * (0.20f * std::exp(-away / 0.19f));
  return colour;
}

/// Bars of high cloud, lit from below where they are thin and by the low sun.
Vec3 withClouds(Vec3 colour, float slopeX, float slopeZ) {
  if (slopeZ < 0.012f) return colour;
  const float distance = 1 / (slopeZ + 0.03f);
  const float px = slopeX * distance, py = distance;
  const auto thickness = [&](float x, float y) {
    const float bend = fbm({x / 2.4f, y / 2.4f, 1.5f}, 3, seed + 10);
    const float along = 0.93f * x + 0.36f * y + 0.5f * bend, across = -0.36f * x + 0.93f * y + 0.7f * bend;
    const float bars = fbm({along / 3.2f, across / 1.05f, 0.5f}, 7, seed + 11, 0.54f);
    const float banks = fbm({x / 6.5f, y / 5.0f, 4.5f}, 2, seed + 12);
    return bars + 0.75f * banks + 0.09f;
  };
  const float here = thickness(px, py);
  const float cover = smoothstep(-0.02f, 0.42f, here);
  if (cover <= 0) return colour;
  // The side of the sun is brighter: the layer is thinner there than here.
  const float towards = thickness(px + (sunX * 9 - px) * 0.035f, py + 0.22f);
  const float rim = clamp01(0.42f + 1.5f * (here - towards));
  const float away = std::hypot((slopeX - sunX) * 0.8f, slopeZ - sunZ);
  const float warm = std::exp(-away / 0.22f);
  const Vec3 lit = mix(srgb(0xe08f92) * 0.62f, srgb(0xffa65e) * 1.25f, warm);
  const Vec3 dark = mix(srgb(0x4b5277) * 0.52f, srgb(0x9a5a50) * 0.55f, warm);
  const Vec3 cloud = mix(dark, lit, rim * mix(1.0f, 0.55f, smoothstep(0.35f, 0.9f, here)));
  const float seen = smoothstep(0.012f, 0.07f, slopeZ) * mix(0.92f, 0.70f, smoothstep(0.2f, 0.5f, slopeZ));
  return mix(colour, cloud, cover * seen);
}

Vec3 skyColour(float slopeX, float slopeZ) {
  return withClouds(clearSky(slopeX, slopeZ), slopeX, slopeZ);
}

Vec3 skyWithSun(float slopeX, float slopeZ) {
  float near = 0;
  if (slopeZ < coast(slopeX, near)) {
    const float up = slopeZ / 0.034f;
    return mix(srgb(0x5a4356) * 0.42f, srgb(0x2a2436) * 0.34f, near) * (1.1f - 0.25f * up) +
           clearSky(slopeX, 0.01f) * (near > 0 ? 0.05f : 0.16f);
  }
  const float disc = std::hypot(slopeX - sunX, (slopeZ - sunZ) * 1.06f);
  return skyColour(slopeX, slopeZ) + srgb(0xffdf9e) * (14 * smoothstep(1.06f, 0.94f, disc / sunRadius));
}

/// One train of waves: its length, its direction from straight towards the camera, its height.
struct Train {
  float length, direction, height;
};
constexpr Train trains[] = {{31, 0.18f, 0.62f},     {17, -0.25f, 0.34f},    {9.3f, 0.42f, 0.20f},
                            {5.1f, -0.1f, 0.12f},   {2.7f, 0.6f, 0.062f},   {1.4f, -0.5f, 0.032f},
                            {0.71f, 0.2f, 0.0165f}, {0.36f, 0.9f, 0.0082f}, {0.19f, -0.8f, 0.0040f}};

/// Height of the sea, of the trains that are longer than `shortest`; crests are sharper than troughs.
float sea(float x, float y, float shortest) {
  float sum = 0;
  std::uint32_t layer = seed + 30;
  for (const Train& train : trains) {
    ++layer;
    const float whole = smoothstep(shortest, 2.2f * shortest, train.length);
    if (whole <= 0) break;
    const float c = std::cos(train.direction), s = std::sin(train.direction);
    const float along = (c * y + s * x) / train.length, across = (c * x - s * y) / (2.6f * train.length);
    const float n = noise({across * 2, along * 2, 0.5f}, layer);
    sum += whole * train.height * (0.75f * n - 0.55f * std::abs(n) + 0.12f);
  }
  return sum;
}

float footprintAt(float y) {
  return std::max(0.02f, y * y / (1900 * eye) * 0.28f);
}

float height(float x, float y) {
  return sea(x, y, footprintAt(y));
}

Vec3 shade(float x, float y, float slopeX, float slopeZ) {
  const float footprint = footprintAt(y);
  const float step = std::max(0.01f, 0.3f * footprint);
  const float here = sea(x, y, footprint);
  float dx = (sea(x + step, y, footprint) - here) / step;
  float dy = (sea(x, y + step, footprint) - here) / step;
  // Waves too short to be seen one by one still scatter the light.
  const float lost = 0.115f * smoothstep(0.02f, 2.5f, footprint) + 0.018f;
  const int hx = static_cast<int>(x * 977), hy = static_cast<int>(y * 613);
  const float spread = std::sqrt(-2 * std::log(std::max(1e-6f, hashedUnit(hx, hy, 0, seed + 50)))) * lost;
  const float turn = 2 * std::numbers::pi_v<float> * hashedUnit(hx, hy, 1, seed + 50);
  dx += 0.8f * spread * std::cos(turn);
  dy += spread * std::sin(turn);
  const Vec3 normal = normalized({-dx, -dy, 1});
  const Vec3 ray = normalized({slopeX, 1, slopeZ});
  const float facing = -dot(normal, ray);
  const float cosine = std::max(0.02f, facing);
  Vec3 mirrored = ray + normal * (2 * std::abs(facing));
  // What would be thrown down meets the sea again, and then the sky low above it.
  if (mirrored.z < 0.01f) mirrored.z = 0.01f + 0.3f * std::abs(mirrored.z);
  const float ahead = std::max(0.05f, mirrored.y);
  const float fresnel = 0.02f + 0.98f * std::pow(1 - cosine, 5.0f);
  const float mx = mirrored.x / ahead, mz = mirrored.z / ahead;
  Vec3 sky = clearSky(mx, mz);
  sky = mix(sky, skyColour(mx, mz), smoothstep(60.0f, 15.0f, y) * 0.6f + 0.4f);
  const float glint = std::hypot((mx - sunX) / 0.030f, (mz - sunZ) / 0.042f);
  sky += srgb(0xffb873) * (2.6f * std::exp(-0.5f * glint * glint));
  const Vec3 water = srgb(0x17323f) * 0.26f + srgb(0x2c6a66) * (0.10f * clamp01(here + 0.15f));
  const Vec3 lit = mix(water, sky, fresnel * 0.94f);
  const float haze = 1 - std::exp(-y / 9000);
  return mix(lit, clearSky(slopeX, 0.004f) * 0.80f, haze * 0.75f);
}

}  // namespace

Picture sea(int width, int height_) {
  Camera camera;
  camera.width = width;
  camera.height = height_;
  camera.focal = 1.55f * static_cast<float>(width);
  camera.horizon = 0.655f * static_cast<float>(height_);
  camera.eye = eye;
  camera.near = 5;
  camera.far = 16000;
  return rendered(camera, 3, height, shade, skyWithSun);
}

}  // namespace brisklet
