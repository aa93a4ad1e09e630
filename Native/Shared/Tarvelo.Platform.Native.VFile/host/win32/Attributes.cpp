#include <io.h>

#include "host/win32/Windows.h"

namespace host {

std::uint32_t GetFileAttributesW(const TChar* name) { return ::GetFileAttributesW(win32::NameOf(name)); }

bool SetFileAttributesW(const TChar* name, std::uint32_t attributes) {
  return ::SetFileAttributesW(win32::NameOf(name), attributes) != FALSE;
}

int _waccess(const TChar* name, int mode) { return ::_waccess(win32::NameOf(name), mode); }

}  // namespace host
