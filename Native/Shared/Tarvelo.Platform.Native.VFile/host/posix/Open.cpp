// Sharing is a lock on the open file (flock) that others of this library respect; only regular files know it. A file is emptied last of
// all. When an open returns, the name leads to the file that the handle holds, and the file keeps it: a file that any handle
// of this library has open is not deleted, moved or replaced by it. FILE_ATTRIBUTE_TEMPORARY makes a new file private to its
// owner. No handle is one of the three standard streams, even where these are closed.
//
// A file that is deleted with its handle has no name any more when the open returns, and is private to its owner. A name that exists
// counts as taken. ERROR_ACCESS_DENIED can mean that names can be made there and not taken away again; the empty file then stays.
//
// A close lifts the lock at once, also where a forked child has a copy of the handle, or where the handle is a copy itself of one
// that the program keeps.

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/posix/Descriptor.h"

namespace host {

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

/// An open as it was asked for.
struct Request {
  const NativeName& name;
  std::uint32_t access;
  std::uint32_t share;
  std::uint32_t disposition;
  mode_t permissions;  // of a new file

  bool Writes() const { return (access & GENERIC_WRITE) != 0; }
  bool Empties() const { return disposition == CREATE_ALWAYS; }
  /// A file is emptied through its descriptor, which has to be writable for that.
  int Mode() const {
    if (!Writes() && !Empties()) return O_RDONLY;
    return (access & GENERIC_READ) != 0 ? O_RDWR : O_WRONLY;
  }
};

/// Opens what exists or creates, by the disposition, and tells which it was. A link to nothing leads to the name that is
/// created. EEXIST where a name to be created came into being meanwhile.
int OpenOrMake(const Request& request, bool& made) {
  const char* name = request.name.Text();
  char end[PATH_MAX];
  made = request.disposition == CREATE_NEW;
  if (!made) {
    const int existing = OpenOnce(name, request.Mode(), 0);
    if (existing >= 0 || errno != ENOENT || request.disposition == OPEN_EXISTING) return existing;
    made = true;
    name = posix::FollowLinks(name, end);
    if (name == nullptr) return -1;
  }
  return OpenOnce(name, request.Mode() | O_CREAT | O_EXCL, request.permissions);
}

/// Not an error of the host: others changed what the name leads to meanwhile.
constexpr std::uint32_t kChanged = 0xFFFFFFFF;

/// Opens the file, locks it and only then believes that the name leads to it: without the lock another process may take the
/// name away, or give it to another file. Gives the error, or `kChanged`.
std::uint32_t TryToOpen(const Request& request, int& opened, bool& made) {
  Descriptor file(OpenOrMake(request, made));
  const bool cameIntoBeing = made && request.disposition != CREATE_NEW;
  if (!file.IsOpen()) return errno == EEXIST && cameIntoBeing ? kChanged : ErrorFromErrno(errno, request.name);
  struct stat status;
  if (fstat(file.Get(), &status) != 0) return ErrorFromErrno(errno);
  if (S_ISDIR(status.st_mode)) return ERROR_ACCESS_DENIED;
  const bool changes = request.Writes() || request.Empties();
  if (!made && changes && posix::IsReadOnlyFile(status)) return ERROR_ACCESS_DENIED;
  const bool locked = LockForSharing(file.Get(), status, request.share);
  if (S_ISREG(status.st_mode) && !posix::LeadsTo(request.name.Text(), status)) return kChanged;
  // Whoever holds a file just made came in between: it exists, or is on its way out.
  if (!locked) return made ? kChanged : ERROR_SHARING_VIOLATION;
  if (request.Empties() && S_ISREG(status.st_mode) && ftruncate(file.Get(), 0) != 0) return ErrorFromErrno(errno);
  opened = file.Release();
  return ERROR_SUCCESS;
}

/// A file that lives as long as its handle: made under its name, which proves that nobody else has it, and at once without one.
HANDLE CreateUnnamed(const Request& request) {
  const char* name = request.name.Text();
  Descriptor file(OpenOnce(name, request.Mode() | O_CREAT | O_EXCL | O_NOFOLLOW, request.permissions));
  if (!file.IsOpen()) return Refuse(ErrorFromErrno(errno, request.name));
  struct stat status;
  const bool gone = fstat(file.Get(), &status) == 0 && posix::TakeAwayName(name, status);
  if (!gone) return Refuse(ErrorFromErrno(errno));
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
  const mode_t permissions = (flags & (FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE)) != 0 ? 0600 : 0666;
  const Request request = {native, access, share, disposition, permissions};
  if ((flags & FILE_FLAG_DELETE_ON_CLOSE) != 0) return CreateUnnamed(request);

  int file = -1;
  bool made = false;
  std::uint32_t error = kChanged;
  for (int round = 0; error == kChanged && round < posix::kRounds; ++round) error = TryToOpen(request, file, made);
  if (error != ERROR_SUCCESS) return Refuse(error == kChanged ? ERROR_SHARING_VIOLATION : error);
  // Advice alone: a system that does not take it reads as well.
  if ((flags & FILE_FLAG_SEQUENTIAL_SCAN) != 0) posix_fadvise(file, 0, 0, POSIX_FADV_SEQUENTIAL);
  if ((flags & FILE_FLAG_RANDOM_ACCESS) != 0) posix_fadvise(file, 0, 0, POSIX_FADV_RANDOM);
  const bool told = !made && (disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS);
  SetLastError(told ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
  return HandleFromDescriptor(file);
}

bool CloseHandle(HANDLE file) {
  // After EINTR the descriptor is gone all the same and must not be closed again.
  if (posix::CloseAndUnlock(DescriptorFromHandle(file)) == 0 || errno == EINTR) return true;
  return posix::Fail(ErrorFromErrno(errno));
}

}  // namespace host
