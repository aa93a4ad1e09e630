// A file none of whose write bits is set is read-only, for root too. One that is so no longer can be written by its owner, and by others
// who may read it as the umask lets. Directories are never read-only; one that is to be written must also be searchable.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

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

/// The write bits of the owner and of each class that may read the file, as the umask lets.
mode_t WriteBits(mode_t mode) {
  const mode_t ofReaders = (mode & 0444) >> 1;
  return S_IWUSR | (ofReaders & ~GetUmask());
}

/// Changes the mode of a file that is open for nothing but that, through the system's name of the descriptor; where the system
/// has no such names, through a second descriptor of the same file.
bool ChangeMode(int descriptor, const struct stat& status, const char* fileName, mode_t mode) {
  char name[32];
  std::snprintf(name, sizeof name, "/proc/self/fd/%d", descriptor);
  if (chmod(name, mode & 07777) == 0) return true;
  if (errno != ENOENT) return false;
  const posix::Descriptor file(posix::OpenOnce(fileName, O_RDONLY | O_NONBLOCK, 0));
  struct stat found;
  if (!file.IsOpen() || fstat(file.Get(), &found) != 0) return false;
  errno = EACCES;
  return posix::IsSameFile(found, status) && fchmod(file.Get(), mode & 07777) == 0;
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
  if (native.Error() != ERROR_SUCCESS) return Fail(native.Error());
  // Open for nothing: that takes no right on the file and reads no device. Both the look and the change go through it.
  const posix::Descriptor file(posix::OpenOnce(native.Text(), O_PATH, 0));
  struct stat status;
  if (!file.IsOpen() || fstat(file.Get(), &status) != 0) return Fail(ErrorFromErrno(errno, native));
  const bool readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (!S_ISREG(status.st_mode)) return !readOnly || Fail(ERROR_ACCESS_DENIED);
  if (posix::IsReadOnlyFile(status) == readOnly) return true;
  const mode_t mode = readOnly ? status.st_mode & ~mode_t{0222} : status.st_mode | WriteBits(status.st_mode);
  return ChangeMode(file.Get(), status, native.Text(), mode) || Fail(ErrorFromErrno(errno));
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
