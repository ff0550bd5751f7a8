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

}  // namespace

std::uint32_t hashed(int x, int y, int z, std::uint32_t seed) {
  std::uint32_t h = seed * 0x9e3779b9u;
  for (const int c : {x, y, z}) {
    h = (h ^ static_cast<std::uint32_t>(c)) * 0x85ebca6bu;
    h ^= h >> 15;
  }
  h *= 0xc2b2ae35u;
  return h ^ (h >> 16);
}

float hashedUnit(int x, int y, int z, std::uint32_t seed) {
  return static_cast<float>(hashed(x, y, z, seed) >> 8) * 0x1p-24f;
}

float noise(Vec3 p, std::uint32_t seed) {
  const float fx = std::floor(p.x), fy = std::floor(p.y), fz = std::floor(p.z);
  const int ix = static_cast<int>(fx), iy = static_cast<int>(fy), iz = static_cast<int>(fz);
  const float x = p.x - fx, y = p.y - fy, z = p.z - fz;
  const float u = eased(x), v = eased(y), w = eased(z);
  const auto corner = [&](int dx, int dy, int dz) {
    return gradient(hashed(ix + dx, iy + dy, iz + dz, seed), x - static_cast<float>(dx),
                    y - static_cast<float>(dy), z - static_cast<float>(dz));
  };
  const float near =
      mix(mix(corner(0, 0, 0), corner(1, 0, 0), u), mix(corner(0, 1, 0), corner(1, 1, 0), u), v);
  const float far =
      mix(mix(corner(0, 0, 1), corner(1, 0, 1), u), mix(corner(0, 1, 1), corner(1, 1, 1), u), v);
  return mix(near, far, w);
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
