#include "vf/Names.h"

#include <algorithm>
#include <type_traits>

#include "host/NameBytes.h"
#include "tcharvfile/Encodings.h"

namespace fs = std::filesystem;

namespace vf {
namespace {

using NativeChar = fs::path::value_type;

/// Whether the system's names are bytes. In such ones a backslash separates nothing.
constexpr bool kNamesAreBytes = std::is_same_v<NativeChar, char>;
constexpr host::Backslash kBackslash = kNamesAreBytes ? host::Backslash::kIsOrdinary : host::Backslash::kSeparates;

TString UnitsOfName(std::string_view bytes) {
  bytes = bytes.substr(0, bytes.find('\0'));
  TString units(bytes.size(), 0);
  units.resize(host::UnitsFromBytes(units.data(), units.size(), bytes.data(), bytes.size(), kBackslash));
  return units;
}

TString UnitsOfPath(const fs::path& path) {
  if constexpr (kNamesAreBytes) return UnitsOfName(path.string());
  return {path.native().begin(), std::find(path.native().begin(), path.native().end(), NativeChar{0})};
}

}  // namespace

TString UnitsOf(std::string_view utf8) {
  TString units(utf8.size(), 0);
  units.resize(tcharvfile::Utf8ToUnits(utf8.data(), utf8.size(), units.data()));
  return units;
}

std::string Utf8Of(TStringView units) {
  constexpr std::size_t kMostOfUnit = 3;
  std::string utf8(units.size() * kMostOfUnit, 0);
  utf8.resize(tcharvfile::UnitsToUtf8(units.data(), units.size(), utf8.data(), host::kReplacementCharacter));
  return utf8;
}

Name::Name(const fs::path& path) : units_(UnitsOfPath(path)) {}

Name::Name(FromUtf8, std::string_view utf8) : units_(UnitsOfName(utf8)) {}

std::string Name::Utf8() const {
  std::string utf8;
  for (std::size_t i = 0; i < units_.size();) {
    std::uint32_t character = 0;
    i += host::DecodeUtf16(units_.data() + i, units_.size() - i, character);
    if (kNamesAreBytes && character == '\\') character = '/';
    char bytes[4];
    utf8.append(bytes, host::EncodeNameCharacter(bytes, character));
  }
  return utf8;
}

fs::path Name::Path() const {
  if constexpr (kNamesAreBytes) return Utf8();
  return {units_.begin(), units_.end()};
}

std::string MessageOf(std::int32_t res) {
  TChar text[64];
  GetTextResMsg(text, 64, res);
  return Utf8Of(text);
}

}  // namespace vf
