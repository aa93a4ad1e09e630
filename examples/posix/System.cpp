#include "System.h"

#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <unistd.h>

namespace fs = std::filesystem;

bool IsLink(const vf::Name& name) {
  std::error_code error;
  return fs::is_symlink(name.Path(), error);
}

bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

// The swap file has no name any more, but some systems still list it among the open files.
std::optional<std::uintmax_t> SwapFileSize() {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd", error)) {
    if (fs::read_symlink(entry, error).filename().string().starts_with("~vmem")) return fs::file_size(entry, error);
  }
  return std::nullopt;
}

std::optional<std::uintmax_t> PeakMemory() {
  rusage usage;
  if (getrusage(RUSAGE_SELF, &usage) != 0) return std::nullopt;
  return static_cast<std::uintmax_t>(usage.ru_maxrss) * 1024;
}

int main(int argc, char** argv) {
  std::signal(SIGXFSZ, SIG_IGN);
  return Run(Arguments(argv + 1, argv + argc));
}
