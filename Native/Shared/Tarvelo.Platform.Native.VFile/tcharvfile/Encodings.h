/// @file
/// Text between UTF-16 and the forms of text files, a piece at a time. None of these fails on its input.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/LossRecord.h"
#include "host/Unit.h"

namespace tcharvfile {

/// Converts `length` bytes of UTF-8 to `units`, which has room for as many units, and gives how many came out. Each maximal
/// ill-formed subsequence becomes one U+FFFD; `losses`, unless null, is told of it.
std::size_t Utf8ToUnits(const char* bytes, std::size_t length, TChar* units, host::LossRecord* losses = nullptr);
/// How many of the last bytes are the beginning of a character that more bytes could make whole, 0 to 3.
std::size_t Utf8Rest(const char* bytes, std::size_t length);

/// Converts `length` units to UTF-8 in `bytes`, which has room for three times as many bytes, and gives how many came out.
/// `replacement` is written for an unpaired surrogate; `losses`, unless null, is told of it.
std::size_t UnitsToUtf8(const TChar* units, std::size_t length, char* bytes, std::uint32_t replacement,
                        host::LossRecord* losses = nullptr);

/// Swaps the two bytes of each of `count` units that lie at `bytes`, at any alignment.
void SwapUnits(unsigned char* bytes, std::size_t count);

}  // namespace tcharvfile
