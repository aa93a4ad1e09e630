// The library as part of a program or of another DLL: three of the loader's moments come by a callback for thread-local storage, which
// the loader calls before any object of the module is made. The fourth, the end, comes from the C runtime, by a handler that is
// registered before any other of the module's and so runs behind them all.

#include <atomic>
#include <cstdlib>

#include "host/win32/Windows.h"

namespace host {
namespace {

constinit std::atomic<bool> attached = false;
/// Threads that started behind the attach and have not ended.
constinit std::atomic<int> otherThreads = 0;

// An exit of a program runs here while its other threads still work. So where there are any, what they use stays, and the thread
// that runs the exit gives back its own alone.
void Detach() {
  if (attached.exchange(false)) ModuleEntry(otherThreads > 0 ? DLL_THREAD_DETACH : DLL_PROCESS_DETACH);
}

void NTAPI OnNotification(void* /*module*/, DWORD reason, void* /*reserved*/) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      attached = ModuleEntry(reason) != 0;
      break;
    case DLL_THREAD_ATTACH:
      ++otherThreads;
      if (attached) ModuleEntry(reason);
      break;
    case DLL_THREAD_DETACH:
      if (attached) ModuleEntry(reason);
      --otherThreads;
      break;
    default:
      Detach();
      break;
  }
}

// Behind the C runtime's own start, before every object of the program.
__attribute__((constructor(101))) void OnStart() { std::atexit(Detach); }

// Between the markers of the linker, before the callbacks of the C runtime.
__attribute__((section(".CRT$XLB"), used)) const PIMAGE_TLS_CALLBACK callback = OnNotification;

}  // namespace

void NotifyThreadEnd() {}

}  // namespace host
