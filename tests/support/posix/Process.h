/// @file
/// Child processes for tests.
#pragma once

#include <atomic>
#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace support {

/// Runs `call` in a forked child, which may use expectations of its own and ends by `_exit`.
template <typename Call>
void InChild(Call call) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    [&]() noexcept { call(); }();
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = -1;
  EXPECT_TRUE(waitpid(child, &status, 0) == child && status == 0) << "in the child";
}

/// A forked child that did `call` with success and stands still until it is killed at the end.
class StoppedChild {
 public:
  template <typename Call>
  explicit StoppedChild(Call call) : child_(fork()) {
    if (child_ == 0) _exit(call() ? raise(SIGSTOP) : 1);
    int status = 0;
    EXPECT_TRUE(waitpid(child_, &status, WUNTRACED) == child_ && WIFSTOPPED(status));
  }
  ~StoppedChild() { EXPECT_TRUE(kill(child_, SIGKILL) == 0 && waitpid(child_, nullptr, 0) == child_); }
  StoppedChild(const StoppedChild&) = delete;
  StoppedChild& operator=(const StoppedChild&) = delete;

 private:
  const pid_t child_;
};

/// A thread that does `step` again and again, until the end of its scope.
class Meanwhile {
 public:
  template <typename Step>
  explicit Meanwhile(Step step) {
    thread_ = std::thread([this, step] {
      while (!enough_) step();
    });
  }
  ~Meanwhile() {
    enough_ = true;
    thread_.join();
  }

 private:
  std::atomic<bool> enough_ = false;
  std::thread thread_;
};

}  // namespace support
