/// @file
/// Names between units and bytes that may not be UTF-8. No call to the system.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/Utf8.h"

namespace host {

/// What a byte is added to that stands for itself in a name: one that is no UTF-8, or a backslash that does not separate.
inline constexpr std::uint32_t kRawByteBase = 0xDC00;

constexpr bool IsRawByte(std::uint32_t unit) {
  return unit == kRawByteBase + '\\' || (unit >= kRawByteBase + 0x80 && unit <= kRawByteBase + 0xFF);
}

/// What a backslash is in bytes that become a name.
enum class Backslash {
  kIsOrdinary,  ///< A character of the name, as the system sees it.
  kSeparates,   ///< A separator, as in a name that the application or its user gives.
};

/// Converts `length` bytes to units, without terminator, at most `size` of them; gives the number that the whole text takes.
/// Bytes that are no UTF-8, and the backslash that is ordinary, become U+DC00 plus the byte.
inline std::size_t UnitsFromBytes(TChar* units, std::size_t size, const char* bytes, std::size_t length,
                                  Backslash backslash) {
  const auto* next = reinterpret_cast<const unsigned char*>(bytes);
  std::size_t count = 0;
  while (length > 0) {
    std::uint32_t character = 0;
    bool wellFormed = false;
    std::size_t used = DecodeUtf8(next, length, character, wellFormed);
    if (!wellFormed || (character == '\\' && backslash == Backslash::kIsOrdinary)) {
      character = kRawByteBase + *next;
      used = 1;
    }
    TChar encoded[2];
    const std::size_t encodedCount = EncodeUtf16(encoded, character);
    for (std::size_t i = 0; i < encodedCount; ++i, ++count) {
      if (count < size) units[count] = encoded[i];
    }
    next += used;
    length -= used;
  }
  return count;
}

/// Writes a character of a name, as `DecodeUtf16` gives it, to `bytes`, which has room for 4, and gives the number written.
inline std::size_t EncodeNameCharacter(char* bytes, std::uint32_t character) {
  if (!IsRawByte(character)) return EncodeUtf8(bytes, character);
  *bytes = static_cast<char>(static_cast<unsigned char>(character - kRawByteBase));
  return 1;
}

}  // namespace host
