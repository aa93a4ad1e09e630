// The active code page is the character set of the environment's locale, fixed at its first use; UTF-8 where it names none that
// is known. A byte that has no character becomes U+FFFD.

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iconv.h>

#include "host/Host.h"
#include "host/Utf8.h"

namespace host {
namespace {

static_assert(static_cast<unsigned char>(TChar{1}) == 1 && sizeof(TChar) == 2);
constexpr char kUnits[] = "UTF-16LE";

/// A converter between two character sets, by their names; null if one of them is unknown, or the heap is exhausted.
void* OpenConverter(const char* to, const char* from) {
  const iconv_t handle = iconv_open(to, from);
  return handle != reinterpret_cast<iconv_t>(-1) ? handle : nullptr;
}

bool IsKnown(const char* to, const char* from) {
  void* converter = OpenConverter(to, from);
  if (converter != nullptr) iconv_close(converter);
  return converter != nullptr;
}

/// Room for a replacement, with what brings it about in a character set with shift states.
constexpr std::size_t kMostReplaced = 32;

/// The name of the active character set.
class ActiveCodePage {
 public:
  ActiveCodePage() {
    const char* locale = nullptr;
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
      if (locale == nullptr || *locale == '\0') locale = std::getenv(variable);
    }
    const char* dot = locale != nullptr ? std::strchr(locale, '.') : nullptr;
    if (dot == nullptr) return;
    const std::size_t length = std::strcspn(dot + 1, "@");
    if (length == 0 || length >= sizeof name_) return;
    std::memcpy(name_, dot + 1, length);
    name_[length] = '\0';
    isUtf8_ = IsUtf8Name() || !IsKnown(kUnits, name_) || !IsKnown(name_, kUnits);
  }

  bool IsUtf8() const { return isUtf8_; }
  const char* Name() const { return name_; }

 private:
  bool IsUtf8Name() const {
    const char* wanted = "utf8";
    for (const char* c = name_; *c != '\0'; ++c) {
      if (*c == '-' || *c == '_') continue;
      if (std::tolower(static_cast<unsigned char>(*c)) != *wanted++) return false;
    }
    return *wanted == '\0';
  }

  char name_[64] = "";
  bool isUtf8_ = true;
};

const ActiveCodePage& Active() {
  static const ActiveCodePage active;
  return active;
}

}  // namespace

std::uint32_t GetACP() {
  // Other code pages have no number here.
  return Active().IsUtf8() ? CP_UTF8 : 1;
}

CodePageConversion::CodePageConversion(Direction direction)
    : direction_(direction),
      handle_(direction == kToUnits ? OpenConverter(kUnits, Active().Name()) : OpenConverter(Active().Name(), kUnits)) {
}

CodePageConversion::~CodePageConversion() {
  if (IsOpen()) iconv_close(handle_);
}

bool CodePageConversion::Convert(const char*& in, std::size_t& left, char*& out, std::size_t& room, bool last) {
  while (left > 0) {
    char* from = const_cast<char*>(in);
    const bool done = iconv(handle_, &from, &left, &out, &room) != static_cast<std::size_t>(-1);
    const int error = done ? 0 : errno;
    in = from;
    if (error == E2BIG) return false;
    if (error == EINVAL && !last) return true;
    if (error == 0) continue;
    if (room < kMostReplaced) return false;
    std::size_t bad = 1;
    if (direction_ == kToUnits) {
      const TChar unit = kReplacementCharacter;
      std::memcpy(out, &unit, sizeof unit);
      out += sizeof unit;
      room -= sizeof unit;
    } else {
      TChar pair[2] = {};
      std::memcpy(pair, in, std::min(left, sizeof pair));
      std::uint32_t character = 0;
      bad = DecodeUtf16(pair, left / sizeof(TChar), character) * sizeof(TChar);
      // Through the converter, so that a character set with shift states is in the right one.
      TChar mark = '?';
      char* next = reinterpret_cast<char*>(&mark);
      std::size_t size = sizeof mark;
      iconv(handle_, &next, &size, &out, &room);
    }
    in += bad;
    left -= bad;
  }
  // At the end what the converter keeps back goes out, and it goes to its first state.
  return !last || iconv(handle_, nullptr, nullptr, &out, &room) != static_cast<std::size_t>(-1);
}

}  // namespace host
