#include "support/posix/Tracing.h"

#include <algorithm>
#include <csignal>
#include <iterator>
#include <sys/ptrace.h>
#include <sys/user.h>
#include <sys/wait.h>

namespace {

#if defined(__x86_64__) && defined(__LP64__)
/// Changes the registers of the process, which stands at the begin or at the end of a call.
template <typename Change>
void ChangeRegisters(pid_t child, Change change) {
  user_regs_struct registers;
  EXPECT_EQ(ptrace(PTRACE_GETREGS, child, nullptr, &registers), 0);
  change(registers);
  EXPECT_EQ(ptrace(PTRACE_SETREGS, child, nullptr, &registers), 0);
}

void LeaveOut(pid_t child) {
  ChangeRegisters(child, [](user_regs_struct& registers) { registers.orig_rax = ~0ull; });
}
void FailWith(pid_t child, int error) {
  ChangeRegisters(child, [&](user_regs_struct& registers) { registers.rax = 0ull - static_cast<unsigned>(error); });
}
#else
void LeaveOut(pid_t) { ADD_FAILURE() << "calls cannot be answered here"; }
void FailWith(pid_t, int) {}
#endif

}  // namespace

void support::BeginTracing() {
  ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
  raise(SIGSTOP);
}

support::End support::Follow(pid_t child, const Answering& answer) {
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
      SystemCall call = {++number, static_cast<long>(info.entry.nr), {}};
      std::copy(std::begin(info.entry.args), std::end(info.entry.args), call.arguments);
      error = answer(call);
      if (error == kKillIt) {
        kill(child, SIGKILL);
        EXPECT_TRUE(waitpid(child, &status, 0) == child && WIFSIGNALED(status));
        return {true, 0};
      }
      if (error != kMakeIt) LeaveOut(child);
    } else if (error != kMakeIt) {
      FailWith(child, error);
      error = kMakeIt;
    }
  }
}
