#pragma once

#include <algorithm>
#include <cmath>

namespace brisklet {

/// A point or direction in space, or a colour in linear light (x red, y green, z blue; sRGB primaries).
struct Vec3 {
  float x = 0, y = 0, z = 0;

  Vec3& operator+=(Vec3 o) { return *this = {x + o.x, y + o.y, z + o.z}; }
};

inline Vec3 operator+(Vec3 a, Vec3 b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3 operator-(Vec3 a, Vec3 b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec3 operator*(Vec3 a, Vec3 b) {
  return {a.x * b.x, a.y * b.y, a.z * b.z};
}
inline Vec3 operator*(Vec3 a, float s) {
  return {a.x * s, a.y * s, a.z * s};
}
inline Vec3 operator*(float s, Vec3 a) {
  return a * s;
}
inline float dot(Vec3 a, Vec3 b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec3 normalized(Vec3 a) {
  return a * (1.0f / std::sqrt(dot(a, a)));
}
inline Vec3 mix(Vec3 a, Vec3 b, float t) {
  return a + (b - a) * t;
}

inline float mix(float a, float b, float t) {
  return a + (b - a) * t;
}
inline float clamp01(float v) {
  return std::clamp(v, 0.0f, 1.0f);
}
inline float smoothstep(float from, float to, float v) {
  const float t = clamp01((v - from) / (to - from));
  return t * t * (3 - 2 * t);
}

/// The linear-light colour of an sRGB triple 0xRRGGBB.
inline Vec3 srgb(unsigned hex) {
  const auto linear = [](unsigned byte) {
    const float v = static_cast<float>(byte & 0xffu) / 255.0f;
    return v <= 0.04045f ? v / 12.92f : std::pow((v + 0.055f) / 1.055f, 2.4f);
  };
  return {linear(hex >> 16), linear(hex >> 8), linear(hex)};
}

}  // namespace brisklet
