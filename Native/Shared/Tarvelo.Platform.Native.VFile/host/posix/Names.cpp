#include <algorithm>
#include <string>

#include "host/Utf8.h"
#include "host/posix/PosixNames.h"

namespace host::posix {
namespace {

constexpr std::uint32_t kRawByteBase = 0xDC00;

bool IsRawByte(std::uint32_t unit) {
  return unit == kRawByteBase + '\\' || (unit >= kRawByteBase + 0x80 && unit <= kRawByteBase + 0xFF);
}

}  // namespace

NativeName::NativeName(const TChar* name) {
  text_[0] = '\0';
  if (name == nullptr || *name == 0) {
    error_ = ERROR_PATH_NOT_FOUND;
    return;
  }
  std::size_t left = std::char_traits<TChar>::length(name);
  while (left > 0) {
    if (length_ + 4 >= sizeof text_) {
      error_ = ERROR_FILENAME_EXCED_RANGE;
      return;
    }
    std::uint32_t character = 0;
    const std::size_t used = DecodeUtf16(name, left, character);
    if (IsRawByte(character)) {
      text_[length_++] = static_cast<char>(static_cast<unsigned char>(character - kRawByteBase));
    } else if (IsSurrogate(character)) {
      error_ = ERROR_INVALID_NAME;
      return;
    } else {
      length_ += EncodeUtf8(text_ + length_, character == '\\' ? '/' : character);
    }
    name += used;
    left -= used;
  }
  text_[length_] = '\0';
}

std::string_view DirectoryOf(const char* name, char (&directory)[PATH_MAX]) {
  std::string_view last(name);
  while (last.size() > 1 && last.back() == '/') last.remove_suffix(1);
  const std::size_t separator = last.rfind('/');
  const std::size_t length = separator == std::string_view::npos ? 0 : separator + 1;
  const std::string_view parent = length == 0 ? "." : last.substr(0, length);
  *std::copy(parent.begin(), parent.end(), directory) = '\0';
  return last.substr(length);
}

std::size_t UnitsFromNative(TChar* units, std::size_t size, const char* bytes, std::size_t length,
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

}  // namespace host::posix
