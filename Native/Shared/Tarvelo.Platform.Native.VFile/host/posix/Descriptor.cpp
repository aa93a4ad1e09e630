#include "host/posix/Descriptor.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <pthread.h>
#include <sys/file.h>
#include <unistd.h>

namespace host::posix {
namespace {

constexpr int kFirstFree = STDERR_FILENO + 1;

/// Gives the file a descriptor that is nobody's standard stream. -1 with the reason in `errno`, and without the file's name
/// where this open has made it.
int MoveUp(int low, int directory, const char* name, bool made) {
  const int moved = fcntl(low, F_DUPFD_CLOEXEC, kFirstFree);
  // EINVAL: the limit lies below.
  const int error = errno == EINVAL ? EMFILE : errno;
  struct stat status;
  if (moved < 0 && made && fstat(low, &status) == 0) TakeAwayName(directory, name, status);
  close(low);
  errno = error;
  return moved;
}

/// The descriptors that this process opened here and has not closed, a bit for each. A forked child has opened none of those that
/// it shares with its parent. One beyond the table counts as opened here.
std::array<std::atomic<std::uint64_t>, 1024> opened;

std::atomic<std::uint64_t>* WordOf(int descriptor) {
  const auto word = static_cast<std::size_t>(descriptor) / 64;
  return word < opened.size() ? &opened[word] : nullptr;
}

std::uint64_t BitOf(int descriptor) { return std::uint64_t{1} << (descriptor % 64); }

void ForgetOpened() {
  for (auto& word : opened) word = 0;
}

void NoteOpened(int descriptor) {
  static std::once_flag once;
  std::call_once(once, [] { pthread_atfork(nullptr, nullptr, ForgetOpened); });
  if (auto* word = WordOf(descriptor)) *word |= BitOf(descriptor);
}

/// Whether the descriptor, which is about to be closed, was opened here.
bool WasOpened(int descriptor) {
  auto* word = WordOf(descriptor);
  return word == nullptr || (word->fetch_and(~BitOf(descriptor)) & BitOf(descriptor)) != 0;
}

}  // namespace

int OpenOnce(int directory, const char* name, int flags, mode_t mode) {
  int descriptor;
  do {
    descriptor = openat(directory, name, flags | O_CLOEXEC | O_NOCTTY, mode);
  } while (descriptor < 0 && errno == EINTR);
  const bool low = descriptor >= 0 && descriptor < kFirstFree;
  if (low) descriptor = MoveUp(descriptor, directory, name, (flags & O_EXCL) != 0);
  if (descriptor >= 0) NoteOpened(descriptor);
  return descriptor;
}

int CloseAndUnlock(int descriptor) {
  if (descriptor >= 0 && WasOpened(descriptor)) flock(descriptor, LOCK_UN);
  return close(descriptor);
}

bool LockForSharing(int descriptor, const struct stat& status, std::uint32_t share) {
  if (!S_ISREG(status.st_mode)) return true;
  const int operation = ((share & FILE_SHARE_READ) != 0 ? LOCK_SH : LOCK_EX) | LOCK_NB;
  int result;
  do {
    result = flock(descriptor, operation);
  } while (result != 0 && errno == EINTR);
  return result == 0 || errno != EWOULDBLOCK;
}

bool LeadsTo(const char* name, const struct stat& file) {
  struct stat found;
  return stat(name, &found) == 0 && IsSameFile(found, file);
}

bool IsNameOf(int directory, const char* name, const struct stat& file) {
  struct stat found;
  return fstatat(directory, name, &found, AT_SYMLINK_NOFOLLOW) == 0 && IsSameFile(found, file);
}

bool TakeAwayName(int directory, const char* name, const struct stat& file) {
  return !IsNameOf(directory, name, file) || unlinkat(directory, name, 0) == 0 || errno == ENOENT;
}

bool WriteThrough(int descriptor) {
  int result;
  do {
    result = fsync(descriptor);
  } while (result != 0 && errno == EINTR);
  // A pipe, a device or a directory that has nothing to write through answers EINVAL.
  return result == 0 || errno == EINVAL;
}

const char* FollowLinks(const char* name, char (&end)[PATH_MAX]) {
  constexpr int kLinks = 40;
  const std::size_t size = std::strlen(name) + 1;
  errno = ENAMETOOLONG;
  if (size > sizeof end) return nullptr;
  std::memcpy(end, name, size);
  for (int i = 0; i < kLinks; ++i) {
    char link[PATH_MAX];
    const ssize_t length = readlink(end, link, sizeof link);
    if (length < 0) return errno == EINVAL || errno == ENOENT ? end : nullptr;
    char directory[PATH_MAX];
    DirectoryOf(end, directory);
    const std::size_t start = link[0] == '/' ? 0 : std::strlen(directory) + 1;
    errno = ENAMETOOLONG;
    if (start + static_cast<std::size_t>(length) >= sizeof end) return nullptr;
    if (start > 0) {
      std::memcpy(end, directory, start - 1);
      end[start - 1] = '/';
    }
    std::memcpy(end + start, link, static_cast<std::size_t>(length));
    end[start + static_cast<std::size_t>(length)] = '\0';
  }
  errno = ELOOP;
  return nullptr;
}

}  // namespace host::posix
