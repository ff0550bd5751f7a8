#include "noise.h"

namespace brisklet {

namespace {

float gradient(std::uint32_t hash, float x, float y, float z) {
  // The twelve edge directions of a cube, four of them twice.
  const std::uint32_t h = hash >> 28;
  const float u = h < 8 ? x : y;
  const float v = h < 4 ? y : (h == 12 || h == 14 ? x : z);
  return ((h & 1u) ? -u : u) + ((h & 2u) ? -v : v);
}

float eased(float t) {
  return t * t * t * (t * (t * 6 - 15) + 10);
}

// A hash takes in one coordinate after the other, so that the corners of a cell share the first ones.
std::uint32_t begun(std::uint32_t seed) {
  return seed * 0x9e3779b9u;
}
std::uint32_t stirred(std::uint32_t h, int coordinate) {
  h = (h ^ static_cast<std::uint32_t>(coordinate)) * 0x85ebca6bu;
  return h ^ (h >> 15);
}
std::uint32_t finished(std::uint32_t h) {
  h *= 0xc2b2ae35u;
  return h ^ (h >> 16);
}

/// Without the call that `std::floor` is on plain x86.
int floored(float v) {
  const int whole = static_cast<int>(v);
  return whole - (v < static_cast<float>(whole) ? 1 : 0);
}

}  // namespace

std::uint32_t hashed(int x, int y, int z, std::uint32_t seed) {
  return finished(stirred(stirred(stirred(begun(seed), x), y), z));
}

float hashedUnit(int x, int y, int z, std::uint32_t seed) {
  return static_cast<float>(hashed(x, y, z, seed) >> 8) * 0x1p-24f;
}

float noise(Vec3 p, std::uint32_t seed) {
  const int ix = floored(p.x), iy = floored(p.y), iz = floored(p.z);
  const float x = p.x - static_cast<float>(ix), y = p.y - static_cast<float>(iy),
              z = p.z - static_cast<float>(iz);
  const float u = eased(x), v = eased(y), w = eased(z);
  const auto edge = [&](std::uint32_t h, float ex, float ey) {
    return mix(gradient(finished(stirred(h, iz)), ex, ey, z),
               gradient(finished(stirred(h, iz + 1)), ex, ey, z - 1), w);
  };
  const auto face = [&](std::uint32_t h, float ex) {
    return mix(edge(stirred(h, iy), ex, y), edge(stirred(h, iy + 1), ex, y - 1), v);
  };
  return mix(face(stirred(begun(seed), ix), x), face(stirred(begun(seed), ix + 1), x - 1), u);
}

Vec3 nextOctave(Vec3 p) {
  constexpr float lacunarity = 2.03f;
  return {lacunarity * (0.00f * p.x + 0.80f * p.y + 0.60f * p.z) + 17.3f,
          lacunarity * (-0.80f * p.x + 0.36f * p.y - 0.48f * p.z) - 5.9f,
          lacunarity * (-0.60f * p.x - 0.48f * p.y + 0.64f * p.z) + 31.7f};
}

float fbm(Vec3 p, int octaves, std::uint32_t seed, float gain) {
  float sum = 0, amplitude = 1, total = 0;
  for (int i = 0; i < octaves; ++i) {
    sum += amplitude * noise(p, seed + static_cast<std::uint32_t>(i));
    total += amplitude;
    amplitude *= gain;
    p = nextOctave(p);
  }
  return sum / total * 1.4f;
}

float ridged(Vec3 p, int octaves, std::uint32_t seed) {
  float sum = 0, amplitude = 0.5f, weight = 1;
  for (int i = 0; i < octaves; ++i) {
    const float crease = 1 - std::abs(noise(p, seed + static_cast<std::uint32_t>(i)));
    const float signal = crease * crease * weight;
    sum += amplitude * signal;
    weight = clamp01(signal * 1.9f);
    amplitude *= 0.5f;
    p = nextOctave(p);
  }
  return sum;
}

}  // namespace brisklet
