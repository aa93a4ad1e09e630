#include "support/FullDisk.h"

#include <csignal>
#include <sys/resource.h>

namespace {

void (*oldAction)(int);
rlimit unlimited;

}  // namespace

support::FullDisk::FullDisk(std::uint32_t bytes) {
  oldAction = std::signal(SIGXFSZ, SIG_IGN);
  getrlimit(RLIMIT_FSIZE, &unlimited);
  const rlimit limited{bytes, unlimited.rlim_max};
  setrlimit(RLIMIT_FSIZE, &limited);
}

support::FullDisk::~FullDisk() {
  setrlimit(RLIMIT_FSIZE, &unlimited);
  std::signal(SIGXFSZ, oldAction);
}
