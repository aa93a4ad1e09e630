// Copy, move and delete. Whatever others do meanwhile, nothing that is there is replaced unasked: the step that gives a name is
// the one that finds out whether it is free.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>

#include "host/posix/Descriptor.h"

namespace host {
namespace {

using posix::Descriptor;
using posix::ErrorFromErrno;
using posix::Fail;
using posix::LockForSharing;
using posix::NativeName;
using posix::OpenOnce;

bool IsSameFile(const struct stat& a, const struct stat& b) { return a.st_dev == b.st_dev && a.st_ino == b.st_ino; }

/// Opens a file to take a lock on it, whichever access is allowed. -1: it has none to take.
int OpenToLock(const NativeName& name, const struct stat& status) {
  if (!S_ISREG(status.st_mode)) return -1;
  const int reader = OpenOnce(name.Text(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK, 0);
  return reader >= 0 ? reader : OpenOnce(name.Text(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK, 0);
}

/// Whether somebody has the file open without sharing.
bool IsHeld(const Descriptor& file) { return file.IsOpen() && !LockForSharing(file.Get(), FILE_SHARE_READ); }

/// `rename`, but EEXIST for a name that exists. For file systems that cannot do it in one step: a file gets its second name
/// first; a directory could replace no more than an empty one.
bool RenameToFree(const char* from, const char* to) {
  if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  struct stat status;
  if (lstat(from, &status) != 0) return false;
  if (S_ISDIR(status.st_mode)) {
    if (lstat(to, &status) != 0) return rename(from, to) == 0;
    errno = EEXIST;
    return false;
  }
  if (link(from, to) != 0) return false;
  if (unlink(from) == 0) return true;
  const int error = errno;
  unlink(to);
  errno = error;
  return false;
}

bool RenameOver(const char* from, const char* to) { return rename(from, to) == 0; }

/// Whether two names are one entry of one directory.
bool IsSameEntry(const NativeName& a, const NativeName& b) {
  char directoryOfA[PATH_MAX];
  char directoryOfB[PATH_MAX];
  if (posix::DirectoryOf(a.Text(), directoryOfA) != posix::DirectoryOf(b.Text(), directoryOfB)) return false;
  struct stat statusOfA;
  struct stat statusOfB;
  return stat(directoryOfA, &statusOfA) == 0 && stat(directoryOfB, &statusOfB) == 0 && IsSameFile(statusOfA, statusOfB);
}

/// Copies what is left of a file: by the system as far as it does that, and what it does not, for whatever reason, piece by
/// piece.
bool CopyContent(int source, int target) {
  constexpr std::size_t kRange = std::size_t{1} << 30;
  while (copy_file_range(source, nullptr, target, nullptr, kRange, 0) > 0) continue;
  char piece[16384];
  for (;;) {
    std::uint32_t count = 0;
    if (!ReadFile(HandleFromDescriptor(source), piece, sizeof piece, &count)) return false;
    if (count == 0) return true;
    for (std::uint32_t put = 0; put < count;) {
      std::uint32_t done = 0;
      if (!WriteFile(HandleFromDescriptor(target), piece + put, count - put, &done)) return false;
      put += done;
    }
  }
}

/// Creates a file beside `target` and writes its name, which nobody else has, into `name`.
int CreateBeside(const char* target, char (&name)[PATH_MAX]) {
  char directory[PATH_MAX];
  posix::DirectoryOf(target, directory);
  for (unsigned i = 0; i < 1000; ++i) {
    const int length =
        std::snprintf(name, sizeof name, "%s/~copy%u-%u.tmp", directory, unsigned{GetCurrentThreadId()}, i);
    errno = ENAMETOOLONG;
    if (length >= PATH_MAX) return -1;
    const int file = OpenOnce(name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (file >= 0 || errno != EEXIST) return file;
  }
  return -1;
}

/// Makes a complete copy and then gives it its name by `giveName`. The copy has the mode, less what runs under another's name,
/// and the time of last write; if it may, the owner of the file that it replaces.
bool CopyToName(int source, const struct stat& status, const char* target, bool (*giveName)(const char*, const char*),
                const struct stat* replaced = nullptr) {
  char name[PATH_MAX];
  Descriptor copy(CreateBeside(target, name));
  if (!copy.IsOpen()) return Fail(errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno));
  bool done = CopyContent(source, copy.Get());
  if (done) {
    // A file system without these goes without.
    const timespec times[] = {{0, UTIME_OMIT}, status.st_mtim};
    if (replaced != nullptr) static_cast<void>(fchown(copy.Get(), replaced->st_uid, replaced->st_gid) == 0);
    static_cast<void>(fchmod(copy.Get(), status.st_mode & 0777));
    static_cast<void>(futimens(copy.Get(), times));
    // A file system behind a network may tell of a full disk only now.
    done = (close(copy.Release()) == 0 && giveName(name, target)) || Fail(ErrorFromErrno(errno));
  }
  if (!done) unlink(name);
  return done;
}

/// Copies onto what exists. The sharing of a file that others have open does not allow that, were it the source itself.
bool CopyOnto(int source, const struct stat& status, const NativeName& target) {
  const Descriptor old(OpenOnce(target.Text(), O_WRONLY, 0));
  struct stat oldStatus;
  if (!old.IsOpen() || fstat(old.Get(), &oldStatus) != 0) return Fail(ErrorFromErrno(errno, target));
  if (posix::IsReadOnlyFile(oldStatus)) return Fail(ERROR_ACCESS_DENIED);
  if (IsSameFile(status, oldStatus) || !LockForSharing(old.Get(), 0)) return Fail(ERROR_SHARING_VIOLATION);
  // A device takes what comes.
  if (!S_ISREG(oldStatus.st_mode)) return CopyContent(source, old.Get());
  char path[PATH_MAX];
  if (realpath(target.Text(), path) == nullptr) return Fail(ErrorFromErrno(errno, target));
  return CopyToName(source, status, path, RenameOver, &oldStatus);
}

/// Moves a file to another file system: copies it and removes it, or leaves it alone.
bool MoveByCopy(const NativeName& from, const NativeName& to) {
  const Descriptor source(OpenOnce(from.Text(), O_RDONLY | O_NOFOLLOW, 0));
  struct stat status;
  if (!source.IsOpen() || fstat(source.Get(), &status) != 0) return Fail(ErrorFromErrno(errno, from));
  if (!CopyToName(source.Get(), status, to.Text(), RenameToFree)) {
    if (GetLastError() == ERROR_FILE_EXISTS) SetLastError(ERROR_ALREADY_EXISTS);
    return false;
  }
  if (unlink(from.Text()) == 0) return true;
  const std::uint32_t error = ErrorFromErrno(errno, from);
  unlink(to.Text());
  return Fail(error);
}

}  // namespace

bool CopyFileW(const TChar* source, const TChar* target, bool failIfExists) {
  const NativeName from(source);
  const NativeName to(target);
  if (from.Error() != ERROR_SUCCESS) return Fail(from.Error());
  if (to.Error() != ERROR_SUCCESS) return Fail(to.Error());
  const std::uint32_t sourceEnding = posix::ErrorOfEndingSeparator(from, ERROR_ACCESS_DENIED);
  if (sourceEnding != ERROR_SUCCESS) return Fail(sourceEnding);
  const Descriptor original(OpenOnce(from.Text(), O_RDONLY, 0));
  struct stat status;
  if (!original.IsOpen() || fstat(original.Get(), &status) != 0) return Fail(ErrorFromErrno(errno, from));
  if (S_ISDIR(status.st_mode)) return Fail(ERROR_ACCESS_DENIED);
  if (IsHeld(original)) return Fail(ERROR_SHARING_VIOLATION);
  struct stat old;
  if (failIfExists && lstat(to.Text(), &old) == 0) return Fail(ERROR_FILE_EXISTS);
  const std::uint32_t targetEnding = posix::ErrorOfEndingSeparator(to, ERROR_ACCESS_DENIED);
  if (targetEnding != ERROR_SUCCESS) return Fail(targetEnding);
  if (failIfExists) return CopyToName(original.Get(), status, to.Text(), RenameToFree);
  if (stat(to.Text(), &old) == 0) return CopyOnto(original.Get(), status, to);
  return CopyToName(original.Get(), status, to.Text(), RenameOver);
}

bool MoveFileW(const TChar* oldName, const TChar* newName) {
  const NativeName from(oldName);
  const NativeName to(newName);
  if (from.Error() != ERROR_SUCCESS) return Fail(from.Error());
  if (to.Error() != ERROR_SUCCESS) return Fail(to.Error());
  const std::uint32_t sourceEnding = posix::ErrorOfEndingSeparator(from, ERROR_SUCCESS);
  if (sourceEnding != ERROR_SUCCESS) return Fail(sourceEnding);
  struct stat status;
  if (lstat(from.Text(), &status) != 0) return Fail(ErrorFromErrno(errno, from));
  const std::uint32_t targetEnding = posix::ErrorOfEndingSeparator(to, ERROR_ALREADY_EXISTS);
  if (targetEnding != ERROR_SUCCESS && !S_ISDIR(status.st_mode)) return Fail(targetEnding);
  const Descriptor guard(OpenToLock(from, status));
  if (IsHeld(guard)) return Fail(ERROR_SHARING_VIOLATION);
  if (RenameToFree(from.Text(), to.Text())) return true;
  if (errno == EEXIST) return IsSameEntry(from, to) || Fail(ERROR_ALREADY_EXISTS);
  if (errno == EXDEV && S_ISREG(status.st_mode)) return MoveByCopy(from, to);
  return Fail(ErrorFromErrno(errno, to));
}

bool DeleteFileW(const TChar* name) {
  const NativeName native(name);
  if (native.Error() != ERROR_SUCCESS) return Fail(native.Error());
  const std::uint32_t ending = posix::ErrorOfEndingSeparator(native, ERROR_ACCESS_DENIED);
  if (ending != ERROR_SUCCESS) return Fail(ending);
  struct stat status;
  if (lstat(native.Text(), &status) != 0) return Fail(ErrorFromErrno(errno, native));
  if (S_ISDIR(status.st_mode) || posix::IsReadOnlyFile(status)) return Fail(ERROR_ACCESS_DENIED);
  const Descriptor guard(OpenToLock(native, status));
  if (IsHeld(guard)) return Fail(ERROR_SHARING_VIOLATION);
  return unlink(native.Text()) == 0 || Fail(ErrorFromErrno(errno, native));
}

}  // namespace host
