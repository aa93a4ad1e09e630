/// @file
/// The pointers through which the program calls the system's transfers, for tests that answer in its place.
#pragma once

#include "host/win32/Windows.h"

extern "C" decltype(&::ReadFile) __imp_ReadFile;
extern "C" decltype(&::WriteFile) __imp_WriteFile;

namespace support {

/// Leads the program's calls through the import to `function`, and gives where they led before.
template <typename Function>
Function ReplaceImport(Function& import, Function function) {
  const Function before = import;
  DWORD protection = 0;
  VirtualProtect(&import, sizeof import, PAGE_READWRITE, &protection);
  import = function;
  VirtualProtect(&import, sizeof import, protection, &protection);
  return before;
}

}  // namespace support
