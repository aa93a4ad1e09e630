// A DLL that uses the library has an entry point of its own, beside the library's header.

#include <windows.h>

#include "threads/Threads.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE /*module*/, DWORD reason, LPVOID /*reserved*/) {
  return reason != DLL_THREAD_ATTACH || VFile_IsThreadInitialized() ? TRUE : FALSE;
}
