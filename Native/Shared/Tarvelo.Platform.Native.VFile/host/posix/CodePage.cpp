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

/// A converter between two character sets, by their names; not open if one of them is unknown.
class Converter {
 public:
  Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
  ~Converter() {
    if (IsOpen()) iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool IsOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  /// Converts `length` bytes and gives the bytes that come out, into `out` unless that is null, which only counts. What cannot
  /// be converted is replaced: `badLength` tells how many bytes of input it takes, and `replacement`, in the form of the input or
  /// of the output, is written for it.
  template <typename BadLength, typename Replace>
  std::size_t Convert(const char* in, std::size_t length, char* out, std::size_t size, BadLength badLength,
                      Replace replace) {
    std::size_t total = 0;
    const auto step = [&](char** from, std::size_t* left) {
      char chunk[4096];
      char* to = out != nullptr ? out + total : chunk;
      std::size_t room = out != nullptr ? size - total : sizeof chunk;
      const std::size_t before = room;
      const bool done = iconv(handle_, from, left, &to, &room) != static_cast<std::size_t>(-1);
      const int error = done ? 0 : errno;
      total += before - room;
      return error;
    };
    char* next = const_cast<char*>(in);
    while (length > 0) {
      const int error = step(&next, &length);
      if (error == 0) break;
      if (error == E2BIG) {
        if (out != nullptr) break;
        continue;
      }
      const std::size_t bad = std::min(length, badLength(next, length));
      next += bad;
      length -= bad;
      replace(out, total, size, step);
    }
    step(nullptr, nullptr);
    return total;
  }

 private:
  iconv_t handle_;
};

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
    isUtf8_ = IsUtf8Name() || !Converter(kUnits, name_).IsOpen() || !Converter(name_, kUnits).IsOpen();
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

std::size_t MultiByteToWideChar(const char* bytes, std::size_t length, TChar* units, std::size_t size) {
  Converter converter(kUnits, Active().Name());
  const auto oneByte = [](const char*, std::size_t) { return std::size_t{1}; };
  const auto replace = [](char* out, std::size_t& total, std::size_t, const auto&) {
    const TChar unit = kReplacementCharacter;
    if (out != nullptr) std::memcpy(out + total, &unit, sizeof unit);
    total += sizeof unit;
  };
  char* out = size > 0 ? reinterpret_cast<char*>(units) : nullptr;
  return converter.Convert(bytes, length, out, size * sizeof(TChar), oneByte, replace) / sizeof(TChar);
}

std::size_t WideCharToMultiByte(const TChar* units, std::size_t length, char* bytes, std::size_t size) {
  Converter converter(Active().Name(), kUnits);
  const auto oneCharacter = [](const char* in, std::size_t left) {
    TChar pair[2] = {};
    std::memcpy(pair, in, std::min(left, sizeof pair));
    std::uint32_t character = 0;
    return DecodeUtf16(pair, left / sizeof(TChar), character) * sizeof(TChar);
  };
  // Through the converter, so that a character set with shift states is in the right one.
  const auto replace = [](char*, std::size_t&, std::size_t, const auto& step) {
    TChar mark = '?';
    char* next = reinterpret_cast<char*>(&mark);
    std::size_t left = sizeof mark;
    step(&next, &left);
  };
  return converter.Convert(reinterpret_cast<const char*>(units), length * sizeof(TChar), size > 0 ? bytes : nullptr,
                           size, oneCharacter, replace);
}

}  // namespace host
