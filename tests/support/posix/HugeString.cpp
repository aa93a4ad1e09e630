#include "support/HugeString.h"

#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

support::HugeString::HugeString() {
  const int file = memfd_create("huge", 0);
  const std::string piece(kPiece, 'x');
  const bool written = write(file, piece.data(), kPiece) == ssize_t{kPiece};
  void* room = mmap(nullptr, kSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (!written || room == MAP_FAILED) std::abort();
  bytes_ = static_cast<char*>(room);
  for (std::size_t at = 0; at < kRun; at += kPiece) {
    mmap(bytes_ + at, kPiece, PROT_READ, MAP_SHARED | MAP_FIXED, file, 0);
  }
  close(file);
}

support::HugeString::~HugeString() { munmap(bytes_, kSize); }
