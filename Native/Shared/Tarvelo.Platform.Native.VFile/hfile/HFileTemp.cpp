#include <string>

#include "hfile/HFile.h"
#include "hfile/Require.h"
#include "host/Host.h"
#include "hsys/HostNames.h"
#include "hsys/NumberText.h"
#include "hsys/Strings.h"
#include "hsys/TempDirectory.h"
#include "hsys/TempNumbers.h"

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

  const std::uint32_t access = seqWrite ? host::GENERIC_WRITE : host::GENERIC_READ | host::GENERIC_WRITE;
  const std::uint32_t hint = seqWrite ? host::FILE_FLAG_SEQUENTIAL_SCAN : host::FILE_FLAG_RANDOM_ACCESS;
  // Signed, so that the numbers of a host that has been up for 25 days are negative.
  hsys::TempNumbers numbers(static_cast<std::int32_t>(host::GetTickCount()) % kNumbers, kNumbers);
  for (bool left = true; left;) {
    if (!fits || !BuildTempName(name, size, directory, start, numbers.Number(), end)) {
      file.res = resIllegalName;
      return false;
    }
    if (file.OpenWith(name, access, 0, host::CREATE_NEW, host::FILE_ATTRIBUTE_TEMPORARY | hint)) return true;
    const bool tooLong = host::GetLastError() == host::ERROR_FILENAME_EXCED_RANGE;
    const bool refused = file.res == resNoPermission || file.res == resReadOnly;
    const bool taken = file.res == resAlreadyExists || (refused && Exists(name));
    // What else fails would fail for every number.
    if (!tooLong && !taken) return false;
    left = tooLong ? numbers.SkipToShortest() : numbers.Step();
  }
  return false;
}
