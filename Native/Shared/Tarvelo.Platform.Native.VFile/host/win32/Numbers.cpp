#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>

#include "host/win32/Windows.h"

namespace host {
namespace {

/// The digits by `convert`, a function of the C runtime, which would end the process where the result does not fit.
template <typename Char, typename Value>
int Format(int (*convert)(Value, Char*, std::size_t, int), Value value, Char* buffer, std::size_t size, int base) {
  if (buffer == nullptr || size == 0) return EINVAL;
  buffer[0] = 0;
  if (base < 2 || base > 36) return EINVAL;
  Char digits[66];
  const int error = convert(value, digits, sizeof digits / sizeof digits[0], base);
  if (error != 0) return error;
  const std::size_t length = std::char_traits<Char>::length(digits);
  if (length >= size) return ERANGE;
  std::copy(digits, digits + length + 1, buffer);
  return 0;
}

}  // namespace

int _wcsicmp(const TChar* left, const TChar* right) { return ::_wcsicmp(left, right); }

// clang-format off
int _itoa_s(std::int32_t value, char* buffer, std::size_t size, int base) { return Format<char, int>(::_itoa_s, value, buffer, size, base); }
int _ultoa_s(std::uint32_t value, char* buffer, std::size_t size, int base) { return Format<char, unsigned long>(::_ultoa_s, value, buffer, size, base); }
int _ltoa_s(std::int32_t value, char* buffer, std::size_t size, int base) { return Format<char, long>(::_ltoa_s, value, buffer, size, base); }
int _i64toa_s(std::int64_t value, char* buffer, std::size_t size, int base) { return Format<char, long long>(::_i64toa_s, value, buffer, size, base); }
int _ui64toa_s(std::uint64_t value, char* buffer, std::size_t size, int base) { return Format<char, unsigned long long>(::_ui64toa_s, value, buffer, size, base); }

int _itow_s(std::int32_t value, TChar* buffer, std::size_t size, int base) { return Format<TChar, int>(::_itow_s, value, buffer, size, base); }
int _ultow_s(std::uint32_t value, TChar* buffer, std::size_t size, int base) { return Format<TChar, unsigned long>(::_ultow_s, value, buffer, size, base); }
int _ltow_s(std::int32_t value, TChar* buffer, std::size_t size, int base) { return Format<TChar, long>(::_ltow_s, value, buffer, size, base); }
int _i64tow_s(std::int64_t value, TChar* buffer, std::size_t size, int base) { return Format<TChar, long long>(::_i64tow_s, value, buffer, size, base); }
int _ui64tow_s(std::uint64_t value, TChar* buffer, std::size_t size, int base) { return Format<TChar, unsigned long long>(::_ui64tow_s, value, buffer, size, base); }
// clang-format on

}  // namespace host
