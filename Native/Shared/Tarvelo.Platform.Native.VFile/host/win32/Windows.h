/// @file
/// The system's header, in the form in which the files of this folder use it. It comes behind `Host.h`, whose constants it would
/// otherwise replace by macros in the middle of their definitions.
#pragma once

#include "host/Host.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace host::win32 {

/// A name as the system's calls take it: a null one counts as empty.
inline const wchar_t* NameOf(const TChar* name) { return name != nullptr ? name : L""; }

}  // namespace host::win32
