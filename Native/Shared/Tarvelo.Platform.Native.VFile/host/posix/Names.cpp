#include <algorithm>
#include <string>

#include "host/posix/PosixNames.h"

namespace host::posix {

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
    if (IsSurrogate(character) && !IsRawByte(character)) {
      error_ = ERROR_INVALID_NAME;
      return;
    }
    length_ += EncodeNameCharacter(text_ + length_, character == '\\' ? '/' : character);
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

}  // namespace host::posix
