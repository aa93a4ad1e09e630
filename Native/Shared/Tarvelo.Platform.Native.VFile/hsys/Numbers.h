/// @file
/// Minimum, maximum and sign; conversions between the integer widths; words and bytes.
///
/// The suffix names the type, whatever the platform's `long` is: S 16 bits signed, L 32 bits signed, Q 64 bits signed, R
/// 64-bit real, none `int`. No function has state. The two range checks halt with `Fatal` under "HSys"; if the halt
/// returns, the low word is given all the same.
#pragma once

#include <cstdint>

#include "host/Export.h"

/// @{
/// The greater of two values.
VFILE_API std::int16_t MaxS(std::int16_t a, std::int16_t b);
VFILE_API std::int32_t Max(std::int32_t a, std::int32_t b);
VFILE_API std::int32_t MaxL(std::int32_t a, std::int32_t b);
VFILE_API std::int64_t MaxQ(std::int64_t a, std::int64_t b);
/// @}
/// @{
/// The lesser of two values.
VFILE_API std::int16_t MinS(std::int16_t a, std::int16_t b);
VFILE_API std::int32_t Min(std::int32_t a, std::int32_t b);
VFILE_API std::int32_t MinL(std::int32_t a, std::int32_t b);
VFILE_API std::int64_t MinQ(std::int64_t a, std::int64_t b);
/// @}
/// @{
/// -1, 0 or 1.
VFILE_API std::int16_t SignS(std::int16_t value);
VFILE_API std::int32_t Sign(std::int32_t value);
VFILE_API std::int32_t SignL(std::int32_t value);
VFILE_API std::int64_t SignQ(std::int64_t value);
/// @}
/// `a` if it is greater than `b`, else `b`: also for equal values and a not-a-number.
VFILE_API double MaxR(double a, double b);
/// `a` if `b` is greater than it, else `b`: also for equal values and a not-a-number.
VFILE_API double MinR(double a, double b);
/// 0.0 for zero of either sign and for a not-a-number.
VFILE_API double SignR(double value);

VFILE_API std::uint16_t LO(std::int32_t value);  ///< The low word.
VFILE_API std::uint16_t HI(std::int32_t value);  ///< The high word.
/// Both words of `value`.
VFILE_API void Short2(std::int32_t value, std::uint16_t& hi, std::uint16_t& lo);
/// The value of the two words.
VFILE_API std::int32_t Long2(std::uint16_t hi, std::uint16_t lo);

/// The low word. Halts where the high word is neither 0 (code 1) nor, for a negative value, all ones (code 2): so what
/// passes is -65536 to 65535, and 40000 comes back as -25536.
VFILE_API std::int16_t Short(std::int32_t value);
/// The low word. Halts with code 3 where the high word is not 0.
VFILE_API std::uint16_t ShortC(std::int32_t value);
VFILE_API std::int32_t Long(std::int32_t value);    ///< The same value.
VFILE_API std::int32_t LongC(std::uint32_t value);  ///< The same bits.
VFILE_API std::int32_t Int(std::uint32_t value);    ///< The same bits.
VFILE_API std::uint32_t Card(std::int32_t value);   ///< The same bits.
VFILE_API double LongFloat(std::int32_t value);     ///< The exact value.
/// Truncation toward zero, saturating at 2147483647 and -2147483647; 0 for a not-a-number.
VFILE_API std::int32_t LongTrunc(double value);

/// The value of two bytes.
VFILE_API std::int16_t Build2(char hi, char lo);
/// The value of four bytes, the first as the highest.
VFILE_API std::int32_t Build4(char b3, char b2, char b1, char b0);
/// Both bytes of `value`.
VFILE_API void Extract2(std::int16_t value, char& hi, char& lo);
/// The four bytes of `value`, the highest first.
VFILE_API void Extract4(std::int32_t value, char& b3, char& b2, char& b1, char& b0);
