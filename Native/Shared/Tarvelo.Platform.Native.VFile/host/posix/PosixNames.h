/// @file
/// Shared by the files of this folder: names and errors in the system's form.
#pragma once

#include <climits>
#include <string_view>
#include <sys/types.h>

#include "host/Host.h"
#include "host/NameBytes.h"

namespace host::posix {

static_assert(sizeof(off_t) == 8, "files over 2 GiB");

/// A name in the system's form, in a buffer of its own: UTF-8, separated by "/".
///
/// Both separators of the interface become "/". A unit U+DC80 to U+DCFF, or U+DC5C, that is no half of a pair stands for a
/// byte that was no UTF-8, or a backslash, in a name that the system gave, and becomes that byte again.
class NativeName {
 public:
  /// Converts the name; a name that has no form here leaves the reason in `Error`.
  explicit NativeName(const TChar* name);

  NativeName(const NativeName&) = delete;
  NativeName& operator=(const NativeName&) = delete;

  /// 0, or ERROR_PATH_NOT_FOUND (empty), ERROR_INVALID_NAME (unpaired surrogate), ERROR_FILENAME_EXCED_RANGE.
  std::uint32_t Error() const { return error_; }
  const char* Text() const { return text_; }
  std::size_t Length() const { return length_; }
  bool EndsInSeparator() const { return length_ > 0 && text_[length_ - 1] == '/'; }

 private:
  char text_[PATH_MAX];
  std::size_t length_ = 0;
  std::uint32_t error_ = 0;
};

/// Whether the unit separates the steps of a name.
constexpr bool IsSeparator(TChar unit) { return unit == '\\' || unit == '/'; }
/// The length of what looks like a drive at the start of a name, an ASCII letter and a colon, or 0.
std::size_t DriveLength(const TChar* name);

/// Writes the directory of the name, "." if it has none, into `directory`, and gives the last step of the name, without
/// separators.
std::string_view DirectoryOf(const char* name, char (&directory)[PATH_MAX]);

/// The Win32 number of an `errno`.
std::uint32_t ErrorFromErrno(int error);
/// The same for a call on a name: a missing file whose directory is missing too is ERROR_PATH_NOT_FOUND.
std::uint32_t ErrorFromErrno(int error, const NativeName& name);

/// Sets the last error and gives false, or the failure value of the caller's choice.
inline bool Fail(std::uint32_t error) {
  SetLastError(error);
  return false;
}

}  // namespace host::posix
