#include "tcharvfile/Encodings.h"

#include <cstdint>
#include <cstring>

#include "host/Utf8.h"

// Runs of ASCII go 8 characters at a time; the rest goes character by character.

namespace tcharvfile {
namespace {

constexpr std::size_t kStride = 8;

bool IsAscii(const char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return (word & 0x8080808080808080) == 0;
}

bool IsAscii(const TChar* units) {
  std::uint64_t words[2];
  std::memcpy(words, units, sizeof words);
  return ((words[0] | words[1]) & 0xFF80FF80FF80FF80) == 0;
}

}  // namespace

std::size_t Utf8ToUnits(const char* bytes, std::size_t length, TChar* units) {
  const char* end = bytes + length;
  TChar* out = units;
  while (bytes < end) {
    while (static_cast<std::size_t>(end - bytes) >= kStride && IsAscii(bytes)) {
      for (std::size_t i = 0; i < kStride; ++i) out[i] = static_cast<TChar>(bytes[i]);
      bytes += kStride;
      out += kStride;
    }
    if (bytes == end) break;
    std::uint32_t character = 0;
    bool wellFormed = false;
    bytes += host::DecodeUtf8(reinterpret_cast<const unsigned char*>(bytes), static_cast<std::size_t>(end - bytes),
                              character, wellFormed);
    out += host::EncodeUtf16(out, character);
  }
  return static_cast<std::size_t>(out - units);
}

std::size_t Utf8Length(const TChar* units, std::size_t length) {
  // A pair takes 4 bytes, which is 3 for its first unit and 1 for its second; anything else above U+07FF takes 3.
  std::size_t total = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const std::uint32_t unit = units[i];
    const bool endsPair = host::IsLowSurrogate(unit) && i > 0 && host::IsHighSurrogate(units[i - 1]);
    total += unit < 0x80 || endsPair ? 1 : unit < 0x800 ? 2 : 3;
  }
  return total;
}

std::size_t UnitsToUtf8(const TChar* units, std::size_t length, char* bytes) {
  const TChar* end = units + length;
  char* out = bytes;
  while (units < end) {
    while (static_cast<std::size_t>(end - units) >= kStride && IsAscii(units)) {
      for (std::size_t i = 0; i < kStride; ++i) out[i] = static_cast<char>(units[i]);
      units += kStride;
      out += kStride;
    }
    if (units == end) break;
    std::uint32_t character = 0;
    units += host::DecodeUtf16(units, static_cast<std::size_t>(end - units), character);
    out += host::EncodeUtf8(out, host::IsSurrogate(character) ? host::kReplacementCharacter : character);
  }
  return static_cast<std::size_t>(out - bytes);
}

void ReplaceUnpaired(TString& text, TChar replacement) {
  std::uint32_t character = 0;
  for (std::size_t i = 0; i < text.size(); i += host::DecodeUtf16(text.data() + i, text.size() - i, character)) {
    if (host::IsSurrogate(text[i]) && host::DecodeUtf16(text.data() + i, text.size() - i, character) == 1) {
      text[i] = replacement;
    }
  }
}

void SwapTChar(TChar& unit) {
  const std::uint32_t value = unit;
  unit = static_cast<TChar>(value >> 8 | value << 8);
}

}  // namespace tcharvfile
