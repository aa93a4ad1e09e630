// The library as part of a program or of another DLL. The loader tells of the load and of threads by callbacks for thread-local storage,
// before any object of the module is made. The end comes from the C runtime, by a handler that is registered before any
// other of the module's and so runs behind them all; a callback would come before the module's objects are gone, or not at all.

#include <atomic>
#include <cstdlib>

#include "host/win32/Windows.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;

// What the linker puts between the C runtime's own markers, in the order of the letters behind the dollar.
#if defined(_MSC_VER)
#pragma section(".CRT$XCB", read)
#pragma section(".CRT$XLB", read)
#pragma section(".CRT$XLY", read)
#pragma comment(linker, "/INCLUDE:_tls_used")
#define IN_SECTION(name) extern "C" __declspec(allocate(name))
#else
#define IN_SECTION(name) extern "C" __attribute__((section(name), used))
#endif

namespace host {
namespace {

constinit std::atomic<bool> attached = false;
/// Threads that started behind the attach and have not ended.
constinit std::atomic<int> otherThreads = 0;

bool IsInProgram() { return reinterpret_cast<HMODULE>(&__ImageBase) == ::GetModuleHandleW(nullptr); }

// The exit of a program runs here while its other threads still work. So where there are any, what they use stays, and the thread
// that runs the exit gives back its own alone. A DLL is unloaded with all it has, or its process has no other thread any more.
void Detach() {
  if (!attached.exchange(false)) return;
  ModuleEntry(IsInProgram() && otherThreads > 0 ? DLL_THREAD_DETACH : DLL_PROCESS_DETACH);
}

void NTAPI OnAttach(void* /*module*/, DWORD reason, void* /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) attached = ModuleEntry(reason) != 0;
  if (reason != DLL_THREAD_ATTACH) return;
  ++otherThreads;
  if (attached) ModuleEntry(reason);
}

void NTAPI OnThreadDetach(void* /*module*/, DWORD reason, void* /*reserved*/) {
  if (reason != DLL_THREAD_DETACH) return;
  if (attached) ModuleEntry(reason);
  --otherThreads;
}

void OnStart() { std::atexit(Detach); }

}  // namespace

void NotifyThreadEnd() {}

}  // namespace host

IN_SECTION(".CRT$XCB") void (*const vfileStart)() = host::OnStart;
// The C runtime's own callbacks, which make and destroy a thread's thread-local objects, stand between the two: such an object may be a
// file.
IN_SECTION(".CRT$XLB") const PIMAGE_TLS_CALLBACK vfileAttach = host::OnAttach;
IN_SECTION(".CRT$XLY") const PIMAGE_TLS_CALLBACK vfileThreadDetach = host::OnThreadDetach;
