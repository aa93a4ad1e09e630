/// @file
/// Many bytes or units compared at once: what the scans look at first.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "host/Unit.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vfile {

/// Elements that lie side by side, at any alignment, as bytes of a file. `Either` gives a mask with a bit for each that equals `a` or
/// `b`, the lowest for the first.
template <typename Element>
struct Lanes;

#if defined(__SSE2__)

template <>
struct Lanes<unsigned char> {
  static constexpr std::int32_t kCount = 16;

  static std::uint32_t Either(const unsigned char* bytes, unsigned char a, unsigned char b) {
    const __m128i lanes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const __m128i equal = _mm_or_si128(_mm_cmpeq_epi8(lanes, _mm_set1_epi8(static_cast<char>(a))),
                                       _mm_cmpeq_epi8(lanes, _mm_set1_epi8(static_cast<char>(b))));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(equal));
  }
};

template <>
struct Lanes<TChar> {
  static constexpr std::int32_t kCount = 16;

  static std::uint32_t Either(const unsigned char* bytes, TChar a, TChar b) {
    const auto half = [&](const unsigned char* from) {
      const __m128i lanes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
      return _mm_or_si128(_mm_cmpeq_epi16(lanes, _mm_set1_epi16(static_cast<short>(a))),
                          _mm_cmpeq_epi16(lanes, _mm_set1_epi16(static_cast<short>(b))));
    };
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(half(bytes), half(bytes + sizeof(__m128i)))));
  }
};

#else

template <typename Element>
struct Lanes {
  static constexpr std::int32_t kCount = 16;

  static std::uint32_t Either(const unsigned char* bytes, Element a, Element b) {
    Element lanes[kCount];
    std::memcpy(lanes, bytes, sizeof lanes);
    std::uint32_t mask = 0;
    for (std::int32_t i = 0; i < kCount; ++i) {
      mask |= static_cast<std::uint32_t>(lanes[i] == a || lanes[i] == b) << i;
    }
    return mask;
  }
};

#endif

}  // namespace vfile
