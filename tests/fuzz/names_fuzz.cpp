// Names as text, and patterns over a directory of fixed names.
//
// An input is a list of names, each on a line; "%" with four hexadecimal digits stands for a unit.

#include <algorithm>
#include <fstream>
#include <sstream>

#include "fuzz/Fuzz.h"
#include "hfile/HFile.h"
#include "hfile/HFileDir.h"

using fuzz::Check;

namespace {

constexpr std::uint32_t kSize = 261;
const TString kSeparators = TSTR("/\\");

/// In the directory "sub", in ascending order of units. U+DCxx stands for the byte xx.
const TString kNames[] = {
    TSTR("."),      TSTR(".."),         TSTR(".x"),   TSTR("B.TXT"),        TSTR("[a]"),   TSTR("a"),   TSTR("a.b"),
    TSTR("a.b.c"),  TSTR("a?b*"),       TSTR("aaab"), {0x61, 0xDC5C, 0x62}, TSTR("b.txt"), TSTR("c:d"), TSTR("n.txt~"),
    TSTR("\u00E4"), TSTR("\U0001D11E"), {0xDCFF}};

/// The full name of the directory, in which all else happens.
TString Directory() {
  static const fuzz::Scratch scratch;
  if (std::filesystem::create_directory("sub")) {
    for (const TString& name : kNames) {
      const bool holdsByte = std::ranges::any_of(name, [](TChar unit) { return unit / 256 == 0xDC; });
      const std::string bytes(name.begin(), name.end());
      std::ofstream("sub" / (holdsByte ? std::filesystem::path(bytes) : std::filesystem::path(name))).flush();
    }
  }
  return scratch.path.u16string();
}

void CheckName(const TString& name) {
  TChar parts[4][kSize];
  TChar whole[kSize];
  HFile::SplitName(parts[0], kSize, parts[1], kSize, parts[2], kSize, parts[3], kSize, name.c_str());
  HFile::BuildName(whole, kSize, parts[0], parts[1], parts[2], parts[3]);
  Check(whole == (name.size() < kSize ? name : TString()));
  HFile::GetFullName(whole, kSize, name.c_str());
  if (whole == name.substr(0, kSize - 1)) return;
  Check(whole[0] == '/' && TString(whole).find(TSTR("//")) == TString::npos);
  HFile::GetFullName(parts[0], kSize, whole);
  Check(TString(parts[0]) == whole);
}

/// Whether the pattern matches the name, both from a place on. Tries everything.
bool Matches(const TString& pattern, std::size_t p, const TString& name, std::size_t n) {
  if (p == pattern.size()) return n == name.size();
  const bool isPair = n + 1 < name.size() && name[n] / 1024 == 54 && name[n + 1] / 1024 == 55;
  const std::size_t behind = n + (isPair ? 2 : 1);
  if (pattern[p] == '*') {
    return Matches(pattern, p + 1, name, n) || (n < name.size() && Matches(pattern, p, name, behind));
  }
  if (n == name.size()) return false;
  return pattern[p] == '?' ? Matches(pattern, p + 1, name, behind)
                           : pattern[p] == name[n] && Matches(pattern, p + 1, name, n + 1);
}

void CheckPattern(const TString& line) {
  const TString pattern = line.substr(line.find_last_of(kSeparators) + 1, 200);
  TString wanted;
  for (const TChar unit : pattern) {
    if (unit != '*' || !wanted.ends_with('*')) wanted += unit;
  }
  if (pattern == TSTR("*.*")) wanted = TSTR("*");
  const TString directory = Directory();
  HFileDir dir;
  TChar got[kSize];
  bool found = dir.FindFirst(got, kSize, (TSTR("./sub\\") + pattern).c_str());
  std::int32_t count = 0;
  for (const TString& name : kNames) {
    if (!Matches(wanted, 0, name, 0)) continue;
    const TString path = directory + (name == TSTR("..")  ? TSTR("")
                                      : name == TSTR(".") ? TSTR("/sub")
                                                          : TSTR("/sub/") + name);
    Check(found && got == path && dir.Count() == ++count);
    Check(HFile::Exists(got));
    found = dir.FindNext(got, kSize);
  }
  Check(!found && *got == 0 && dir.Count() == count);
}

void CheckBackups(TString ext) {
  ext.resize(ext.size() + 6);
  for (int next = 0; HFile::GetNextBackupExt(ext.data(), static_cast<std::uint32_t>(ext.size())); ++next) {
    Check(next < 200);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
  for (std::string line; std::getline(lines, line);) {
    TString name = fuzz::Unescaped(line, '%', 4);
    std::erase(name, TChar{0});
    CheckName(name);
    CheckPattern(name);
    CheckBackups(name);
  }
  return 0;
}
