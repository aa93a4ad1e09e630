#include "support/Library.h"

#include <dlfcn.h>

support::Library::Library() : handle_(dlopen(VFILE_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {}

support::Library::~Library() {
  if (handle_ != nullptr) dlclose(handle_);
}

bool support::Library::IsLoaded() { return dlopen(VFILE_LIBRARY, RTLD_NOW | RTLD_NOLOAD) != nullptr; }

void* support::Library::Find(const char* name) const { return dlsym(handle_, name); }
