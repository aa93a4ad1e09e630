/// @file
/// Whole texts between UTF-16 and the forms of text files. None of these fails on its input.
#pragma once

#include <cstddef>

#include "host/Unit.h"

namespace tcharvfile {

/// Converts `length` bytes of UTF-8 to `units`, which has room for as many units, and gives how many came out. Each maximal
/// ill-formed subsequence becomes one U+FFFD.
std::size_t Utf8ToUnits(const char* bytes, std::size_t length, TChar* units);
/// The bytes that `length` units take in UTF-8. An unpaired surrogate takes the 3 of U+FFFD.
std::size_t Utf8Length(const TChar* units, std::size_t length);
/// Converts `length` units to UTF-8 in `bytes`, which has room for `Utf8Length` of them; gives that number.
std::size_t UnitsToUtf8(const TChar* units, std::size_t length, char* bytes);
/// Puts `replacement` in the place of each unpaired surrogate.
void ReplaceUnpaired(TString& text, TChar replacement);
/// Swaps the two bytes of a unit.
void SwapTChar(TChar& unit);

}  // namespace tcharvfile
