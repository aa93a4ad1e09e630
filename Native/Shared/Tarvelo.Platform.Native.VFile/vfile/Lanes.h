/// @file
/// Many bytes or units compared at once: what the scans look at first.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "host/Processor.h"
#include "host/Unit.h"

#if defined(VFILE_SSE2)
#include <emmintrin.h>
#endif

namespace vfile {

/// `kCount` elements that lie side by side, at any alignment, as bytes of a file. What is compared gives a mask with a bit for each that
/// is equal, the lowest for the first.
template <typename Element>
class Lanes;

#if defined(VFILE_SSE2)

template <>
class Lanes<unsigned char> {
 public:
  static constexpr std::int32_t kCount = 16;

  explicit Lanes(const unsigned char* bytes) : lanes_(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes))) {}

  std::uint32_t Equal(unsigned char a) const { return Mask(Compare(a)); }
  std::uint32_t Either(unsigned char a, unsigned char b) const { return Mask(_mm_or_si128(Compare(a), Compare(b))); }

 private:
  __m128i Compare(unsigned char a) const { return _mm_cmpeq_epi8(lanes_, _mm_set1_epi8(static_cast<char>(a))); }
  static std::uint32_t Mask(__m128i equal) { return static_cast<std::uint32_t>(_mm_movemask_epi8(equal)); }

  __m128i lanes_;
};

template <>
class Lanes<TChar> {
 public:
  static constexpr std::int32_t kCount = 16;

  explicit Lanes(const unsigned char* bytes)
      : low_(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes))),
        high_(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes) + 1)) {}

  std::uint32_t Equal(TChar a) const { return Mask(Compare(low_, a), Compare(high_, a)); }
  std::uint32_t Either(TChar a, TChar b) const {
    return Mask(_mm_or_si128(Compare(low_, a), Compare(low_, b)), _mm_or_si128(Compare(high_, a), Compare(high_, b)));
  }

 private:
  static __m128i Compare(__m128i lanes, TChar a) {
    return _mm_cmpeq_epi16(lanes, _mm_set1_epi16(static_cast<short>(a)));
  }
  static std::uint32_t Mask(__m128i low, __m128i high) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
  }

  __m128i low_;
  __m128i high_;
};

#else

template <typename Element>
class Lanes {
 public:
  static constexpr std::int32_t kCount = 16;

  explicit Lanes(const unsigned char* bytes) { std::memcpy(lanes_, bytes, sizeof lanes_); }

  std::uint32_t Equal(Element a) const { return Either(a, a); }
  std::uint32_t Either(Element a, Element b) const {
    std::uint32_t mask = 0;
    for (std::int32_t i = 0; i < kCount; ++i) {
      mask |= static_cast<std::uint32_t>(lanes_[i] == a || lanes_[i] == b) << i;
    }
    return mask;
  }

 private:
  Element lanes_[kCount];
};

#endif

}  // namespace vfile
