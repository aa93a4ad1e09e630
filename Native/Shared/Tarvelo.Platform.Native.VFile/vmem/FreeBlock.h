/// @file
/// The bytes of a free block in the space. They go to the swap file with their page.
///
///     OFFSET  SIZE  CONTENT                                       ON
///     0       4     address of the next block of the list, or -1  every list
///     4       2     length of the block in bytes                  the general list
///
/// Integers are little-endian, and a field may lie across a page boundary, so they are moved with `Get` and `Set`. From
/// the fields follow the least sizes of a block: one with a link has 4 bytes, one on the general list 6.
#pragma once

#include <cstdint>

namespace vmem {

inline constexpr std::int32_t kNoAddress = -1;

inline constexpr std::int32_t kLinkOffset = 0;
inline constexpr std::int32_t kLengthOffset = 4;

inline constexpr std::int16_t kLeastBlock = 4;
inline constexpr std::int16_t kLeastGeneralBlock = 6;

inline constexpr std::int16_t kPermanentClasses = 3;
inline constexpr std::int16_t kMostClasses = 16;
/// Index of the general list among the lists.
inline constexpr std::int32_t kGeneral = 0;

}  // namespace vmem
