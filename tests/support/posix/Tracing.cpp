#include "support/posix/Tracing.h"

#include <algorithm>
#include <csignal>
#include <sys/ptrace.h>
#include <sys/user.h>
#include <sys/wait.h>

namespace {

/// Puts the value into a register of the process, which stands at the begin or at the end of a call.
void SetRegister([[maybe_unused]] pid_t child, [[maybe_unused]] bool atBegin, [[maybe_unused]] std::uint64_t value) {
#if defined(__x86_64__) && defined(__LP64__)
  user_regs_struct registers;
  EXPECT_EQ(ptrace(PTRACE_GETREGS, child, nullptr, &registers), 0);
  (atBegin ? registers.orig_rax : registers.rax) = value;
  EXPECT_EQ(ptrace(PTRACE_SETREGS, child, nullptr, &registers), 0);
#endif
}

}  // namespace

void support::BeginTracing() {
  ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
  raise(SIGSTOP);
}

support::End support::Trace(const std::function<int()>& call, const Answering& answer) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) _exit(call());
  int status = 0;
  EXPECT_TRUE(waitpid(child, &status, 0) == child && WIFSTOPPED(status)) << "status " << status;
  EXPECT_EQ(ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL), 0);
  int number = 0;
  int error = kMakeIt;
  int signal = 0;
  for (;;) {
    EXPECT_EQ(ptrace(PTRACE_SYSCALL, child, nullptr, signal), 0);
    if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status))
      return {false, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
    const bool atCall = WSTOPSIG(status) == (SIGTRAP | 0x80);
    signal = atCall ? 0 : WSTOPSIG(status);
    if (!atCall) continue;
    __ptrace_syscall_info info;
    EXPECT_GT(ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info), 0);
    if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
      SystemCall made = {++number, static_cast<long>(info.entry.nr), {}};
      std::ranges::copy(info.entry.args, made.arguments);
      error = answer(made);
      if (error == kKillIt) {
        kill(child, SIGKILL);
        EXPECT_TRUE(waitpid(child, &status, 0) == child && WIFSIGNALED(status));
        return {true, 0};
      }
      if (error != kMakeIt) SetRegister(child, true, ~0ull);
    } else if (error != kMakeIt) {
      SetRegister(child, false, 0ull - static_cast<unsigned>(error));
      error = kMakeIt;
    }
  }
}
