// A draft is a file without a name (O_TMPFILE), beside the one that it is for, so that a process that is killed leaves nothing. A free
// name it gets by itself. To replace a file it needs a name first, "~save<number>-<number>.tmp", and has it for the two calls that look
// whether the old file still has its name and rename onto it. Where the file system has no files without names, or there is no
// /proc to give one a name, it has the other name from its start on.
//
// Links of the target are followed, whether or not something is there. A regular file there is opened for writing and locked until
// the draft is gone, so that who may not write it is refused, and nobody writes to what is about to be replaced. All that follows is
// of one directory, by its descriptor. What is no regular file is written as it is.
//
// The new file has owner, group, mode and POSIX access list of the old one, as they are when it gets the name; where it cannot have
// them it does not get it. Other extended attributes, rights to privileged calls among them, go with the old file. A new one has mode
// 0666 less the umask.

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <new>
#include <string_view>
#include <sys/xattr.h>
#include <unistd.h>

#include "host/posix/Beside.h"
#include "host/posix/Descriptor.h"

namespace host {
namespace {

using posix::Descriptor;
using posix::ErrorFromErrno;
using posix::NativeName;
using posix::OpenOnce;

constexpr char kStart[] = "~save";

/// Not an error of the host: others changed what the name leads to meanwhile.
constexpr std::uint32_t kChanged = 0xFFFFFFFF;

/// Whether the system has a name for the open file, by which it can get one in a directory.
bool HasSystemName(int file, const struct stat& status) {
  char own[32];
  std::snprintf(own, sizeof own, "/proc/self/fd/%d", file);
  return posix::LeadsTo(own, status);
}

bool GiveOwner(int file, const struct stat& old) {
  struct stat status;
  if (fstat(file, &status) != 0) return false;
  if (status.st_uid == old.st_uid && status.st_gid == old.st_gid) return true;
  return fchown(file, old.st_uid, old.st_gid) == 0;
}

/// A file that has none may have got one from its directory.
bool CopyAccessList(int from, int to) {
  constexpr char kAttribute[] = "system.posix_acl_access";
  char list[4096];
  const ssize_t size = fgetxattr(from, kAttribute, list, sizeof list);
  if (size > 0) return fsetxattr(to, kAttribute, list, static_cast<std::size_t>(size), 0) == 0;
  const auto isNone = [] { return errno == ENODATA || errno == EOPNOTSUPP; };
  if (size < 0 && !isNone()) return false;
  return fremovexattr(to, kAttribute) == 0 || isNone();
}

/// The mode comes last: a change of the owner or of the access list changes it.
bool GiveRights(int file, int old) {
  struct stat rights;
  if (fstat(old, &rights) != 0 || !GiveOwner(file, rights) || !CopyAccessList(old, file)) return false;
  struct stat status;
  if (fstat(file, &status) != 0) return false;
  return status.st_mode == rights.st_mode || fchmod(file, rights.st_mode & 07777) == 0;
}

}  // namespace

class Draft::State {
 public:
  explicit State(bool overwrite) : overwrite_(overwrite) {}
  ~State() {
    if (hasName_) posix::TakeAwayName(directory_.Get(), temporary_, made_);
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  int File() const { return file_.Get(); }
  /// Both give the error.
  std::uint32_t Begin(const NativeName& name);
  std::uint32_t Complete(bool onDisk);

 private:
  bool IsInPlace() const { return !directory_.IsOpen(); }
  bool Replaces() const { return old_.IsOpen(); }

  std::uint32_t BeginOver(const NativeName& name);
  std::uint32_t BeginNew(const NativeName& name, const char* path);
  std::uint32_t Enter(const NativeName& name, const char* path);
  std::uint32_t Make(const NativeName& name, mode_t mode);
  bool GiveName();

  const bool overwrite_;
  Descriptor old_{-1};  // locked
  struct stat oldStatus_ = {};
  Descriptor directory_{-1};
  Descriptor file_{-1};
  struct stat made_ = {};     // of the file
  char target_[PATH_MAX];     // what the file is to be called in the directory
  char temporary_[PATH_MAX];  // what it is called there
  bool hasName_ = false;      // whether it is
};

std::uint32_t Draft::State::Begin(const NativeName& name) {
  if (name.Error() != ERROR_SUCCESS) return name.Error();
  const std::uint32_t existing = overwrite_ ? ERROR_ACCESS_DENIED : ERROR_FILE_EXISTS;
  const std::uint32_t ending = posix::ErrorOfEndingSeparator(name, existing);
  if (ending != ERROR_SUCCESS) return ending;
  if (!overwrite_) return BeginNew(name, name.Text());
  std::uint32_t error = kChanged;
  for (int round = 0; error == kChanged && round < posix::kRounds; ++round) error = BeginOver(name);
  return error == kChanged ? ERROR_SHARING_VIOLATION : error;
}

/// Begins for what the name leads to, or for where it leads if nothing is there.
std::uint32_t Draft::State::BeginOver(const NativeName& name) {
  Descriptor old(OpenOnce(name.Text(), O_WRONLY, 0));
  char path[PATH_MAX];
  if (!old.IsOpen()) {
    if (errno != ENOENT || posix::FollowLinks(name.Text(), path) == nullptr) return ErrorFromErrno(errno, name);
    const std::uint32_t error = BeginNew(name, path);
    return error == ERROR_FILE_EXISTS ? kChanged : error;
  }
  if (fstat(old.Get(), &oldStatus_) != 0) return ErrorFromErrno(errno);
  if (!S_ISREG(oldStatus_.st_mode)) {
    directory_ = Descriptor(-1);
    file_ = std::move(old);
    return ERROR_SUCCESS;
  }
  if (posix::IsReadOnlyFile(oldStatus_)) return ERROR_ACCESS_DENIED;
  const bool locked = posix::LockForSharing(old.Get(), oldStatus_, 0);
  if (!posix::LeadsTo(name.Text(), oldStatus_)) return kChanged;
  if (!locked) return ERROR_SHARING_VIOLATION;
  // As the name is: what lies above the working directory may be closed to this process.
  const bool found = posix::FollowLinks(name.Text(), path) != nullptr;
  std::uint32_t error = found ? Enter(name, path) : ErrorFromErrno(errno, name);
  if (error != ERROR_SUCCESS) return error;
  if (!posix::IsNameOf(directory_.Get(), target_, oldStatus_)) return kChanged;
  old_ = std::move(old);
  // Until it has the rights of the old file it has none for others.
  error = Make(name, 0600);
  if (error == ERROR_SUCCESS && !GiveOwner(file_.Get(), oldStatus_)) error = ErrorFromErrno(errno);
  return error;
}

std::uint32_t Draft::State::BeginNew(const NativeName& name, const char* path) {
  const std::uint32_t error = Enter(name, path);
  if (error != ERROR_SUCCESS) return error;
  struct stat status;
  if (fstatat(directory_.Get(), target_, &status, AT_SYMLINK_NOFOLLOW) == 0) return ERROR_FILE_EXISTS;
  return errno == ENOENT ? Make(name, 0666) : ErrorFromErrno(errno, name);
}

std::uint32_t Draft::State::Enter(const NativeName& name, const char* path) {
  char parent[PATH_MAX];
  const std::string_view last = posix::DirectoryOf(path, parent);
  *std::copy(last.begin(), last.end(), target_) = '\0';
  directory_ = Descriptor(OpenOnce(parent, O_PATH | O_DIRECTORY, 0));
  return directory_.IsOpen() ? ERROR_SUCCESS : ErrorFromErrno(errno, name);
}

std::uint32_t Draft::State::Make(const NativeName& name, mode_t mode) {
  const int in = directory_.Get();
  file_ = Descriptor(OpenOnce(in, ".", O_WRONLY | O_TMPFILE, mode));
  const bool made = file_.IsOpen() && fstat(file_.Get(), &made_) == 0;
  if (made && HasSystemName(file_.Get(), made_)) return ERROR_SUCCESS;
  // Whatever was in the way of that: where a name meets it as well, it tells.
  file_ = Descriptor(posix::CreateUnderFreeName(in, kStart, mode, temporary_));
  hasName_ = file_.IsOpen();
  if (hasName_ && fstat(file_.Get(), &made_) == 0) return ERROR_SUCCESS;
  const std::uint32_t error = ErrorFromErrno(errno, name);
  if (hasName_) unlinkat(in, temporary_, 0);
  hasName_ = false;
  return error;
}

std::uint32_t Draft::State::Complete(bool onDisk) {
  const int file = file_.Get();
  if (IsInPlace()) return !onDisk || posix::WriteThrough(file) ? ERROR_SUCCESS : ErrorFromErrno(errno);
  if (Replaces() && !GiveRights(file, old_.Get())) return ErrorFromErrno(errno);
  if (onDisk && !posix::WriteThrough(file)) return ErrorFromErrno(errno);
  // What can refuse comes before the name changes.
  const Descriptor entries(onDisk ? OpenOnce(directory_.Get(), ".", O_RDONLY | O_DIRECTORY, 0) : -1);
  if (onDisk && !entries.IsOpen()) return ErrorFromErrno(errno);
  if (!GiveName()) return errno == EEXIST && overwrite_ ? ERROR_SHARING_VIOLATION : ErrorFromErrno(errno);
  return !onDisk || posix::WriteThrough(entries.Get()) ? ERROR_SUCCESS : ErrorFromErrno(errno);
}

bool Draft::State::GiveName() {
  const int in = directory_.Get();
  if (!hasName_) {
    if (!Replaces()) return posix::LinkTo(file_.Get(), in, target_);
    hasName_ = posix::LinkToFreeName(file_.Get(), in, kStart, temporary_);
    if (!hasName_) return false;
  } else if (posix::CloseAndUnlock(file_.Release()) != 0 && errno != EINTR) {
    // A file system behind a network may tell of a full disk only now.
    return false;
  }
  if (!posix::GiveName(in, temporary_, target_, Replaces() ? &oldStatus_ : nullptr)) return false;
  hasName_ = false;
  return true;
}

Draft::Draft(const TChar* name, bool overwrite) : state_(new (std::nothrow) State(overwrite)) {
  std::uint32_t error = ERROR_NOT_ENOUGH_MEMORY;
  if (state_ != nullptr) error = state_->Begin(NativeName(name));
  if (error == ERROR_SUCCESS) return;
  delete state_;
  state_ = nullptr;
  SetLastError(error);
}

Draft::~Draft() { delete state_; }

HANDLE Draft::File() const { return state_ != nullptr ? HandleFromDescriptor(state_->File()) : INVALID_HANDLE_VALUE; }

bool Draft::Complete(bool onDisk) {
  const std::uint32_t error = state_->Complete(onDisk);
  return error == ERROR_SUCCESS || posix::Fail(error);
}

}  // namespace host
