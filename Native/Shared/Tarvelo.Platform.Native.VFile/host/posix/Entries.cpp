// Copy, move and delete. Whatever others do meanwhile, nothing that is there is replaced unasked: the step that gives a name is
// the one that finds out whether it is free.
//
// A copy follows links of its target to their end, whether or not something is there. A regular target appears under its name
// complete or not at all, and an old one stays as it was until then; others, such as devices, are written as they are. Holes stay holes
// where the file systems can tell and make them. ERROR_SHARING_VIOLATION where the target is open at all, or where another file got
// its name meanwhile.
//
// Between file systems files alone are moved: copied with owner, mode and time, then removed.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

#include "host/posix/Beside.h"
#include "host/posix/Content.h"
#include "host/posix/Descriptor.h"

namespace host {
namespace {

using posix::Descriptor;
using posix::ErrorFromErrno;
using posix::Fail;
using posix::IsSameFile;
using posix::LockForSharing;
using posix::NativeName;
using posix::OpenOnce;

/// Whether two names are one entry of one directory.
bool IsSameEntry(const NativeName& a, const NativeName& b) {
  char directoryOfA[PATH_MAX];
  char directoryOfB[PATH_MAX];
  if (posix::DirectoryOf(a.Text(), directoryOfA) != posix::DirectoryOf(b.Text(), directoryOfB)) return false;
  struct stat statusOfA;
  struct stat statusOfB;
  return stat(directoryOfA, &statusOfA) == 0 && stat(directoryOfB, &statusOfB) == 0 && IsSameFile(statusOfA, statusOfB);
}

/// Creates a file beside `target` and writes its name, which nobody else has, into `name`.
int CreateBeside(const char* target, char (&name)[PATH_MAX]) {
  char directory[PATH_MAX];
  posix::DirectoryOf(target, directory);
  char start[PATH_MAX];
  errno = ENAMETOOLONG;
  if (std::snprintf(start, sizeof start, "%s/~copy", directory) >= PATH_MAX) return -1;
  return posix::CreateUnderFreeName(AT_FDCWD, start, 0600, name);
}

/// What a copy is made of and becomes.
struct Copying {
  int source;
  const struct stat& status;
  /// The file that the copy replaces, or null for a name that has to be free.
  const struct stat* replaced;
  /// Whether the copy has the owner of the source, rather than that of the file that it replaces.
  bool moves;
};

/// Gives the copy owner, mode and time of last write. A file system without these goes without, and so does a process that may
/// not give files away; rights to run under another's name go with the owner alone.
void GiveAttributes(int copy, const Copying& copying) {
  const struct stat& status = copying.status;
  const struct stat* owner = copying.moves ? &status : copying.replaced;
  bool owned = false;
  if (owner != nullptr) {
    owned = fchown(copy, owner->st_uid, owner->st_gid) == 0;
    if (!owned) static_cast<void>(fchown(copy, static_cast<uid_t>(-1), owner->st_gid) == 0);
  }
  const timespec times[] = {{0, UTIME_OMIT}, status.st_mtim};
  static_cast<void>(fchmod(copy, status.st_mode & (copying.moves && owned ? 07777 : 0777)));
  static_cast<void>(futimens(copy, times));
}

/// Makes a complete copy and then gives it its name. `made` becomes the status of the copy.
bool CopyToName(const Copying& copying, const char* target, struct stat& made) {
  char name[PATH_MAX];
  Descriptor copy(CreateBeside(target, name));
  if (!copy.IsOpen()) return Fail(errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno));
  if (fstat(copy.Get(), &made) != 0) return Fail(ErrorFromErrno(errno));
  bool done = posix::CopyContent(copying.source, copying.status, copy.Get());
  if (done) {
    GiveAttributes(copy.Get(), copying);
    // A file system behind a network may tell of a full disk only now.
    done = (posix::CloseAndUnlock(copy.Release()) == 0 && posix::GiveName(AT_FDCWD, name, target, copying.replaced)) ||
           Fail(ErrorFromErrno(errno));
  }
  if (!done) posix::TakeAwayName(name, made);
  return done;
}

bool CopyToName(const Copying& copying, const char* target) {
  struct stat made;
  return CopyToName(copying, target, made);
}

/// Copies onto the open file `old`, which is locked and to which `target` leads.
bool CopyOnto(int source, const struct stat& status, const NativeName& target, int old, const struct stat& oldStatus) {
  // A device takes what comes.
  if (!S_ISREG(oldStatus.st_mode)) return posix::CopyContent(source, status, old);
  char path[PATH_MAX];
  if (realpath(target.Text(), path) == nullptr) return Fail(ErrorFromErrno(errno, target));
  return CopyToName({source, status, &oldStatus, false}, path);
}

/// Copies to the place to which the name leads, where nothing was.
bool CopyToEnd(int source, const struct stat& status, const NativeName& target) {
  char end[PATH_MAX];
  if (posix::FollowLinks(target.Text(), end) == nullptr) return Fail(ErrorFromErrno(errno, target));
  return CopyToName({source, status, nullptr, false}, end);
}

/// Copies onto what the name leads to, or to where it leads if nothing is there. The sharing of a file that others have open does
/// not allow that, were it the source itself.
bool CopyOver(int source, const struct stat& status, const NativeName& target) {
  for (int round = 0; round < posix::kRounds; ++round) {
    const Descriptor old(OpenOnce(target.Text(), O_WRONLY, 0));
    if (!old.IsOpen()) {
      if (errno != ENOENT) return Fail(ErrorFromErrno(errno, target));
      if (CopyToEnd(source, status, target)) return true;
      if (GetLastError() != ERROR_FILE_EXISTS) return false;
      // What came into being meanwhile is replaced, if the source can be read again.
      if (lseek(source, 0, SEEK_SET) != 0) return Fail(ERROR_SHARING_VIOLATION);
      continue;
    }
    struct stat oldStatus;
    if (fstat(old.Get(), &oldStatus) != 0) return Fail(ErrorFromErrno(errno));
    if (posix::IsReadOnlyFile(oldStatus)) return Fail(ERROR_ACCESS_DENIED);
    if (IsSameFile(status, oldStatus)) return Fail(ERROR_SHARING_VIOLATION);
    const bool locked = LockForSharing(old.Get(), oldStatus, 0);
    if (S_ISREG(oldStatus.st_mode) && !posix::LeadsTo(target.Text(), oldStatus)) continue;
    return locked ? CopyOnto(source, status, target, old.Get(), oldStatus) : Fail(ERROR_SHARING_VIOLATION);
  }
  return Fail(ERROR_SHARING_VIOLATION);
}

/// Moves a file to another file system: copies it and removes it, or leaves it alone.
bool MoveByCopy(const NativeName& from, const struct stat& status, int source, const NativeName& to) {
  if (source < 0) return Fail(ERROR_ACCESS_DENIED);
  struct stat made;
  if (!CopyToName({source, status, nullptr, true}, to.Text(), made)) {
    if (GetLastError() == ERROR_FILE_EXISTS) SetLastError(ERROR_ALREADY_EXISTS);
    return false;
  }
  const bool same = posix::IsNameOf(from.Text(), status);
  if (same && unlink(from.Text()) == 0) return true;
  const std::uint32_t error = same ? ErrorFromErrno(errno, from) : ERROR_SHARING_VIOLATION;
  posix::TakeAwayName(to.Text(), made);
  return Fail(error);
}

/// Opens a file to take a lock on it, whichever access is allowed.
int OpenToLock(const NativeName& name) {
  constexpr int kAsItIs = O_NOFOLLOW | O_NONBLOCK;
  const int reader = OpenOnce(name.Text(), O_RDONLY | kAsItIs, 0);
  return reader >= 0 || errno != EACCES ? reader : OpenOnce(name.Text(), O_WRONLY | kAsItIs, 0);
}

/// Calls `change` with the status of what the name leads to and a descriptor of it. A regular file is locked whole then, so that
/// nobody has it open, and the name still leads to it; one that may be neither read nor written, and what is no regular file,
/// comes with -1.
template <typename Change>
bool ChangeEntry(const NativeName& name, Change change) {
  for (int round = 0; round < posix::kRounds; ++round) {
    struct stat status;
    if (lstat(name.Text(), &status) != 0) return Fail(ErrorFromErrno(errno, name));
    if (!S_ISREG(status.st_mode)) return change(status, -1);
    const Descriptor file(OpenToLock(name));
    if (!file.IsOpen() && errno == EACCES) return change(status, -1);
    if (!file.IsOpen() && errno != ENOENT && errno != ELOOP) return Fail(ErrorFromErrno(errno, name));
    if (!file.IsOpen()) continue;
    if (fstat(file.Get(), &status) != 0) return Fail(ErrorFromErrno(errno));
    const bool locked = LockForSharing(file.Get(), status, 0);
    if (!posix::IsNameOf(name.Text(), status)) continue;
    return locked ? change(status, file.Get()) : Fail(ERROR_SHARING_VIOLATION);
  }
  return Fail(ERROR_SHARING_VIOLATION);
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
  if (!LockForSharing(original.Get(), status, FILE_SHARE_READ)) return Fail(ERROR_SHARING_VIOLATION);
  struct stat old;
  if (failIfExists && lstat(to.Text(), &old) == 0) return Fail(ERROR_FILE_EXISTS);
  const std::uint32_t targetEnding = posix::ErrorOfEndingSeparator(to, ERROR_ACCESS_DENIED);
  if (targetEnding != ERROR_SUCCESS) return Fail(targetEnding);
  if (!failIfExists) return CopyOver(original.Get(), status, to);
  return CopyToName({original.Get(), status, nullptr, false}, to.Text());
}

bool MoveFileW(const TChar* oldName, const TChar* newName) {
  const NativeName from(oldName);
  const NativeName to(newName);
  if (from.Error() != ERROR_SUCCESS) return Fail(from.Error());
  if (to.Error() != ERROR_SUCCESS) return Fail(to.Error());
  const std::uint32_t sourceEnding = posix::ErrorOfEndingSeparator(from, ERROR_SUCCESS);
  if (sourceEnding != ERROR_SUCCESS) return Fail(sourceEnding);
  return ChangeEntry(from, [&](const struct stat& status, int file) {
    const std::uint32_t targetEnding = posix::ErrorOfEndingSeparator(to, ERROR_ALREADY_EXISTS);
    if (targetEnding != ERROR_SUCCESS && !S_ISDIR(status.st_mode)) return Fail(targetEnding);
    if (posix::RenameToFree(AT_FDCWD, from.Text(), to.Text())) return true;
    if (errno == EEXIST) return IsSameEntry(from, to) || Fail(ERROR_ALREADY_EXISTS);
    if (errno == EXDEV && S_ISREG(status.st_mode)) return MoveByCopy(from, status, file, to);
    return Fail(ErrorFromErrno(errno, to));
  });
}

bool DeleteFileW(const TChar* name) {
  const NativeName native(name);
  if (native.Error() != ERROR_SUCCESS) return Fail(native.Error());
  const std::uint32_t ending = posix::ErrorOfEndingSeparator(native, ERROR_ACCESS_DENIED);
  if (ending != ERROR_SUCCESS) return Fail(ending);
  return ChangeEntry(native, [&](const struct stat& status, int) {
    if (S_ISDIR(status.st_mode) || posix::IsReadOnlyFile(status)) return Fail(ERROR_ACCESS_DENIED);
    return unlink(native.Text()) == 0 || Fail(ErrorFromErrno(errno, native));
  });
}

}  // namespace host
