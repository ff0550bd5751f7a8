#pragma once

// For plain loops that the compiler can vectorise: on x86-64 it makes a second version for AVX2, which is
// chosen at run time. Both give the same bytes, since no operations are fused. The choice is made before the
// thread sanitizer is ready for it.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_THREAD__)
#define BRISKLET_VECTORISED __attribute__((target_clones("avx2", "default"), optimize("O3")))
#else
#define BRISKLET_VECTORISED
#endif
