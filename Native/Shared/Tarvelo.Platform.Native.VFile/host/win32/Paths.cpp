// The C runtime's functions for names. What they refuse by ending the process is refused here first.

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>

#include "host/win32/Windows.h"

namespace host {
namespace {

std::size_t LengthOf(const TChar* text) { return text == nullptr ? 0 : std::char_traits<TChar>::length(text); }

/// No name of the system is longer, terminator included.
constexpr std::size_t kLongestName = 0x8000;

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
  // With room for what may come between the parts, and for the terminator.
  const std::size_t most = LengthOf(drive) + LengthOf(dir) + LengthOf(name) + LengthOf(ext) + 4;
  if (most <= size) return ::_wmakepath_s(buffer, size, drive, dir, name, ext);
  TChar made[kLongestName] = {};
  if (most <= kLongestName) ::_wmakepath_s(made, kLongestName, drive, dir, name, ext);
  const std::size_t length = LengthOf(made);
  const bool fits = most <= kLongestName && length < size;
  std::copy_n(made, fits ? length + 1 : 0, buffer);
  if (!fits) buffer[0] = 0;
  return fits ? 0 : ERANGE;
}

int _wsplitpath_s(const TChar* path, TChar* drive, std::size_t driveSize, TChar* dir, std::size_t dirSize, TChar* name,
                  std::size_t nameSize, TChar* ext, std::size_t extSize) {
  const bool parts = IsPart(drive, driveSize) && IsPart(dir, dirSize) && IsPart(name, nameSize) && IsPart(ext, extSize);
  if (path == nullptr || !parts) return EINVAL;
  return ::_wsplitpath_s(path, drive, driveSize, dir, dirSize, name, nameSize, ext, extSize);
}

}  // namespace host
