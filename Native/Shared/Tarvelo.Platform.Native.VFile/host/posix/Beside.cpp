#include "host/posix/Beside.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#include "host/posix/Descriptor.h"

namespace host::posix {
namespace {

/// Calls `make` with one name after the other into `name` until it gives a number that is not negative or fails for another reason than
/// that somebody has the name.
template <typename Make>
int WithFreeName(const char* start, char (&name)[PATH_MAX], Make make) {
  for (unsigned i = 0; i < 1000; ++i) {
    const int length = std::snprintf(name, sizeof name, "%s%u-%u.tmp", start, unsigned{GetCurrentThreadId()}, i);
    errno = ENAMETOOLONG;
    if (length >= PATH_MAX) return -1;
    const int made = make();
    if (made >= 0 || errno != EEXIST) return made;
  }
  return -1;
}

/// Renames onto a name that is made for that first, which no other name can have got meanwhile.
bool RenameToPlaceholder(int directory, const char* from, const char* to) {
  const Descriptor placeholder(OpenOnce(directory, to, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600));
  if (!placeholder.IsOpen()) return false;
  struct stat status;
  if (fstat(placeholder.Get(), &status) != 0) return false;
  const bool held = LockForSharing(placeholder.Get(), status, 0);
  errno = EWOULDBLOCK;
  if (held && renameat(directory, from, directory, to) == 0) return true;
  const int error = errno;
  TakeAwayName(directory, to, status);
  errno = error;
  return false;
}

}  // namespace

int CreateUnderFreeName(int directory, const char* start, mode_t mode, char (&name)[PATH_MAX]) {
  return WithFreeName(start, name,
                      [&] { return OpenOnce(directory, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode); });
}

bool LinkTo(int file, int directory, const char* name) {
  char own[32];
  std::snprintf(own, sizeof own, "/proc/self/fd/%d", file);
  return linkat(AT_FDCWD, own, directory, name, AT_SYMLINK_FOLLOW) == 0;
}

bool LinkToFreeName(int file, int directory, const char* start, char (&name)[PATH_MAX]) {
  return WithFreeName(start, name, [&] { return LinkTo(file, directory, name) ? 0 : -1; }) == 0;
}

bool RenameToFree(int directory, const char* from, const char* to) {
  if (renameat2(directory, from, directory, to, RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  struct stat status;
  if (fstatat(directory, from, &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
  if (S_ISDIR(status.st_mode)) {
    if (fstatat(directory, to, &status, AT_SYMLINK_NOFOLLOW) != 0) return renameat(directory, from, directory, to) == 0;
    errno = EEXIST;
    return false;
  }
  if (linkat(directory, from, directory, to, 0) != 0) {
    const bool noLinks = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS || errno == EMLINK;
    return noLinks && RenameToPlaceholder(directory, from, to);
  }
  if (unlinkat(directory, from, 0) == 0) return true;
  const int error = errno;
  TakeAwayName(directory, to, status);
  errno = error;
  return false;
}

bool GiveName(int directory, const char* name, const char* target, const struct stat* replaced) {
  if (replaced == nullptr) return RenameToFree(directory, name, target);
  if (IsNameOf(directory, target, *replaced)) return renameat(directory, name, directory, target) == 0;
  errno = EWOULDBLOCK;
  return false;
}

}  // namespace host::posix
