#include "host/posix/Content.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <unistd.h>

#include "host/posix/PosixNames.h"

namespace host::posix {
namespace {

constexpr off_t kEverything = std::numeric_limits<off_t>::max();

/// Copies `count` bytes, or as many as there are, at the positions of both files. `ended` if there were fewer.
bool CopyRange(int source, int target, off_t count, bool& ended) {
  constexpr off_t kPart = off_t{1} << 30;
  ended = false;
  ssize_t put = 0;
  do {
    const auto part = static_cast<std::size_t>(std::min(count, kPart));
    put = copy_file_range(source, nullptr, target, nullptr, part, 0);
    if (put > 0) count -= put;
  } while (put > 0 && count > 0);
  char piece[16384];
  while (count > 0) {
    const auto part = static_cast<std::uint32_t>(std::min(count, off_t{sizeof piece}));
    std::uint32_t got = 0;
    if (!ReadFile(HandleFromDescriptor(source), piece, part, &got)) return false;
    ended = got == 0;
    if (ended) return true;
    for (std::uint32_t written = 0; written < got;) {
      std::uint32_t done = 0;
      if (!WriteFile(HandleFromDescriptor(target), piece + written, got - written, &done)) return false;
      if (done == 0) return Fail(ERROR_DISK_FULL);
      written += done;
    }
    count -= got;
  }
  return true;
}

/// Whether the file takes less room than it is long, so that it is worth asking where its holes are.
bool MayHaveHoles(const struct stat& status) {
  constexpr off_t kBlock = 512;
  return S_ISREG(status.st_mode) && status.st_size / kBlock > status.st_blocks;
}

bool Seek(int file, off_t place) { return lseek(file, place, SEEK_SET) == place; }

/// Copies what lies between the holes.
bool CopyData(int source, int target) {
  off_t end = 0;
  bool ended = false;
  while (!ended) {
    const off_t start = lseek(source, end, SEEK_DATA);
    if (start < 0 && errno == ENXIO) {
      // Nothing but a hole is left, which the length alone makes.
      return ftruncate(target, lseek(source, 0, SEEK_END)) == 0 || Fail(ErrorFromErrno(errno));
    }
    const off_t data = start < 0 ? end : start;
    end = start < 0 ? -1 : lseek(source, data, SEEK_HOLE);
    // A file system that does not tell gets all copied.
    const off_t count = end < 0 ? kEverything : end - data;
    if (!Seek(source, data) || !Seek(target, data)) return Fail(ErrorFromErrno(errno));
    if (!CopyRange(source, target, count, ended)) return false;
  }
  return true;
}

}  // namespace

bool CopyContent(int source, const struct stat& status, int target) {
  bool ended = false;
  struct stat other;
  const bool regular = fstat(target, &other) == 0 && S_ISREG(other.st_mode);
  if (regular && MayHaveHoles(status)) return CopyData(source, target);
  return CopyRange(source, target, kEverything, ended);
}

}  // namespace host::posix
