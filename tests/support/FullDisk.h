/// @file
/// A disk that is full, for tests.
#pragma once

#include <csignal>
#include <sys/resource.h>

namespace support {

/// While it lives, no file of the process can grow past `bytes`; a write that would gets 112.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : old_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &unlimited_);
    const rlimit limited{bytes, unlimited_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &unlimited_);
    std::signal(SIGXFSZ, old_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  void (*const old_)(int);
  rlimit unlimited_{};
};

}  // namespace support
