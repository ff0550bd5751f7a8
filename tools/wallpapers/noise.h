#pragma once

#include "vector.h"

#include <cstdint>

namespace brisklet {

/// A well-mixed 32-bit value of three cell coordinates and a seed.
std::uint32_t hashed(int x, int y, int z, std::uint32_t seed);

/// The same as a number in 0..1.
float hashedUnit(int x, int y, int z, std::uint32_t seed);

/// Gradient noise, about -1..1, mean 0, features of about one unit.
float noise(Vec3 p, std::uint32_t seed);

/// The point scaled to the next octave, about twice as fine, and turned by an angle that no axis survives.
Vec3 nextOctave(Vec3 p);

/// Octaves of gradient noise, each turned against the last so that no lattice shows; about -1..1.
float fbm(Vec3 p, int octaves, std::uint32_t seed, float gain = 0.5f);

/// Octaves of creased noise, 0..1: sharp ridges, and rougher where it is high than where it is low.
float ridged(Vec3 p, int octaves, std::uint32_t seed);

}  // namespace brisklet
