#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>

#include "host/posix/Descriptor.h"

namespace host {
namespace {

using posix::ErrorFromErrno;
using posix::Fail;
using posix::NativeName;

/// The status of what the name leads to; gives the error.
std::uint32_t GetStatus(const NativeName& name, struct stat& status) {
  if (name.Error() != ERROR_SUCCESS) return name.Error();
  return stat(name.Text(), &status) == 0 ? ERROR_SUCCESS : ErrorFromErrno(errno, name);
}

/// The umask of the process, which cannot be asked for without being set for a moment, for all threads; the system's account of
/// the process tells it too. Where it does not, everything is masked.
mode_t GetUmask() {
  constexpr mode_t kAll = 0777;
  constexpr char kField[] = "\nUmask:";
  char text[1024];
  const posix::Descriptor account(posix::OpenOnce("/proc/self/status", O_RDONLY, 0));
  const ssize_t length = account.IsOpen() ? read(account.Get(), text, sizeof text - 1) : -1;
  if (length < 0) return kAll;
  text[length] = '\0';
  const char* field = std::strstr(text, kField);
  return field == nullptr ? kAll : static_cast<mode_t>(std::strtoul(field + sizeof kField - 1, nullptr, 8));
}

}  // namespace

std::uint32_t GetFileAttributesW(const TChar* name) {
  const NativeName native(name);
  struct stat status;
  const std::uint32_t error = GetStatus(native, status);
  if (error != ERROR_SUCCESS) {
    SetLastError(error);
    return INVALID_FILE_ATTRIBUTES;
  }
  if (S_ISDIR(status.st_mode)) return FILE_ATTRIBUTE_DIRECTORY;
  return FILE_ATTRIBUTE_ARCHIVE | (posix::IsReadOnlyFile(status) ? FILE_ATTRIBUTE_READONLY : 0u);
}

bool SetFileAttributesW(const TChar* name, std::uint32_t attributes) {
  const NativeName native(name);
  struct stat status;
  const std::uint32_t error = GetStatus(native, status);
  if (error != ERROR_SUCCESS) return Fail(error);
  const bool readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (!S_ISREG(status.st_mode)) return !readOnly || Fail(ERROR_ACCESS_DENIED);
  if (posix::IsReadOnlyFile(status) == readOnly) return true;
  const mode_t mode = readOnly ? status.st_mode & ~mode_t{0222} : status.st_mode | S_IWUSR | (0022 & ~GetUmask());
  return chmod(native.Text(), mode & 07777) == 0 || Fail(ErrorFromErrno(errno, native));
}

int _waccess(const TChar* name, int mode) {
  const NativeName native(name);
  struct stat status;
  errno = ENOENT;
  if (native.Error() != 0 || stat(native.Text(), &status) != 0) return -1;
  const bool writes = (mode & 2) != 0;
  errno = EACCES;
  if (writes && posix::IsReadOnlyFile(status)) return -1;
  const int wanted =
      ((mode & 4) != 0 ? R_OK : 0) | (writes ? W_OK : 0) | (writes && S_ISDIR(status.st_mode) ? X_OK : 0);
  return faccessat(AT_FDCWD, native.Text(), wanted == 0 ? F_OK : wanted, AT_EACCESS) == 0 ? 0 : -1;
}

}  // namespace host
