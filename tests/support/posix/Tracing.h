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
#if defined(__x86_64__) && defined(__LP64__)
constexpr bool kAnswersCalls = true;
#else
constexpr bool kAnswersCalls = false;
#endif

/// From here on the calling process, which is a child of `Trace`, is asked about.
void BeginTracing();

/// Runs `call`, which calls `BeginTracing`, in a forked child, which ends with what it gives.
End Trace(const std::function<int()>& call, const Answering& answer);

}  // namespace support
