/// @file
/// A number as text, as the stream operators write it.
#pragma once

#include <cstdint>
#include <type_traits>

#include "host/Host.h"

namespace hsys {

/// The digits of a number, terminated, in 8-bit characters or in units: at 32 bits if its type has no more, else at 64. Room
/// for 64 digits of base 2.
template <typename Char>
struct NumberText {
  template <typename Value>
  NumberText(Value value, std::int32_t radix) {
    constexpr bool kSigned = std::is_signed_v<Value>;
    constexpr bool kWide = sizeof(Value) > 4;
    if constexpr (std::is_same_v<Char, char>) {
      if constexpr (kWide && kSigned) host::_i64toa_s(value, text, 65, radix);
      if constexpr (kWide && !kSigned) host::_ui64toa_s(value, text, 65, radix);
      if constexpr (!kWide && kSigned) host::_itoa_s(value, text, 65, radix);
      if constexpr (!kWide && !kSigned) host::_ultoa_s(value, text, 65, radix);
    } else {
      if constexpr (kWide && kSigned) host::_i64tow_s(value, text, 65, radix);
      if constexpr (kWide && !kSigned) host::_ui64tow_s(value, text, 65, radix);
      if constexpr (!kWide && kSigned) host::_itow_s(value, text, 65, radix);
      if constexpr (!kWide && !kSigned) host::_ultow_s(value, text, 65, radix);
    }
  }

  Char text[65];
};

}  // namespace hsys
