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

constexpr std::size_t kTagSize = 2 * sizeof(TChar);

/// Whether the units begin with a tag, U+E0000 to U+E007F. Most converters drop those without a word.
bool IsTag(const char* units, std::size_t left) {
  TChar pair[2];
  if (left < kTagSize) return false;
  std::memcpy(pair, units, kTagSize);
  return pair[0] == 0xDB40 && pair[1] >= 0xDC00 && pair[1] < 0xDC80;
}

/// The bytes of a tag, or of all units before the next one.
std::size_t UpToTag(const char* units, std::size_t left) {
  if (IsTag(units, left)) return kTagSize;
  for (std::size_t at = 0; at < left; ++at) {
    const void* high = std::memchr(units + at, 0xDB, left - at);
    if (high == nullptr) break;
    at = static_cast<std::size_t>(static_cast<const char*>(high) - units);
    if (at % 2 == 1 && IsTag(units + at - 1, left - at + 1)) return at - 1;
  }
  return left;
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
    // Behind a slash stands what iconv shall do with characters that the set has not.
    if (length == 0 || length >= sizeof name_ || std::memchr(dot + 1, '/', length) != nullptr) return;
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

CodePageConversion::CodePageConversion(Direction direction, LossRecord* losses)
    : direction_(direction),
      losses_(losses),
      handle_(direction == kToUnits ? OpenConverter(kUnits, Active().Name()) : OpenConverter(Active().Name(), kUnits)) {
}

CodePageConversion::~CodePageConversion() {
  if (IsOpen()) iconv_close(handle_);
}

bool CodePageConversion::Convert(const char*& in, std::size_t& left, char*& out, std::size_t& room, bool last) {
  const char* const firstIn = in;
  const char* const firstOut = out;
  const char* const end = in + left;
  // A tag goes to the converter alone, so that one that it drops is seen.
  const char* stop = direction_ == kToBytes ? in : end;
  while (left > 0) {
    if (in >= stop) stop = in + UpToTag(in, left);
    char* from = const_cast<char*>(in);
    auto size = static_cast<std::size_t>(stop - in);
    char* const to = out;
    const bool done = iconv(handle_, &from, &size, &out, &room) != static_cast<std::size_t>(-1);
    const int error = done ? 0 : errno;
    const bool isDropped = done && out == to && direction_ == kToBytes && IsTag(in, left);
    if (!isDropped) in = from;
    left = static_cast<std::size_t>(end - in);
    if (error == E2BIG) return false;
    if (error == EINVAL && !last && stop == end) return true;
    if (error == 0 && !isDropped) continue;
    if (room < kMostReplaced) return false;
    if (losses_ != nullptr) {
      const std::ptrdiff_t moved = direction_ == kToUnits ? out - firstOut : in - firstIn;
      losses_->Replace(moved / static_cast<std::ptrdiff_t>(sizeof(TChar)));
    }
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
      std::size_t markSize = sizeof mark;
      iconv(handle_, &next, &markSize, &out, &room);
    }
    in += bad;
    left -= bad;
  }
  // At the end what the converter keeps back goes out, and it goes to its first state.
  return !last || iconv(handle_, nullptr, nullptr, &out, &room) != static_cast<std::size_t>(-1);
}

}  // namespace host
