#include "tcharvfile/Encodings.h"

#include <cstring>

#include "host/Processor.h"
#include "host/Utf8.h"

#if defined(VFILE_SSE2)
#include <emmintrin.h>
#endif

// Runs of ASCII go many characters at a time; the rest goes character by character, those of two and three bytes by a short way.

namespace tcharvfile {
namespace {

constexpr std::size_t kStride = 16;

#if defined(VFILE_SSE2)

/// Converts `kStride` bytes if all of them are ASCII.
bool WidenAscii(const unsigned char* bytes, TChar* units) {
  const __m128i lanes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
  if (_mm_movemask_epi8(lanes) != 0) return false;
  const __m128i zero = _mm_setzero_si128();
  _mm_storeu_si128(reinterpret_cast<__m128i*>(units), _mm_unpacklo_epi8(lanes, zero));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(units + kStride / 2), _mm_unpackhi_epi8(lanes, zero));
  return true;
}

/// Converts `kStride` units if all of them are ASCII.
bool NarrowAscii(const TChar* units, char* bytes) {
  const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
  const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + kStride / 2));
  const __m128i beyond = _mm_and_si128(_mm_or_si128(low, high), _mm_set1_epi16(static_cast<short>(0xFF80)));
  if (_mm_movemask_epi8(_mm_cmpeq_epi16(beyond, _mm_setzero_si128())) != 0xFFFF) return false;
  _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), _mm_packus_epi16(low, high));
  return true;
}

#else

bool WidenAscii(const unsigned char* bytes, TChar* units) {
  unsigned char all = 0;
  for (std::size_t i = 0; i < kStride; ++i) all = static_cast<unsigned char>(all | bytes[i]);
  if (all >= 0x80) return false;
  for (std::size_t i = 0; i < kStride; ++i) units[i] = bytes[i];
  return true;
}

bool NarrowAscii(const TChar* units, char* bytes) {
  std::uint32_t all = 0;
  for (std::size_t i = 0; i < kStride; ++i) all |= units[i];
  if (all >= 0x80) return false;
  for (std::size_t i = 0; i < kStride; ++i) bytes[i] = static_cast<char>(units[i]);
  return true;
}

#endif

bool IsTrail(unsigned char byte) { return (byte & 0xC0) == 0x80; }

}  // namespace

std::size_t Utf8ToUnits(const char* bytes, std::size_t length, TChar* units, host::LossRecord* losses) {
  const auto* in = reinterpret_cast<const unsigned char*>(bytes);
  const unsigned char* end = in + length;
  TChar* out = units;
  while (in < end) {
    const auto left = static_cast<std::size_t>(end - in);
    const std::uint32_t lead = *in;
    if (lead < 0x80) {
      if (left >= kStride && WidenAscii(in, out)) {
        in += kStride;
        out += kStride;
      } else {
        *out++ = static_cast<TChar>(lead);
        ++in;
      }
    } else if (lead >= 0xC2 && lead < 0xE0 && left >= 2 && IsTrail(in[1])) {
      *out++ = static_cast<TChar>((lead & 0x1F) << 6 | (in[1] & 0x3Fu));
      in += 2;
    } else if (lead > 0xE0 && lead < 0xF0 && lead != 0xED && left >= 3 && IsTrail(in[1]) && IsTrail(in[2])) {
      *out++ = static_cast<TChar>((lead & 0xF) << 12 | (in[1] & 0x3Fu) << 6 | (in[2] & 0x3Fu));
      in += 3;
    } else {
      std::uint32_t character = 0;
      bool wellFormed = false;
      in += host::DecodeUtf8(in, left, character, wellFormed);
      if (!wellFormed && losses != nullptr) losses->Replace(out - units);
      out += host::EncodeUtf16(out, character);
    }
  }
  return static_cast<std::size_t>(out - units);
}

std::size_t Utf8Rest(const char* bytes, std::size_t length) {
  constexpr std::size_t kMost = 3;
  const auto* end = reinterpret_cast<const unsigned char*>(bytes) + length;
  for (std::size_t rest = 1; rest <= kMost && rest <= length; ++rest) {
    const unsigned char* lead = end - rest;
    if (IsTrail(*lead)) continue;
    // Trail bytes up to the end do what the character needs, and leave it open: each that may follow makes one longer.
    std::uint32_t character = 0;
    bool wellFormed = false;
    const bool open = *lead >= (rest < 2   ? 0xC2
                                : rest < 3 ? 0xE0
                                           : 0xF0) &&
                      *lead <= 0xF4 && host::DecodeUtf8(lead, rest, character, wellFormed) == rest && !wellFormed;
    return open ? rest : 0;
  }
  return 0;
}

std::size_t UnitsToUtf8(const TChar* units, std::size_t length, char* bytes, std::uint32_t replacement,
                        host::LossRecord* losses) {
  const TChar* begin = units;
  const TChar* end = units + length;
  char* out = bytes;
  while (units < end) {
    const auto left = static_cast<std::size_t>(end - units);
    const std::uint32_t unit = *units;
    if (unit < 0x80) {
      if (left >= kStride && NarrowAscii(units, out)) {
        units += kStride;
        out += kStride;
      } else {
        *out++ = static_cast<char>(unit);
        ++units;
      }
      continue;
    }
    std::uint32_t character = unit;
    if (host::IsSurrogate(unit)) {
      const std::size_t taken = host::DecodeUtf16(units, left, character);
      if (host::IsSurrogate(character)) {
        character = replacement;
        if (losses != nullptr) losses->Replace(units - begin);
      }
      units += taken;
    } else {
      ++units;
    }
    out += host::EncodeUtf8(out, character);
  }
  return static_cast<std::size_t>(out - bytes);
}

void SwapUnits(unsigned char* bytes, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    std::uint16_t unit;
    std::memcpy(&unit, bytes + 2 * i, sizeof unit);
    unit = static_cast<std::uint16_t>(unit >> 8 | unit << 8);
    std::memcpy(bytes + 2 * i, &unit, sizeof unit);
  }
}

}  // namespace tcharvfile
