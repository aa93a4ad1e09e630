#include <cerrno>
#include <charconv>

#include "host/Host.h"

namespace host {
namespace {

template <typename Value>
int Format(Value value, char* buffer, std::size_t size, int base) {
  if (buffer == nullptr || size == 0) return EINVAL;
  buffer[0] = '\0';
  if (base < 2 || base > 36) return EINVAL;
  const auto [end, error] = std::to_chars(buffer, buffer + size - 1, value, base);
  *(error == std::errc() ? end : buffer) = '\0';
  return error == std::errc() ? 0 : ERANGE;
}

template <typename Signed>
int FormatSigned(Signed value, char* buffer, std::size_t size, int base) {
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

int _itoa_s(std::int32_t value, char* buffer, std::size_t size, int base) {
  return FormatSigned(value, buffer, size, base);
}
int _ultoa_s(std::uint32_t value, char* buffer, std::size_t size, int base) {
  return Format(value, buffer, size, base);
}
int _ltoa_s(std::int32_t value, char* buffer, std::size_t size, int base) {
  return FormatSigned(value, buffer, size, base);
}
int _i64toa_s(std::int64_t value, char* buffer, std::size_t size, int base) {
  return FormatSigned(value, buffer, size, base);
}
int _ui64toa_s(std::uint64_t value, char* buffer, std::size_t size, int base) {
  return Format(value, buffer, size, base);
}

}  // namespace host
