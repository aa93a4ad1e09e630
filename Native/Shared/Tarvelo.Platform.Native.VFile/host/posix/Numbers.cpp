#include <algorithm>
#include <cerrno>
#include <charconv>
#include <iterator>
#include <type_traits>

#include "host/Host.h"

namespace host {
namespace {

template <typename Value, typename Char>
int Format(Value value, Char* buffer, std::size_t size, int base) {
  if (buffer == nullptr || size == 0) return EINVAL;
  buffer[0] = 0;
  if (base < 2 || base > 36) return EINVAL;
  char digits[65];
  const char* end = std::to_chars(digits, std::end(digits), value, base).ptr;
  if (static_cast<std::size_t>(end - digits) >= size) return ERANGE;
  *std::copy(static_cast<const char*>(digits), end, buffer) = 0;
  return 0;
}

template <typename Signed, typename Char>
int FormatSigned(Signed value, Char* buffer, std::size_t size, int base) {
  if (base == 10) return Format(value, buffer, size, base);
  return Format(static_cast<std::make_unsigned_t<Signed>>(value), buffer, size, base);
}

std::uint32_t Fold(TChar unit) {
  const std::uint32_t value = unit;
  return value >= 'A' && value <= 'Z' ? value + ('a' - 'A') : value;
}

}  // namespace

int _wcsicmp(const TChar* left, const TChar* right) {
  while (*left != 0 && Fold(*left) == Fold(*right)) {
    ++left;
    ++right;
  }
  return static_cast<int>(Fold(*left)) - static_cast<int>(Fold(*right));
}

// clang-format off
int _itoa_s(std::int32_t value, char* buffer, std::size_t size, int base) { return FormatSigned(value, buffer, size, base); }
int _ultoa_s(std::uint32_t value, char* buffer, std::size_t size, int base) { return Format(value, buffer, size, base); }
int _ltoa_s(std::int32_t value, char* buffer, std::size_t size, int base) { return FormatSigned(value, buffer, size, base); }
int _i64toa_s(std::int64_t value, char* buffer, std::size_t size, int base) { return FormatSigned(value, buffer, size, base); }
int _ui64toa_s(std::uint64_t value, char* buffer, std::size_t size, int base) { return Format(value, buffer, size, base); }

int _itow_s(std::int32_t value, TChar* buffer, std::size_t size, int base) { return FormatSigned(value, buffer, size, base); }
int _ultow_s(std::uint32_t value, TChar* buffer, std::size_t size, int base) { return Format(value, buffer, size, base); }
int _ltow_s(std::int32_t value, TChar* buffer, std::size_t size, int base) { return FormatSigned(value, buffer, size, base); }
int _i64tow_s(std::int64_t value, TChar* buffer, std::size_t size, int base) { return FormatSigned(value, buffer, size, base); }
int _ui64tow_s(std::uint64_t value, TChar* buffer, std::size_t size, int base) { return Format(value, buffer, size, base); }
// clang-format on

}  // namespace host
