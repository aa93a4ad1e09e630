/// @file
/// The unit of text in which the host names things: 16 bits, one UTF-16 code unit.
///
/// Where the compiler's wide character is 16 bits wide it is that type, so that names and literals pass to the host's own
/// calls as they stand; elsewhere it is `char16_t`. Code that writes its literals with `TSTR` compiles under both.
#pragma once

#include <cwchar>
#include <string>

#if WCHAR_MAX == 0xFFFF || WCHAR_MAX == 0x7FFF
/// One UTF-16 code unit.
using TChar = wchar_t;
/// A literal of units.
#define TSTR(text) L##text
#else
/// One UTF-16 code unit.
using TChar = char16_t;
/// A literal of units.
#define TSTR(text) u##text
#endif

/// A string of units that owns them and may hold U+0000.
using TString = std::basic_string<TChar>;

static_assert(sizeof(TChar) == 2, "a unit has 16 bits");
