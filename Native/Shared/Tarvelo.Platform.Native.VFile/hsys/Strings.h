/// @file
/// Strings in fixed buffers, comparison and trimming.
///
/// Strings end in a 0 unit. The size of a buffer counts units (characters in the forms with `A`), the terminator
/// included. The copies never write past it and always leave a terminated string: what does not fit is cut without a
/// word. `dest` and `source` must not overlap.
///
/// Halts, all with `HaltA` under "HSys": a null `dest` or a size of 0; for the appending forms also a string in `dest`
/// that is not shorter than the size. If the halt returns, nothing is done.
///
/// A blank is one of tab, line feed, form feed, carriage return and space.
#pragma once

#include <cstdint>

#include "host/Export.h"
#include "host/Unit.h"

/// Copies `source`, null counting as empty, into `dest`.
VFILE_API void AssignStr(TChar* dest, std::uint32_t size, const TChar* source);
/// The same operation.
VFILE_API void AssignStrW(TChar* dest, std::uint32_t size, const TChar* source);
/// The same on 8-bit characters.
VFILE_API void AssignStrA(char* dest, std::uint32_t size, const char* source);
/// Adds `source`, null counting as empty, behind the string in `dest`.
VFILE_API void AppendStr(TChar* dest, std::uint32_t size, const TChar* source);
/// The same operation.
VFILE_API void AppendStrW(TChar* dest, std::uint32_t size, const TChar* source);
/// The same on 8-bit characters.
VFILE_API void AppendStrA(char* dest, std::uint32_t size, const char* source);
/// `AssignStr`; nothing, and no halt, for a null `dest`.
VFILE_API void CondAssignStr(TChar* dest, std::uint32_t size, const TChar* source);
/// `AppendStr`; nothing, and no halt, for a null `dest`.
VFILE_API void CondAppendStr(TChar* dest, std::uint32_t size, const TChar* source);

/// Whether the strings are the same unit for unit. Neither may be null.
VFILE_API bool EqualStr(const TChar* left, const TChar* right);
/// The same without regard to case, in the host's way. Neither may be null.
VFILE_API bool EqualStrI(const TChar* left, const TChar* right);

/// Whether the unit is a blank.
VFILE_API bool IsBlank(TChar unit);
/// Whether the string is null, empty, or nothing but blanks.
VFILE_API bool IsBlank(const TChar* text);
/// Takes blanks off both ends of the string, in place. This and its two halves leave null alone.
VFILE_API void Trim(TChar* text);
/// Takes blanks off the start.
VFILE_API void TrimLeft(TChar* text);
/// Takes blanks off the end.
VFILE_API void TrimRight(TChar* text);
/// Takes the trailing zeroes of a decimal fraction off, and its dot if nothing stays behind it. The string must be a
/// decimal number with "." as its point; without one it keeps its zeroes. What would come out empty comes out as "0", so
/// the buffer needs room for 2 units. Leaves null alone.
VFILE_API void TrimZeroes(TChar* text);
