// Shows on a terminal how far a file's operations are, and lets the user interrupt them.
#pragma once

#include <chrono>
#include <cinttypes>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <optional>

#include "System.h"
#include "vf/Progress.h"

/// While it lives, standard error shows the progress of one file, and an interrupt ends its operation with `resNotDone`. Where standard
/// error is no terminal it does nothing.
class Shown {
 public:
  /// `what` the file is for, until `Next` says something else.
  template <typename File>
  Shown(File& file, const char* what) : what_(what) {
    if (!IsTerminal(stderr)) return;
    progress_.emplace(file, [this](std::int64_t done, std::int64_t total) { return Show(done, total); });
    before_ = std::signal(SIGINT, [](int) { interrupted = 1; });
  }
  ~Shown() {
    if (!progress_) return;
    std::signal(SIGINT, before_);
    Wipe();
  }
  Shown(const Shown&) = delete;
  Shown& operator=(const Shown&) = delete;

  void Next(const char* what) { what_ = what; }
  void Wipe() const {
    if (progress_) std::fprintf(stderr, "\r%*s\r", 40, "");
  }

  /// The same for work of the program's own. False if it is interrupted.
  bool Show(std::int64_t done, std::int64_t total) {
    const auto now = std::chrono::steady_clock::now();
    if (progress_ && now - shownAt_ > std::chrono::milliseconds(50)) {
      shownAt_ = now;
      if (total > 0) {
        std::fprintf(stderr, "\r%-12s %3d %%", what_, static_cast<int>(done * 100 / total));
      } else {
        std::fprintf(stderr, "\r%-12s %" PRId64 " MiB", what_, done >> 20);
      }
    }
    return interrupted == 0;
  }

 private:
  static inline volatile std::sig_atomic_t interrupted = 0;

  const char* what_;
  std::optional<vf::Progress> progress_;
  std::chrono::steady_clock::time_point shownAt_;
  void (*before_)(int) = SIG_DFL;
};
