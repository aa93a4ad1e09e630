#include "host/posix/PosixNames.h"

namespace host::posix {
namespace {

constexpr std::uint32_t kRawByteBase = 0xDC00;

bool IsHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
bool IsRawByte(std::uint32_t unit) { return unit >= kRawByteBase + 0x80 && unit <= kRawByteBase + 0xFF; }

/// Length of the well-formed UTF-8 sequence at `bytes`, and its code point; 0 if there is none.
std::size_t DecodeUtf8(const unsigned char* bytes, std::size_t length, std::uint32_t& codePoint) {
  const unsigned char lead = bytes[0];
  if (lead < 0x80) {
    codePoint = lead;
    return 1;
  }
  const std::size_t size = lead >= 0xC2 && lead <= 0xDF   ? 2
                           : lead >= 0xE0 && lead <= 0xEF ? 3
                           : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                          : 0;
  if (size == 0 || size > length) return 0;
  std::uint32_t value = lead & (0xFFu >> (size + 1));
  for (std::size_t i = 1; i < size; ++i) {
    if ((bytes[i] & 0xC0) != 0x80) return 0;
    value = value << 6 | (bytes[i] & 0x3Fu);
  }
  const bool overlong = value < (size == 3 ? 0x800u : size == 4 ? 0x10000u : 0x80u);
  if (overlong || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return 0;
  codePoint = value;
  return size;
}

}  // namespace

std::size_t EncodeUtf8(char* out, std::uint32_t codePoint) {
  const auto byte = [](std::uint32_t value) { return static_cast<char>(static_cast<unsigned char>(value)); };
  const auto trail = [&](int shift) { return byte(0x80 | ((codePoint >> shift) & 0x3F)); };
  if (codePoint < 0x80) {
    out[0] = byte(codePoint);
    return 1;
  }
  if (codePoint < 0x800) {
    out[0] = byte(0xC0 | codePoint >> 6);
    out[1] = trail(0);
    return 2;
  }
  if (codePoint < 0x10000) {
    out[0] = byte(0xE0 | codePoint >> 12);
    out[1] = trail(6);
    out[2] = trail(0);
    return 3;
  }
  out[0] = byte(0xF0 | codePoint >> 18);
  out[1] = trail(12);
  out[2] = trail(6);
  out[3] = trail(0);
  return 4;
}

NativeName::NativeName(const TChar* name) {
  text_[0] = '\0';
  if (name == nullptr || *name == 0) {
    error_ = ERROR_PATH_NOT_FOUND;
    return;
  }
  for (; *name != 0; ++name) {
    std::uint32_t codePoint = *name;
    if (length_ + 4 >= sizeof text_) {
      error_ = ERROR_FILENAME_EXCED_RANGE;
      return;
    }
    if (codePoint == '\\') codePoint = '/';
    if (IsHighSurrogate(codePoint) && IsLowSurrogate(name[1])) {
      codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (static_cast<std::uint32_t>(*++name) - 0xDC00);
    } else if (IsRawByte(codePoint)) {
      text_[length_++] = static_cast<char>(static_cast<unsigned char>(codePoint - kRawByteBase));
      continue;
    } else if (IsHighSurrogate(codePoint) || IsLowSurrogate(codePoint)) {
      error_ = ERROR_INVALID_NAME;
      return;
    }
    length_ += EncodeUtf8(text_ + length_, codePoint);
  }
  text_[length_] = '\0';
}

std::size_t UnitsFromNative(TChar* units, std::size_t size, const char* bytes, std::size_t length) {
  const auto* next = reinterpret_cast<const unsigned char*>(bytes);
  std::size_t count = 0;
  const auto put = [&](std::uint32_t unit) {
    if (count < size) units[count] = static_cast<TChar>(unit);
    ++count;
  };
  while (length > 0) {
    std::uint32_t codePoint = 0;
    std::size_t used = DecodeUtf8(next, length, codePoint);
    if (used == 0) {
      put(kRawByteBase + *next);
      used = 1;
    } else if (codePoint < 0x10000) {
      put(codePoint);
    } else {
      put(0xD800 + ((codePoint - 0x10000) >> 10));
      put(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
    }
    next += used;
    length -= used;
  }
  return count;
}

}  // namespace host::posix
