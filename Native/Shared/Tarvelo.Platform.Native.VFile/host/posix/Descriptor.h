/// @file
/// Descriptors, what an open file of the interface is made of (its lock, its read-only state), and whether a name leads to it. A name
/// may come with the descriptor of the directory from which it starts.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

#include "host/posix/PosixNames.h"

namespace host::posix {

/// `open`, repeated where a signal interrupted it. Never gives one of the descriptors 0 to 2, to which others write unasked;
/// descriptors do not survive into another program.
int OpenOnce(int directory, const char* name, int flags, mode_t mode);
inline int OpenOnce(const char* name, int flags, mode_t mode) { return OpenOnce(AT_FDCWD, name, flags, mode); }

/// `close`, which first lifts the lock, since a forked child may hold a copy of the descriptor and keep it. The lock of a
/// descriptor that this process has not opened, but was handed or shares with its parent, is another's.
int CloseAndUnlock(int descriptor);

/// An opened descriptor that is closed again unless it is released.
class Descriptor {
 public:
  explicit Descriptor(int value) : value_(value) {}
  ~Descriptor() {
    if (value_ >= 0) CloseAndUnlock(value_);
  }
  Descriptor(Descriptor&& other) noexcept : value_(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }

  bool IsOpen() const { return value_ >= 0; }
  int Get() const { return value_; }
  int Release() {
    const int value = value_;
    value_ = -1;
    return value;
  }

 private:
  int value_;
};

/// Takes the lock that the sharing asks for, for as long as the descriptor is open. What is no regular file, and a file system
/// that has no locks, grants.
bool LockForSharing(int descriptor, const struct stat& status, std::uint32_t share);

/// Whether it is a file that none may write.
inline bool IsReadOnlyFile(const struct stat& status) {
  return S_ISREG(status.st_mode) && (status.st_mode & 0222) == 0;
}

inline bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// How often an operation starts again because others changed what a name leads to. Each time somebody else got on, so that
/// this many in a row are no accident any more; then it is refused with ERROR_SHARING_VIOLATION.
constexpr int kRounds = 100;

/// Whether the name, or what it links to, is the file.
bool LeadsTo(const char* name, const struct stat& file);

/// Whether the name itself is the file.
bool IsNameOf(int directory, const char* name, const struct stat& file);
inline bool IsNameOf(const char* name, const struct stat& file) { return IsNameOf(AT_FDCWD, name, file); }

/// Takes away a name that this process has just made for the file, unless it is the name of another by now. Gives whether the
/// file has it no longer; otherwise `errno` tells why.
bool TakeAwayName(int directory, const char* name, const struct stat& file);
inline bool TakeAwayName(const char* name, const struct stat& file) { return TakeAwayName(AT_FDCWD, name, file); }

/// `fsync`, repeated where a signal interrupted it; what has nothing to write through is a success. False with the reason in `errno`.
bool WriteThrough(int descriptor);

/// The name at the end of the links that begin at `name`, whether or not it exists, into `end`. Null, with the reason in
/// `errno`, where they have no end or it does not fit.
const char* FollowLinks(const char* name, char (&end)[PATH_MAX]);

/// The error of an open or a copy onto a name that ends in a separator, `existing` where that is a directory; 0 for any other
/// name.
std::uint32_t ErrorOfEndingSeparator(const NativeName& name, std::uint32_t existing);

}  // namespace host::posix
