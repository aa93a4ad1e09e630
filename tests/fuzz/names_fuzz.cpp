// Names as text, patterns over a directory of fixed names, temporary names, and strings of blanks.
//
// An input is a list of names, each on a line; "%" with four hexadecimal digits stands for a unit.

#include <algorithm>
#include <fstream>
#include <sstream>

#include "fuzz/Fuzz.h"
#include "hfile/HFile.h"
#include "hfile/HFileDir.h"
#include "hsys/HSys.h"

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

void CheckParts(const TString& path, std::uint32_t size) {
  TChar parts[4][kSize];
  TChar again[kSize];
  HFile::SplitName(parts[0], size, parts[1], size, parts[2], size, parts[3], size, path.c_str());
  const bool hasDrive = path.size() > 1 && path[1] == ':' && path[0] < 128 && std::isalpha(path[0]);
  const std::size_t drive = hasDrive ? 2 : 0;
  const std::size_t name = std::max(path.find_last_of(kSeparators) + 1, drive);
  const std::size_t dot = path.find_last_of('.');
  const std::size_t ext = dot == TString::npos || dot < name ? path.size() : dot;
  const TString expected[] = {path.substr(0, drive), path.substr(drive, name - drive), path.substr(name, ext - name),
                              path.substr(ext)};
  const bool fits = std::ranges::all_of(expected, [&](const TString& part) { return part.size() < size; });
  for (std::size_t i = 0; i < 4; ++i) Check(parts[i] == (fits ? expected[i] : TString()));
  HFile::BuildName(again, kSize, parts[0], parts[1], parts[2], parts[3]);
  Check(again == (fits && path.size() < kSize ? path : TString()));
  const bool someFit = expected[1].size() < size && expected[3].size() < size;
  HFile::SplitName(nullptr, 0, parts[1], size, nullptr, 0, parts[3], size, path.c_str());
  for (const std::size_t i : {1u, 3u}) Check(parts[i] == (someFit ? expected[i] : TString()));
  const bool isKnown = std::ranges::all_of(expected, [](const TString& part) { return part.size() < kSize; });
  HFile::SplitName(parts[0], size, parts[1], size, path.c_str());
  Check(parts[0] == (isKnown ? path.substr(0, std::min<std::size_t>(name, size - 1)) : TString()));
  Check(parts[1] == (isKnown ? path.substr(name, size - 1) : TString()));
}

void CheckFullName(const TString& name) {
  TString left = name + TSTR("/");
  std::ranges::replace(left, '\\', '/');
  if (!left.starts_with('/') || name.empty()) left = Directory() + TSTR("/") + left;
  TString full;
  for (std::size_t end = 0; (end = left.find('/')) != TString::npos; left.erase(0, end + 1)) {
    const TString step = left.substr(0, end);
    if (step == TSTR("..")) full.erase(std::min(full.rfind('/'), full.size()));
    if (step != TSTR("..") && step != TSTR(".") && !step.empty()) full += TSTR("/") + step;
  }
  if (full.empty()) full = TSTR("/");
  TChar got[kSize];
  HFile::GetFullName(got, kSize, name.c_str());
  Check(got == (full.size() < kSize ? full : name.substr(0, kSize - 1)));
  if (full.size() >= kSize) return;
  TChar again[kSize];
  HFile::GetFullName(again, kSize, got);
  Check(TString(again) == got);
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
  HFileDir dir;
  TChar got[kSize];
  bool found = dir.FindFirst(got, kSize, (TSTR("./sub\\") + pattern).c_str());
  std::int32_t count = 0;
  for (const TString& name : kNames) {
    if (!Matches(wanted, 0, name, 0)) continue;
    const TString path = Directory() + (name == TSTR("..")  ? TSTR("")
                                        : name == TSTR(".") ? TSTR("/sub")
                                                            : TSTR("/sub/") + name);
    Check(found && got == path && dir.Count() == ++count);
    Check(HFile::Exists(got));
    found = dir.FindNext(got, kSize);
  }
  Check(!found && *got == 0 && dir.Count() == count);
}

/// The next of a series of backups; the last one gives itself.
TString NextBackup(const TString& ext) {
  const std::size_t tilde = ext.starts_with('.') ? 1 : 0;
  const auto digit = [&](std::size_t at) {
    return at < ext.size() && ext[at] >= '0' && ext[at] <= '9' ? ext[at] - '0' : -1;
  };
  const int first = digit(tilde + 1);
  const int second = digit(tilde + 2);
  const TString begin = ext.substr(0, tilde) + TSTR("~");
  if (ext.size() == tilde) return TSTR(".~");
  if (ext[tilde] != '~') return begin + (first < 0 && second < 0 ? ext.substr(tilde + 1) : TString());
  if (first < 0 && second >= 0) return begin + TSTR("1");
  if (first == 9 && second == 9) return ext;
  const int next = second < 0 ? std::max(first, 0) + 1 : first * 10 + second + 1;
  const std::string number = std::to_string(next);
  const TString digits = (second >= 0 && next < 10 ? TSTR("0") : TString()) + TString(number.begin(), number.end());
  return begin + digits + ext.substr(std::min(tilde + 1 + digits.size(), ext.size()));
}

void CheckBackups(TString ext) {
  // The series of digits of other scripts is not told.
  if (std::ranges::any_of(ext, [](TChar unit) { return unit > 127; })) return;
  for (bool more = true; more;) {
    TString buffer = ext + TChar{0} + TSTR("##");
    more = HFile::GetNextBackupExt(buffer.data(), static_cast<std::uint32_t>(buffer.size()));
    const TString next = NextBackup(ext);
    Check(buffer.c_str() == next && more == (next != ext));
    ext = next;
  }
}

void CheckBlanks(const TString& text) {
  const TString blanks = TSTR("\t\n\f\r ");
  const std::size_t first = std::min(text.find_first_not_of(blanks), text.size());
  const std::size_t end = text.find_last_not_of(blanks) + 1;
  const auto trimmed = [](void (*trim)(TChar*), TString units) {
    trim(units.data());
    return TString(units.c_str());
  };
  Check(trimmed(Trim, text) == text.substr(first, std::max(first, end) - first));
  Check(trimmed(TrimLeft, text) == text.substr(first));
  Check(trimmed(TrimRight, text) == text.substr(0, end));
  Check(IsBlank(text.c_str()) == (first == text.size()));
}

void CheckTemporary(const TString& prefix, const TString& ext) {
  HFile file;
  TChar name[kSize];
  if (!HFile::CreateTempFile(file, name, kSize, prefix.c_str(), ext.c_str(), TSTR("sub"), false)) {
    Check(!file.IsOpen() && file.res != resDone);
    return;
  }
  Check(TString(name).starts_with(TSTR("sub\\") + prefix.substr(0, 63)) && file.Length() == 0);
  file.Close();
  Check(HFile::Remove(name));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
  TString last;
  for (std::string line; std::getline(lines, line);) {
    TString name = fuzz::Unescaped(line, '%', 4);
    std::erase(name, TChar{0});
    CheckParts(name, kSize);
    CheckParts(name, static_cast<std::uint32_t>(1 + size % 8));
    CheckFullName(name);
    CheckPattern(name);
    CheckBackups(name.substr(std::min(name.find_last_of('.'), name.size())));
    CheckBackups(name);
    CheckBlanks(name);
    // Without a step that leads out of the directory.
    if (name.find(TSTR("..")) == TString::npos) CheckTemporary(name, last);
    last = name;
  }
  return 0;
}
