// The C runtime's functions for names. What they refuse by ending the process is refused here first.

#include <cerrno>
#include <cstdlib>
#include <string>

#include "host/win32/Windows.h"

namespace host {
namespace {

std::size_t LengthOf(const TChar* text) { return text == nullptr ? 0 : std::char_traits<TChar>::length(text); }

bool IsSeparator(TChar unit) { return unit == '\\' || unit == '/'; }

/// The length of a name put together.
std::size_t MadeLength(const TChar* drive, const TChar* dir, const TChar* name, const TChar* ext) {
  const std::size_t dirLength = LengthOf(dir);
  const bool needsSeparator = dirLength > 0 && !IsSeparator(dir[dirLength - 1]);
  const bool needsDot = LengthOf(ext) > 0 && *ext != '.';
  return (LengthOf(drive) > 0 ? 2 : 0) + dirLength + (needsSeparator ? 1 : 0) + LengthOf(name) + (needsDot ? 1 : 0) +
         LengthOf(ext);
}

bool IsPart(const TChar* buffer, std::size_t size) { return (buffer != nullptr) == (size > 0); }

}  // namespace

std::uint32_t GetLongPathNameW(const TChar* name, TChar* buffer, std::uint32_t size) {
  return ::GetLongPathNameW(win32::NameOf(name), buffer, size);
}

TChar* _wfullpath(TChar* buffer, const TChar* name, std::size_t size) {
  if (buffer == nullptr || size == 0) return nullptr;
  return ::_wfullpath(buffer, win32::NameOf(name), size);
}

int _wmakepath_s(TChar* buffer, std::size_t size, const TChar* drive, const TChar* dir, const TChar* name,
                 const TChar* ext) {
  if (buffer == nullptr || size == 0) return EINVAL;
  if (MadeLength(drive, dir, name, ext) >= size) {
    buffer[0] = 0;
    return ERANGE;
  }
  return ::_wmakepath_s(buffer, size, drive, dir, name, ext);
}

int _wsplitpath_s(const TChar* path, TChar* drive, std::size_t driveSize, TChar* dir, std::size_t dirSize, TChar* name,
                  std::size_t nameSize, TChar* ext, std::size_t extSize) {
  const bool parts = IsPart(drive, driveSize) && IsPart(dir, dirSize) && IsPart(name, nameSize) && IsPart(ext, extSize);
  if (path == nullptr || !parts) return EINVAL;
  return ::_wsplitpath_s(path, drive, driveSize, dir, dirSize, name, nameSize, ext, extSize);
}

}  // namespace host
