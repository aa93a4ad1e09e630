/// @file
/// Where lines end in bytes that lie side by side.
#pragma once

#include <bit>
#include <cstdint>

#include "vfile/Lanes.h"

namespace vfile {

inline constexpr unsigned char kCr = 13;
inline constexpr unsigned char kLf = 10;

constexpr bool IsEol(unsigned char byte) { return byte == kCr || byte == kLf; }

/// The index of the first CR or LF, or `count`.
inline std::int32_t FindEol(const unsigned char* bytes, std::int32_t count) {
  using Bytes = Lanes<unsigned char>;
  std::int32_t i = 0;
  for (; i + Bytes::kCount <= count; i += Bytes::kCount) {
    const std::uint32_t mask = Bytes(bytes + i).Either(kCr, kLf);
    if (mask != 0) return i + std::countr_zero(mask);
  }
  while (i < count && !IsEol(bytes[i])) ++i;
  return i;
}

/// The index behind the last CR or LF, or 0.
inline std::int32_t FindEolBack(const unsigned char* bytes, std::int32_t count) {
  using Bytes = Lanes<unsigned char>;
  for (; count >= Bytes::kCount; count -= Bytes::kCount) {
    const std::uint32_t mask = Bytes(bytes + count - Bytes::kCount).Either(kCr, kLf);
    if (mask != 0) return count - Bytes::kCount + static_cast<std::int32_t>(std::bit_width(mask));
  }
  while (count > 0 && !IsEol(bytes[count - 1])) --count;
  return count;
}

}  // namespace vfile
