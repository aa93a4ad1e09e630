#include "support/Disk.h"

#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

int transfersLeft = -1;  // -1: the disk works
int failingKinds = 0;
bool hasFailed = false;
int failingFile = -1;  // that of the last failure

/// Counts a positioned transfer; whether the system may make it.
bool Allows(int file, support::FailingDisk::Kind kind) {
  if (transfersLeft < 0 || (failingKinds & kind) == 0) return true;
  if (transfersLeft > 0) {
    --transfersLeft;
    return true;
  }
  hasFailed = true;
  failingFile = file;
  errno = kind == support::FailingDisk::kReads ? EIO : ENOSPC;
  return false;
}

/// Whether the second try of a transfer, at the position, may be made.
bool AllowsAgain(int file, support::FailingDisk::Kind kind) {
  return transfersLeft != 0 || file != failingFile || Allows(file, kind);
}

long PlaceHigh(off_t place) { return static_cast<long>(static_cast<unsigned long long>(place) >> 32); }

}  // namespace

// The C library's own calls, as far as the library under test makes them.

extern "C" ssize_t pread(int file, void* buffer, size_t count, off_t place) {
  if (!Allows(file, support::FailingDisk::kReads)) return -1;
  return syscall(SYS_pread64, file, buffer, count, static_cast<long>(place), PlaceHigh(place));
}

extern "C" ssize_t pwrite(int file, const void* buffer, size_t count, off_t place) {
  if (!Allows(file, support::FailingDisk::kWrites)) return -1;
  return syscall(SYS_pwrite64, file, buffer, count, static_cast<long>(place), PlaceHigh(place));
}

extern "C" ssize_t read(int file, void* buffer, size_t count) {
  return AllowsAgain(file, support::FailingDisk::kReads) ? syscall(SYS_read, file, buffer, count) : -1;
}

extern "C" ssize_t write(int file, const void* buffer, size_t count) {
  return AllowsAgain(file, support::FailingDisk::kWrites) ? syscall(SYS_write, file, buffer, count) : -1;
}

support::FailingDisk::FailingDisk(int failing, Kind kind) {
  hasFailed = false;
  failingFile = -1;
  failingKinds = kind;
  transfersLeft = failing - 1;
}

support::FailingDisk::~FailingDisk() { Repair(); }

bool support::FailingDisk::HasFailed() { return hasFailed; }

void support::FailingDisk::Repair() { transfersLeft = -1; }
