// The C library's own calls, as far as the library under test makes them.

#include "support/Disk.h"

#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using support::FailingDisk;

bool Allows(int file, FailingDisk::Kind kind, bool positioned) {
  if (FailingDisk::Allows(host::HandleFromDescriptor(file), kind, positioned)) return true;
  errno = kind == FailingDisk::kReads ? EIO : ENOSPC;
  return false;
}

long PlaceHigh(off_t place) { return static_cast<long>(static_cast<unsigned long long>(place) >> 32); }

}  // namespace

extern "C" ssize_t pread(int file, void* buffer, size_t count, off_t place) {
  if (!Allows(file, FailingDisk::kReads, true)) return -1;
  return syscall(SYS_pread64, file, buffer, count, static_cast<long>(place), PlaceHigh(place));
}

extern "C" ssize_t pwrite(int file, const void* buffer, size_t count, off_t place) {
  if (!Allows(file, FailingDisk::kWrites, true)) return -1;
  return syscall(SYS_pwrite64, file, buffer, count, static_cast<long>(place), PlaceHigh(place));
}

extern "C" ssize_t read(int file, void* buffer, size_t count) {
  return Allows(file, FailingDisk::kReads, false) ? syscall(SYS_read, file, buffer, count) : -1;
}

extern "C" ssize_t write(int file, const void* buffer, size_t count) {
  return Allows(file, FailingDisk::kWrites, false) ? syscall(SYS_write, file, buffer, count) : -1;
}
