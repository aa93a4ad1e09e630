/// @file
/// The entry point of the library and the life of its per-thread values.
///
/// An application needs none of this in ordinary use: a thread gets its values with its first `VFile` and gives them back
/// when it ends. The calls are for threads that want to fix both moments themselves.
///
/// Thread: each acts on the calling thread. A thread must not end, nor be uninitialized, while it has a `VFile`: that
/// halts with `HaltA` under "VFile".
///
/// Process: the library attaches itself when it is loaded, before any static object of the application, and detaches at
/// unload or exit, after all of them, on the thread that runs the exit. Other threads may be at work with files then: what
/// they use stays until the process is gone. How a host tells of these moments, what comes first at a thread's end, and what holds in
/// a forked child is in docs/host.md.
#pragma once

#include "host/Entry.h"
#include "host/Export.h"

/// Gives the calling thread its table of values, with the defaults, unless it has one. False if the heap is exhausted.
VFILE_API bool VFile_InitializeThread();
/// Whether the calling thread has a table.
VFILE_API bool VFile_IsThreadInitialized();
/// Frees the calling thread's table, if any. Always true.
VFILE_API bool VFile_UninitializeThread();

/// The entry point that the loader calls: `reason` is 0 process detach, 1 process attach, 2 thread attach, 3 thread
/// detach. Gives 1 for success, 0 for failure; 1 for any other reason. Not for applications.
extern "C" VFILE_ENTRY_API host::EntryResult VFILE_ENTRY DllMain(host::Module module, host::EntryReason reason,
                                                                 void* reserved);
