#include <string>

#include "hfile/HFile.h"
#include "hfile/Require.h"
#include "host/Host.h"
#include "hsys/HostNames.h"
#include "hsys/NumberText.h"
#include "hsys/Strings.h"
#include "hsys/TempDirectory.h"

namespace {

constexpr std::int32_t kNumbers = 100000000;
constexpr std::uint32_t kPartSize = 64;

/// The directory with its separator, or empty for the current one; false if it does not fit.
bool ChooseDirectory(TChar (&directory)[hsys::kNameSize], const TChar* dir) {
  if (dir == nullptr) {
    HFile::GetTempDir(directory, hsys::kNameSize);
  } else {
    if (std::char_traits<TChar>::length(dir) >= hsys::kNameSize) return false;
    AssignStr(directory, hsys::kNameSize, dir);
    hsys::CondAppendDirSep(directory, hsys::kNameSize);
  }
  const std::size_t length = std::char_traits<TChar>::length(directory);
  return length == 0 || hsys::IsDirSep(directory[length - 1]);
}

/// Writes the name of the number into `name`; false if it does not fit.
bool BuildTempName(TChar* name, std::uint32_t size, const TChar* dir, const TChar* prefix, std::int32_t number,
                   const TChar* ext) {
  const hsys::NumberText<TChar> digits(number, 10);
  std::size_t length = 0;
  name[0] = 0;
  for (const TChar* part : {dir, prefix, static_cast<const TChar*>(digits.text), ext}) {
    length += std::char_traits<TChar>::length(part);
    AppendStr(name, size, part);
  }
  return length < size;
}

}  // namespace

void HFile::GetTempDir(TChar* buffer, std::uint32_t size) {
  if (!hfile::Require(buffer != nullptr) || !hfile::Require(size > 0)) return;
  TChar candidate[hsys::kNameSize];
  hsys::FindTempDirectory(candidate);
  const std::uint32_t length = host::GetLongPathNameW(candidate, buffer, size);
  if (length == 0 || length >= size) AssignStr(buffer, size, candidate);
  CondAppendDirSep(buffer, size);
}

bool HFile::CreateTempFile(HFile& file, TChar* name, std::uint32_t size, const TChar* prefix, const TChar* ext,
                           const TChar* dir, bool seqWrite) {
  if (!hfile::Require(!file.IsOpen()) || !hfile::Require(name != nullptr) || !hfile::Require(size > 0)) return false;
  TChar directory[hsys::kNameSize];
  const bool fits = ChooseDirectory(directory, dir);
  TChar start[kPartSize];
  AssignStr(start, kPartSize, prefix == nullptr ? TSTR("~hf") : prefix);
  if (ext == nullptr) ext = TSTR(".tmp");
  TChar end[kPartSize];
  AssignStr(end, kPartSize, *ext == 0 ? ext : TSTR("."));
  AppendStr(end, kPartSize, *ext == '.' ? ext + 1 : ext);

  // Signed, so that the numbers of a host that has been up for 25 days are negative.
  const std::int32_t base = static_cast<std::int32_t>(host::GetTickCount()) % kNumbers;
  for (std::int32_t i = 0; i < kNumbers; ++i) {
    if (!fits || !BuildTempName(name, size, directory, start, (base + i) % kNumbers, end)) {
      file.res = resIllegalName;
      return false;
    }
    if (seqWrite ? file.CreateSeqWrite(name, false) : file.Create(name, false)) return true;
    switch (file.res) {
      case resNoPermission:
      case resReadOnly:
        if (!Exists(name)) return false;
        break;
      // No number helps.
      case resIllegalPath:
      case resIllegalName:
        return false;
      default:
        break;
    }
  }
  return false;
}
