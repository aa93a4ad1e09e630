/// @file
/// Single characters of UTF-8 and UTF-16: the code that names, messages and text files share. No call to the system.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/Unit.h"

namespace host {

inline constexpr std::uint32_t kReplacementCharacter = 0xFFFD;

constexpr bool IsHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
constexpr bool IsSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

/// Reads the character at the start of `length` bytes, at least one, and gives the number of bytes it takes. Of ill-formed
/// bytes it takes the maximal subsequence that Unicode recommends to replace as one, and gives `kReplacementCharacter` with
/// `wellFormed` false.
inline std::size_t DecodeUtf8(const unsigned char* bytes, std::size_t length, std::uint32_t& character,
                              bool& wellFormed) {
  const std::uint32_t lead = bytes[0];
  character = lead;
  wellFormed = lead < 0x80;
  if (wellFormed) return 1;
  const std::size_t size = lead >= 0xC2 && lead <= 0xDF   ? 2
                           : (lead & 0xF0) == 0xE0        ? 3
                           : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                          : 1;
  // The second byte alone decides between well-formed and overlong, surrogate or too large.
  std::uint32_t least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  std::uint32_t most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  std::uint32_t value = lead & (0xFFu >> (size + 1));
  std::size_t used = 1;
  for (; used < size && used < length && bytes[used] >= least && bytes[used] <= most; ++used) {
    value = value << 6 | (bytes[used] & 0x3Fu);
    least = 0x80;
    most = 0xBF;
  }
  wellFormed = size > 1 && used == size;
  character = wellFormed ? value : kReplacementCharacter;
  return used;
}

/// Reads the character at the start of `length` units, at least one, and gives the number of units it takes. An unpaired
/// surrogate is given as it is.
inline std::size_t DecodeUtf16(const TChar* units, std::size_t length, std::uint32_t& character) {
  character = units[0];
  if (!IsHighSurrogate(character) || length < 2 || !IsLowSurrogate(units[1])) return 1;
  character = 0x10000 + ((character - 0xD800) << 10) + (static_cast<std::uint32_t>(units[1]) - 0xDC00);
  return 2;
}

/// Writes a character to `bytes`, which has room for 4, and gives the number written.
inline std::size_t EncodeUtf8(char* bytes, std::uint32_t character) {
  const auto byte = [](std::uint32_t value) { return static_cast<char>(static_cast<unsigned char>(value)); };
  const auto trail = [&](int shift) { return byte(0x80 | ((character >> shift) & 0x3F)); };
  if (character < 0x80) {
    bytes[0] = byte(character);
    return 1;
  }
  if (character < 0x800) {
    bytes[0] = byte(0xC0 | character >> 6);
    bytes[1] = trail(0);
    return 2;
  }
  if (character < 0x10000) {
    bytes[0] = byte(0xE0 | character >> 12);
    bytes[1] = trail(6);
    bytes[2] = trail(0);
    return 3;
  }
  bytes[0] = byte(0xF0 | character >> 18);
  bytes[1] = trail(12);
  bytes[2] = trail(6);
  bytes[3] = trail(0);
  return 4;
}

/// Writes a character to `units`, which has room for 2, and gives the number written.
inline std::size_t EncodeUtf16(TChar* units, std::uint32_t character) {
  if (character < 0x10000) {
    units[0] = static_cast<TChar>(character);
    return 1;
  }
  units[0] = static_cast<TChar>(0xD800 + ((character - 0x10000) >> 10));
  units[1] = static_cast<TChar>(0xDC00 + ((character - 0x10000) & 0x3FF));
  return 2;
}

}  // namespace host
