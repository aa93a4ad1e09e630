#include "support/Library.h"

#include <windows.h>

support::Library::Library() : handle_(LoadLibraryA(VFILE_LIBRARY)) {}

support::Library::~Library() {
  if (handle_ != nullptr) FreeLibrary(static_cast<HMODULE>(handle_));
}

bool support::Library::IsLoaded() { return GetModuleHandleA(VFILE_LIBRARY) != nullptr; }

void* support::Library::Find(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}
