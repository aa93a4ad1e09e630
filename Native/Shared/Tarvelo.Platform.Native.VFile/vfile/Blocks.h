/// @file
/// The parts of a virtual file's chain, and the numbers that its operations share.
#pragma once

#include <cstdint>

/// Bytes of a block, and of a page of `VMem`.
inline constexpr std::int32_t BlkSize = 1024;

/// As the number of bytes that a change takes out: as many as go in.
inline constexpr std::int32_t SameLen = -0x7FFFFFFF - 1;
/// As a count: all there is. Also the largest position and length.
inline constexpr std::int32_t MaxLen = 0x7FFFFFFF;

// Bits of the flag word. A user can change 0x1 to 0x100; those without a name here mean nothing to the library, are kept,
// and are reported like the others.
inline constexpr std::int32_t vfInsert = 0x1;         ///< Writing inserts instead of overwriting.
inline constexpr std::int32_t vfReadOnly = 0x2;       ///< Changes are refused with `resReadOnly`.
inline constexpr std::int32_t vfModified = 0x8;       ///< Set by changes while `vfMarkModified` is on.
inline constexpr std::int32_t vfMarkModified = 0x20;  ///< Changes set `vfModified`.
inline constexpr std::int32_t vfNoEolScan = 0x80;     ///< Keeps the scan for line ends from running.
inline constexpr std::int32_t vfEolScan = 0x100;      ///< Lets it run, on a file whose `Type` is above 0.
inline constexpr std::int32_t vfLocked = 0x200;       ///< Changes and flag changes are refused with `resContextError`.
inline constexpr std::int32_t vfHasEol = 0x400;       ///< The scan has seen CR or LF go in.

/// One block of a file: where its bytes are and how many it has.
struct BlkDesc {
  BlkDesc* prev;      ///< The block before; null in the first.
  BlkDesc* next;      ///< The block behind; null in the last. Links the free list of a pool.
  std::int16_t len;   ///< Bytes in use, 0 to `BlkSize`.
  std::int32_t addr;  ///< The block's page in the thread's `VMem`, or -1.
};

/// A cursor into a chain, at the file position `base` + `ix`. A plain value; it holds only as long as the file does not
/// change.
struct BlkRdr {
  BlkDesc* ptr = nullptr;  ///< The block.
  std::int32_t base = 0;   ///< File position of the block's first byte.
  std::int16_t ix = 0;     ///< Index in the block, 0 to its `len`.
};
