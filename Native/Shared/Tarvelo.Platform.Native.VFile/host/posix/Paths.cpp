// Names as text. There are no drives: an ASCII letter and a colon are split off and put together, and mean nothing.

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

#include "host/posix/PosixNames.h"

namespace host {
namespace {

std::size_t LengthOf(const TChar* text) { return text == nullptr ? 0 : std::char_traits<TChar>::length(text); }

/// A string that is put together in a buffer, and forgotten where it does not fit.
class Builder {
 public:
  Builder(TChar* buffer, std::size_t size) : buffer_(buffer), size_(size) {}

  void Add(TChar unit) {
    if (length_ < size_) buffer_[length_] = unit;
    ++length_;
  }
  void Add(const TChar* text) {
    for (; text != nullptr && *text != 0; ++text) Add(*text);
  }
  /// Terminates the string. Gives 0, or ERANGE with the buffer emptied.
  int Finish() {
    const bool fits = length_ < size_;
    buffer_[fits ? length_ : 0] = 0;
    return fits ? 0 : ERANGE;
  }

 private:
  TChar* buffer_;
  std::size_t size_;
  std::size_t length_ = 0;
};

/// A part of a name and the buffer that it goes to; none if the part is not wanted.
struct Part {
  const TChar* begin;
  const TChar* end;
  TChar* buffer;
  std::size_t size;

  bool IsValid() const { return (buffer != nullptr) == (size > 0); }
  bool Fits() const { return buffer == nullptr || static_cast<std::size_t>(end - begin) < size; }
  void Store(bool all) const {
    if (buffer != nullptr) *(all ? std::copy(begin, end, buffer) : buffer) = 0;
  }
};

}  // namespace

std::size_t posix::DriveLength(const TChar* name) {
  const int letter = name[0] | 0x20;
  return letter >= 'a' && letter <= 'z' && name[1] == ':' ? 2 : 0;
}

std::uint32_t GetLongPathNameW(const TChar* name, TChar* buffer, std::uint32_t size) {
  if (GetFileAttributesW(name) == INVALID_FILE_ATTRIBUTES) return 0;
  const auto length = static_cast<std::uint32_t>(LengthOf(name));
  if (length >= size) return length + 1;
  std::copy(name, name + length + 1, buffer);
  return length;
}

TChar* _wfullpath(TChar* buffer, const TChar* name, std::size_t size) {
  TChar full[2 * PATH_MAX];
  std::size_t length = 0;
  const TChar* end = name + LengthOf(name);
  if (name == end || !posix::IsSeparator(*name)) {
    char directory[PATH_MAX];
    if (getcwd(directory, sizeof directory) == nullptr) return nullptr;
    const std::size_t bytes = std::strlen(directory);
    // The root alone ends in a separator.
    length = bytes > 1 ? UnitsFromBytes(full, std::size(full), directory, bytes, Backslash::kIsOrdinary) : 0;
  }
  while (name != end) {
    const TChar* behind = std::find_if(name, end, posix::IsSeparator);
    const auto n = static_cast<std::size_t>(behind - name);
    if (n == 2 && name[0] == '.' && name[1] == '.') {
      while (length > 0 && full[--length] != '/') continue;
    } else if (n > 1 || (n == 1 && name[0] != '.')) {
      if (n >= std::size(full) - length) return nullptr;
      full[length++] = '/';
      length = static_cast<std::size_t>(std::copy(name, behind, full + length) - full);
    }
    name = behind == end ? end : behind + 1;
  }
  if (length == 0) full[length++] = '/';
  if (length >= size) return nullptr;
  *std::copy(full, full + length, buffer) = 0;
  return buffer;
}

int _wmakepath_s(TChar* buffer, std::size_t size, const TChar* drive, const TChar* dir, const TChar* name,
                 const TChar* ext) {
  if (buffer == nullptr || size == 0) return EINVAL;
  Builder path(buffer, size);
  if (LengthOf(drive) > 0) {
    path.Add(*drive);
    path.Add(TChar{':'});
  }
  path.Add(dir);
  const std::size_t dirLength = LengthOf(dir);
  if (dirLength > 0 && !posix::IsSeparator(dir[dirLength - 1])) path.Add(TChar{'\\'});
  path.Add(name);
  if (LengthOf(ext) > 0 && *ext != '.') path.Add(TChar{'.'});
  path.Add(ext);
  return path.Finish();
}

int _wsplitpath_s(const TChar* path, TChar* drive, std::size_t driveSize, TChar* dir, std::size_t dirSize, TChar* name,
                  std::size_t nameSize, TChar* ext, std::size_t extSize) {
  if (path == nullptr) return EINVAL;
  const TChar* end = path + LengthOf(path);
  const TChar* dirStart = path + posix::DriveLength(path);
  const TChar* nameStart = end;
  while (nameStart > dirStart && !posix::IsSeparator(nameStart[-1])) --nameStart;
  const TChar* extStart = end;
  while (extStart > nameStart && *extStart != '.') --extStart;
  if (*extStart != '.') extStart = end;
  const Part parts[] = {{path, dirStart, drive, driveSize},
                        {dirStart, nameStart, dir, dirSize},
                        {nameStart, extStart, name, nameSize},
                        {extStart, end, ext, extSize}};
  if (!std::all_of(std::begin(parts), std::end(parts), [](const Part& part) { return part.IsValid(); })) return EINVAL;
  const bool fit = std::all_of(std::begin(parts), std::end(parts), [](const Part& part) { return part.Fits(); });
  for (const Part& part : parts) part.Store(fit);
  return fit ? 0 : ERANGE;
}

}  // namespace host
