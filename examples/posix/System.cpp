#include "System.h"

#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <unistd.h>

#include "Texts.h"

namespace fs = std::filesystem;

void EndAtOnce(int status) { std::_Exit(status); }

fs::path PathOf(const TString& name) { return NativeNameOf(name); }

TString NameOfPath(const fs::path& path) { return NameOf(path.native()); }

bool IsLink(const TString& name) {
  std::error_code error;
  return fs::is_symlink(PathOf(name), error);
}

bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

std::uint32_t ProcessId() { return static_cast<std::uint32_t>(getpid()); }

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
  Arguments arguments;
  for (int i = 1; i < argc; ++i) arguments.push_back(NameOf(argv[i]));
  return Run(arguments);
}
