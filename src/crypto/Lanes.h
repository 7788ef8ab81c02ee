// Registers of many bits that are computed with at once, as wide as every processor of a kind has them, so that nothing
// is chosen at run time. Each kind: a type Lane of 64-bit words, and the same operations on it.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define TOVR_LANES_OF_SSE2
#endif

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
#define TOVR_BIG_ENDIAN
#endif

namespace tovr {

// Lanes of a type that has the operators of the language.
template <class T>
struct PlainLanes {
  using Lane = T;
  static Lane both(Lane a, Lane b) { return a & b; }
  static Lane either(Lane a, Lane b) { return a | b; }
  static Lane differ(Lane a, Lane b) { return a ^ b; }
  static Lane butNot(Lane a, Lane b) { return a & ~b; }
  static Lane up(Lane a, int bits) { return a << bits; }  // in every word
  static Lane down(Lane a, int bits) { return a >> bits; }
  static Lane fill(std::uint64_t word) { return Lane{} | word; }
};

using WordLanes = PlainLanes<std::uint64_t>;

#if defined(__GNUC__)  // and Clang
#define TOVR_LANES_OF_VECTORS
using VectorLanes = PlainLanes<std::uint64_t __attribute__((vector_size(16)))>;
#endif

#if defined(TOVR_LANES_OF_SSE2)  // every x86-64 processor, and the one form that its compilers share
struct NativeLanes {
  using Lane = __m128i;
  static Lane both(Lane a, Lane b) { return _mm_and_si128(a, b); }
  static Lane either(Lane a, Lane b) { return _mm_or_si128(a, b); }
  static Lane differ(Lane a, Lane b) { return _mm_xor_si128(a, b); }
  static Lane butNot(Lane a, Lane b) { return _mm_andnot_si128(b, a); }
  static Lane up(Lane a, int bits) { return _mm_slli_epi64(a, bits); }
  static Lane down(Lane a, int bits) { return _mm_srli_epi64(a, bits); }
  static Lane fill(std::uint64_t word) { return _mm_set1_epi64x(static_cast<long long>(word)); }
};
#elif defined(TOVR_LANES_OF_VECTORS) && (defined(__ARM_NEON) || defined(__ALTIVEC__) || defined(__VX__))
using NativeLanes = VectorLanes;
#else
using NativeLanes = WordLanes;
#endif

// Has memory of `size` bytes come nearer while something else is computed.
inline void prefetch([[maybe_unused]] const unsigned char* bytes, [[maybe_unused]] std::size_t size) {
#if defined(TOVR_LANES_OF_SSE2)
  for (std::size_t at = 0; at < size; at += 64) _mm_prefetch(reinterpret_cast<const char*>(bytes + at), _MM_HINT_T0);
#endif
}

}  // namespace tovr
