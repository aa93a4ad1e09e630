#include <algorithm>
#include <cstring>
#include <iterator>

#include "host/Utf8.h"
#include "host/win32/Windows.h"

namespace host {
namespace {

/// The most units or bytes that one call of the system converts.
constexpr std::size_t kPiece = 512;
/// The most bytes that a unit comes out as.
constexpr std::size_t kMostBytes = 4;

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

/// The units of the bytes, without a word about those that have no character.
int UnitsOf(const char* bytes, std::size_t count) {
  return ::MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, bytes, static_cast<int>(count), nullptr, 0);
}

/// Whether each of the bytes is part of a character.
bool AreCharacters(const char* bytes, std::size_t count) {
  return ::MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED | MB_ERR_INVALID_CHARS, bytes, static_cast<int>(count), nullptr,
                               0) != 0;
}

/// Whether the code page has the units themselves, not just something that looks like them.
bool HasUnits(const TChar* units, std::size_t count) {
  BOOL isReplaced = FALSE;
  char bytes[kPiece * kMostBytes];
  ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, units, static_cast<int>(count), bytes, sizeof bytes, "?",
                        &isReplaced);
  return !isReplaced;
}

/// Tells what of `count` bytes, which begin with a character, has none. `unit` is that of the first byte.
void TellReplaced(const char* bytes, std::size_t count, std::size_t unit, LossRecord& losses) {
  if (AreCharacters(bytes, count)) return;
  for (std::size_t at = 0; at < count;) {
    const bool isPair = ::IsDBCSLeadByteEx(CP_ACP, static_cast<BYTE>(bytes[at])) && at + 1 < count;
    const std::size_t size = isPair ? 2 : 1;
    if (!AreCharacters(bytes + at, size)) {
      losses.Replace(static_cast<std::int64_t>(unit) + (at > 0 ? UnitsOf(bytes, at) : 0));
    }
    at += size;
  }
}

/// The same of units.
void TellReplaced(const TChar* units, std::size_t count, std::size_t unit, LossRecord& losses) {
  if (HasUnits(units, count)) return;
  for (std::size_t at = 0; at < count;) {
    std::uint32_t character = 0;
    const std::size_t size = DecodeUtf16(units + at, count - at, character);
    if (!HasUnits(units + at, size)) losses.Replace(static_cast<std::int64_t>(unit + at));
    at += size;
  }
}

}  // namespace

std::uint32_t GetACP() { return ::GetACP(); }

// The system keeps no state between calls, so there is nothing to open.
CodePageConversion::CodePageConversion(Direction direction, LossRecord* losses)
    : direction_(direction), losses_(losses), handle_(this) {}

CodePageConversion::~CodePageConversion() = default;

bool CodePageConversion::Convert(const char*& in, std::size_t& left, char*& out, std::size_t& room, bool last) {
  TChar units[kPiece];
  const char* const firstIn = in;
  const char* const firstOut = out;
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
      if (losses_ != nullptr) {
        TellReplaced(in, taken, static_cast<std::size_t>(out - firstOut) / sizeof(TChar), *losses_);
      }
    } else {
      const std::size_t whole = left / sizeof(TChar);
      std::size_t count = std::min({whole, room / MostBytes(), kPiece});
      if (whole == 0) return true;
      std::memcpy(units, in, count * sizeof(TChar));
      // The halves of a pair stay together.
      const bool isCut = count > 0 && IsHighSurrogate(units[count - 1]) && (count < whole || !last);
      if (isCut) --count;
      if (count == 0) return isCut && whole == 1;
      taken = count * sizeof(TChar);
      if (losses_ != nullptr) {
        TellReplaced(units, count, static_cast<std::size_t>(in - firstIn) / sizeof(TChar), *losses_);
      }
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
