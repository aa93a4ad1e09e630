/// @file
/// Descriptors, and what an open file of the interface is made of: its lock and its read-only state.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include "host/posix/PosixNames.h"

namespace host::posix {

/// An opened descriptor that is closed again unless it is released.
class Descriptor {
 public:
  explicit Descriptor(int value) : value_(value) {}
  ~Descriptor() {
    if (value_ >= 0) close(value_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

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

/// `open`, repeated where a signal interrupted it. Descriptors do not survive into another program.
int OpenOnce(const char* name, int flags, mode_t mode);

/// Takes the lock that the sharing asks for, for as long as the descriptor is open. A file system or device that has no locks
/// grants.
bool LockForSharing(int descriptor, std::uint32_t share);

/// Whether it is a file that none may write.
inline bool IsReadOnlyFile(const struct stat& status) {
  return S_ISREG(status.st_mode) && (status.st_mode & 0222) == 0;
}

/// The error of an open or a copy onto a name that ends in a separator, `existing` where that is a directory; 0 for any other
/// name.
std::uint32_t ErrorOfEndingSeparator(const NativeName& name, std::uint32_t existing);

}  // namespace host::posix
