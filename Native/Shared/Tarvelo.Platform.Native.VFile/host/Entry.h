/// @file
/// The form of the function that the loader of the host calls, without the host's own header.
#pragma once

#include <cstdint>

#include "host/Export.h"

#ifdef _WIN32
struct HINSTANCE__;

namespace host {
using Module = HINSTANCE__*;        ///< What the loader has loaded: HINSTANCE.
using EntryReason = unsigned long;  ///< DWORD.
using EntryResult = int;            ///< BOOL.
}  // namespace host

/// The calling convention of the entry point.
#define VFILE_ENTRY __stdcall
/// Nothing: no import library has it, and a DLL that uses this one defines its own under the same name.
#define VFILE_ENTRY_API
#else
namespace host {
using Module = void*;               ///< What the loader has loaded.
using EntryReason = std::uint32_t;  ///< Which of its moments this is.
using EntryResult = std::int32_t;   ///< 1 for success, 0 for failure.
}  // namespace host

/// The calling convention of the entry point.
#define VFILE_ENTRY
/// Its mark in the interface.
#define VFILE_ENTRY_API VFILE_API
#endif
