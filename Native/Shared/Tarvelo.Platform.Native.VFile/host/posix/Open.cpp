#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/posix/Descriptor.h"

namespace host {

int posix::OpenOnce(const char* name, int flags, mode_t mode) {
  int descriptor;
  do {
    descriptor = open(name, flags | O_CLOEXEC | O_NOCTTY, mode);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

bool posix::LockForSharing(int descriptor, std::uint32_t share) {
  const int operation = ((share & FILE_SHARE_READ) != 0 ? LOCK_SH : LOCK_EX) | LOCK_NB;
  int result;
  do {
    result = flock(descriptor, operation);
  } while (result != 0 && errno == EINTR);
  return result == 0 || errno != EWOULDBLOCK;
}

std::uint32_t posix::ErrorOfEndingSeparator(const NativeName& name, std::uint32_t existing) {
  if (!name.EndsInSeparator()) return ERROR_SUCCESS;
  struct stat status;
  const bool directory = stat(name.Text(), &status) == 0 && S_ISDIR(status.st_mode);
  return directory ? existing : ERROR_INVALID_NAME;
}

namespace {

using posix::Descriptor;
using posix::ErrorFromErrno;
using posix::LockForSharing;
using posix::NativeName;
using posix::OpenOnce;

HANDLE Refuse(std::uint32_t error) {
  SetLastError(error);
  return INVALID_HANDLE_VALUE;
}

/// Opens or creates by the disposition and tells which it was. The last round, which creates without insisting, serves a
/// link to a name that does not exist.
int OpenByDisposition(const NativeName& name, int access, std::uint32_t disposition, mode_t permissions,
                      bool& existed) {
  existed = disposition == OPEN_EXISTING;
  if (existed) return OpenOnce(name.Text(), access, 0);
  const int created = OpenOnce(name.Text(), access | O_CREAT | O_EXCL, permissions);
  if (created >= 0 || disposition == CREATE_NEW || errno != EEXIST) return created;
  existed = true;
  const int opened = OpenOnce(name.Text(), access, 0);
  if (opened >= 0 || errno != ENOENT) return opened;
  existed = false;
  return OpenOnce(name.Text(), access | O_CREAT, permissions);
}

/// A file that lives as long as its handle: made under its name, which proves that nobody else has it, and at once
/// without one.
HANDLE CreateUnnamed(const NativeName& name, int access) {
  Descriptor file(OpenOnce(name.Text(), access | O_CREAT | O_EXCL | O_NOFOLLOW, 0600));
  if (!file.IsOpen()) return Refuse(ErrorFromErrno(errno, name));
  if (unlink(name.Text()) != 0) return Refuse(ErrorFromErrno(errno, name));
  SetLastError(ERROR_SUCCESS);
  return HandleFromDescriptor(file.Release());
}

}  // namespace

HANDLE CreateFileW(const TChar* name, std::uint32_t access, std::uint32_t share, std::uint32_t disposition,
                   std::uint32_t flags) {
  const NativeName native(name);
  if (native.Error() != 0) return Refuse(native.Error());
  if (disposition < CREATE_NEW || disposition > OPEN_ALWAYS) return Refuse(ERROR_INVALID_PARAMETER);
  const std::uint32_t existing = disposition == CREATE_NEW ? ERROR_FILE_EXISTS : ERROR_ACCESS_DENIED;
  const std::uint32_t ending = posix::ErrorOfEndingSeparator(native, existing);
  if (ending != ERROR_SUCCESS) return Refuse(ending);
  const bool writes = (access & GENERIC_WRITE) != 0;
  // A file is emptied through its descriptor, which has to be writable for that.
  const bool writable = writes || disposition == CREATE_ALWAYS;
  const int mode = !writable ? O_RDONLY : (access & GENERIC_READ) != 0 ? O_RDWR : O_WRONLY;
  if ((flags & FILE_FLAG_DELETE_ON_CLOSE) != 0) return CreateUnnamed(native, mode);

  const mode_t permissions = (flags & FILE_ATTRIBUTE_TEMPORARY) != 0 ? 0600 : 0666;
  bool existed = false;
  Descriptor file(OpenByDisposition(native, mode, disposition, permissions, existed));
  if (!file.IsOpen()) return Refuse(ErrorFromErrno(errno, native));
  struct stat status;
  if (fstat(file.Get(), &status) != 0) return Refuse(ErrorFromErrno(errno));
  if (S_ISDIR(status.st_mode)) return Refuse(ERROR_ACCESS_DENIED);
  const bool emptied = existed && disposition == CREATE_ALWAYS;
  if (existed && posix::IsReadOnlyFile(status) && (writes || emptied)) return Refuse(ERROR_ACCESS_DENIED);
  if (!LockForSharing(file.Get(), share)) return Refuse(ERROR_SHARING_VIOLATION);
  if (emptied && S_ISREG(status.st_mode) && ftruncate(file.Get(), 0) != 0) return Refuse(ErrorFromErrno(errno));
  // Advice alone: a system that does not take it reads as well.
  if ((flags & FILE_FLAG_SEQUENTIAL_SCAN) != 0) posix_fadvise(file.Get(), 0, 0, POSIX_FADV_SEQUENTIAL);
  if ((flags & FILE_FLAG_RANDOM_ACCESS) != 0) posix_fadvise(file.Get(), 0, 0, POSIX_FADV_RANDOM);
  const bool told = existed && (disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS);
  SetLastError(told ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
  return HandleFromDescriptor(file.Release());
}

bool CloseHandle(HANDLE file) {
  // After EINTR the descriptor is gone all the same and must not be closed again.
  if (close(DescriptorFromHandle(file)) == 0 || errno == EINTR) return true;
  return posix::Fail(ErrorFromErrno(errno));
}

}  // namespace host
