/// @file
/// A process whose system calls another answers or ends it at, for tests.
#pragma once

#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <sys/types.h>
#include <unistd.h>

namespace support {

struct SystemCall {
  int number;  ///< Counted from 1, since `BeginTracing`.
  long call;
  std::uint64_t arguments[6];
};

/// What becomes of a call: it is made, the process is killed before it, or it fails with that error and is not made.
constexpr int kMakeIt = 0;
constexpr int kKillIt = -1;
using Answering = std::function<int(const SystemCall&)>;

struct End {
  bool killed;
  int status;  ///< What the process ended with, if it was not killed.
};

/// Whether calls can be answered here.
constexpr bool kAnswersCalls =
#if defined(__x86_64__) && defined(__LP64__)
    true;
#else
    false;
#endif

/// From here on the calling process, which is a child of `Trace`, is asked about.
void BeginTracing();
End Follow(pid_t child, const Answering& answer);

/// Runs `call`, which calls `BeginTracing`, in a forked child, which ends with what it gives.
template <typename Call>
End Trace(Call call, const Answering& answer) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) _exit(call());
  return Follow(child, answer);
}

}  // namespace support
