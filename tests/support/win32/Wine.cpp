#include "support/win32/Wine.h"

#include <windows.h>

bool support::IsWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }
