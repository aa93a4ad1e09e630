#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/posix/PosixNames.h"

namespace host {
namespace {

using posix::ErrorFromErrno;
using posix::NativeName;

bool IsReadOnlyFile(const struct stat& status) { return !S_ISDIR(status.st_mode) && (status.st_mode & 0222) == 0; }

/// A value of the environment as units with terminator. `required` is the size it takes.
int CopyValue(const char* value, TChar* buffer, std::size_t size, std::size_t& required) {
  required = value == nullptr ? 0 : posix::UnitsFromNative(buffer, size, value, std::strlen(value)) + 1;
  if (size == 0) return required == 0 ? 0 : ERANGE;
  const bool fits = required <= size;
  buffer[fits && required > 0 ? required - 1 : 0] = 0;
  return fits ? 0 : ERANGE;
}

}  // namespace

std::uint32_t GetFileAttributesW(const TChar* name) {
  const NativeName native(name);
  struct stat status;
  std::uint32_t error = native.Error();
  if (error == 0 && stat(native.Text(), &status) != 0) error = ErrorFromErrno(errno, native);
  if (error != 0) {
    SetLastError(error);
    return INVALID_FILE_ATTRIBUTES;
  }
  if (S_ISDIR(status.st_mode)) return FILE_ATTRIBUTE_DIRECTORY;
  return FILE_ATTRIBUTE_ARCHIVE | (IsReadOnlyFile(status) ? FILE_ATTRIBUTE_READONLY : 0u);
}

int _waccess(const TChar* name, int mode) {
  const NativeName native(name);
  struct stat status;
  errno = ENOENT;
  if (native.Error() != 0 || stat(native.Text(), &status) != 0) return -1;
  const bool writes = (mode & 2) != 0;
  errno = EACCES;
  if (writes && IsReadOnlyFile(status)) return -1;
  const int wanted =
      ((mode & 4) != 0 ? R_OK : 0) | (writes ? W_OK : 0) | (writes && S_ISDIR(status.st_mode) ? X_OK : 0);
  return faccessat(AT_FDCWD, native.Text(), wanted == 0 ? F_OK : wanted, AT_EACCESS) == 0 ? 0 : -1;
}

int _wgetenv_s(std::size_t* required, TChar* buffer, std::size_t size, const TChar* name) {
  const NativeName native(name);
  return CopyValue(native.Error() == 0 ? std::getenv(native.Text()) : nullptr, buffer, size, *required);
}

std::size_t GetLastResortTempDirectory(TChar* buffer, std::size_t size) {
  std::size_t required = 0;
  const bool fromEnvironment = CopyValue(std::getenv("TMPDIR"), buffer, size, required) == 0 && required > 1;
  const std::uint32_t attributes = fromEnvironment ? GetFileAttributesW(buffer) : INVALID_FILE_ATTRIBUTES;
  const bool directory = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  if (directory && _waccess(buffer, 6) == 0) return required - 1;
  // Disk, where "/tmp" may be memory.
  return CopyValue("/var/tmp/", buffer, size, required) == 0 ? required - 1 : 0;
}

}  // namespace host
