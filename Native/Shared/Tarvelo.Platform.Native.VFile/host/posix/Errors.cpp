#include <cerrno>
#include <sys/stat.h>

#include "host/posix/PosixNames.h"

namespace host {
namespace {

thread_local std::uint32_t lastError = ERROR_SUCCESS;

}  // namespace

std::uint32_t GetLastError() { return lastError; }

void SetLastError(std::uint32_t error) { lastError = error; }

namespace posix {

std::uint32_t ErrorFromErrno(int error) {
  struct Row {
    int system;
    std::uint32_t win32;
  };
  static constexpr Row kTable[] = {
      {0, ERROR_SUCCESS},
      {ENOENT, ERROR_FILE_NOT_FOUND},
      {ENOTDIR, ERROR_PATH_NOT_FOUND},
      {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
      {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
      {EACCES, ERROR_ACCESS_DENIED},
      {EPERM, ERROR_ACCESS_DENIED},
      {EISDIR, ERROR_ACCESS_DENIED},
      {EBADF, ERROR_INVALID_HANDLE},
      {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
      {EXDEV, ERROR_NOT_SAME_DEVICE},
      {EROFS, ERROR_WRITE_PROTECT},
      {EWOULDBLOCK, ERROR_SHARING_VIOLATION},
      {ETXTBSY, ERROR_SHARING_VIOLATION},
      {EEXIST, ERROR_FILE_EXISTS},
      {EINVAL, ERROR_INVALID_PARAMETER},
      {ENOSPC, ERROR_DISK_FULL},
      {EDQUOT, ERROR_DISK_FULL},
      {EFBIG, ERROR_DISK_FULL},
      {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
      {EIO, ERROR_IO_DEVICE},
      {ELOOP, ERROR_CANT_RESOLVE_FILENAME},
  };
  for (const Row& row : kTable) {
    if (row.system == error) return row.win32;
  }
  return ERROR_GEN_FAILURE;
}

std::uint32_t ErrorFromErrno(int error, const NativeName& name) {
  if (error != ENOENT) return ErrorFromErrno(error);
  char parent[PATH_MAX];
  DirectoryOf(name.Text(), parent);
  struct stat status;
  const bool parentExists = stat(parent, &status) == 0;
  return parentExists ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

}  // namespace posix
}  // namespace host
