#include <algorithm>
#include <cstring>
#include <iterator>

#include "host/win32/Windows.h"

namespace host {
namespace {

/// The most units or bytes that one call of the system converts.
constexpr std::size_t kPiece = 512;

/// The most bytes that a character of the active code page takes.
std::size_t MostBytes() {
  CPINFO info;
  return ::GetCPInfo(CP_ACP, &info) ? info.MaxCharSize : 1;
}

/// How many of the bytes, at most `most`, are whole characters. The last one of a text may lack its second byte.
std::size_t WholeCharacters(const char* bytes, std::size_t left, std::size_t most, bool last) {
  if (MostBytes() == 1) return most;
  std::size_t whole = 0;
  while (whole < most) {
    const std::size_t size = ::IsDBCSLeadByteEx(CP_ACP, static_cast<BYTE>(bytes[whole])) ? 2 : 1;
    if (whole + size > left && last) return left;
    if (whole + size > most) break;
    whole += size;
  }
  return whole;
}

}  // namespace

std::uint32_t GetACP() { return ::GetACP(); }

// The system keeps no state between calls, so there is nothing to open.
CodePageConversion::CodePageConversion(Direction direction) : direction_(direction), handle_(this) {}

CodePageConversion::~CodePageConversion() = default;

bool CodePageConversion::Convert(const char*& in, std::size_t& left, char*& out, std::size_t& room, bool last) {
  TChar units[kPiece];
  while (left > 0) {
    std::size_t taken = 0;
    std::size_t given = 0;
    if (direction_ == kToUnits) {
      const std::size_t fits = room / sizeof(TChar);
      if (fits == 0) return false;
      taken = WholeCharacters(in, left, std::min({left, fits, kPiece}), last);
      if (taken == 0) return left < 2 && !last;
      const int count = ::MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, in, static_cast<int>(taken), units, kPiece);
      given = static_cast<std::size_t>(count) * sizeof(TChar);
      std::memcpy(out, units, given);
    } else {
      const std::size_t count = std::min({left / sizeof(TChar), room / MostBytes(), kPiece});
      if (left < sizeof(TChar)) return true;
      if (count == 0) return false;
      taken = count * sizeof(TChar);
      std::memcpy(units, in, taken);
      const int bytes = ::WideCharToMultiByte(CP_ACP, 0, units, static_cast<int>(count), out,
                                              static_cast<int>(std::min<std::size_t>(room, INT_MAX)), "?", nullptr);
      given = static_cast<std::size_t>(bytes);
    }
    in += taken;
    left -= taken;
    out += given;
    room -= given;
  }
  return true;
}

}  // namespace host
