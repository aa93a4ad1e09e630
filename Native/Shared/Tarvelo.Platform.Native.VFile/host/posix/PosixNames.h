/// @file
/// Shared by the files of this folder: names and errors in the system's form.
#pragma once

#include <climits>

#include "host/Host.h"

namespace host::posix {

/// A name in the system's form, in a buffer of its own: UTF-8, separated by "/".
///
/// Both separators of the interface become "/". A unit U+DC80 to U+DCFF that is no half of a pair stands for a byte that
/// was no UTF-8 in a name that the system gave, and becomes that byte again.
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

/// Converts `length` bytes that the system gave to units, without terminator, at most `size` of them; gives the number
/// that the whole text takes. Bytes that are no UTF-8 become U+DC00 plus the byte.
std::size_t UnitsFromNative(TChar* units, std::size_t size, const char* bytes, std::size_t length);

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
