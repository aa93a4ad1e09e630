/// @file
/// The unit of text in which the host names things: 16 bits, one UTF-16 code unit.
///
/// Where the compiler's wide character is 16 bits wide it is that type, so that names and literals pass to the host's own
/// calls as they stand; elsewhere it is `char16_t`. Code that writes its literals with `TSTR` compiles under both.
#pragma once

#include <concepts>
#include <cwchar>
#include <string>
#include <type_traits>

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

namespace host {

/// A type that is for characters wider than a byte, or UTF-8, or truths. A value of it would pass for a number.
template <typename Type>
concept NoNumber = std::same_as<Type, bool> || std::same_as<Type, wchar_t> || std::same_as<Type, char8_t> ||
    std::same_as<Type, char16_t> || std::same_as<Type, char32_t>;

/// A type of characters. A pointer to one is a text or a buffer, and would pass for a handle.
// clang-format off
template <typename Type>
concept Character = std::same_as<std::remove_cv_t<Type>, char> || std::same_as<std::remove_cv_t<Type>, signed char> ||
    std::same_as<std::remove_cv_t<Type>, unsigned char> ||
    (NoNumber<std::remove_cv_t<Type>> && !std::same_as<std::remove_cv_t<Type>, bool>);
// clang-format on

}  // namespace host
