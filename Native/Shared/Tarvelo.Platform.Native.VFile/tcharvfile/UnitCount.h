/// @file
/// From units to bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vfile/Blocks.h"

namespace tcharvfile {

/// The last number of units whose bytes are a 32-bit number.
inline constexpr std::int32_t kMaxUnits = 0x3FFFFFFF;

/// Doubles a caller's number as it stands; it wraps, so that one that is too large comes out negative and is refused.
constexpr std::int32_t Twice(std::int32_t units) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(units) * 2);
}

/// The bytes of a position or length in units; one that is too large stands for the end.
constexpr std::int32_t TCharsToBytes(std::int32_t units) { return units > kMaxUnits ? MaxLen : Twice(units); }

/// The bytes of the units of a string. More than there are addresses for stands for that.
constexpr std::size_t SizeInBytes(std::size_t units) { return units > SIZE_MAX / 2 ? SIZE_MAX : units * 2; }

}  // namespace tcharvfile
