/// @file
/// The five values that every thread has for its virtual files, each behind its accessors.
///
/// An accessor halts with `HaltA` under "VFile" before the process is attached. On a thread without a table a getter gives
/// 0 or null and a setter stores nothing.
#pragma once

#include <cstdint>

#include "host/Unit.h"

class BlkPool;
class VMem;

namespace vfile {

/// Gives the calling thread its table with the defaults; false if the heap is exhausted.
bool CreateThreadValues();

/// Number of the thread's `VFile` objects.
std::int32_t GetOpenFileCount();
void SetOpenFileCount(std::int32_t count);
void IncOpenFileCount();
void DecOpenFileCount();

/// The `VMem` that the thread's files share while there is one; owned by them as a group.
VMem* GetThreadVMem();
void SetThreadVMem(VMem* vm);

/// The pool that they share, likewise.
BlkPool* GetThreadBlkPool();
void SetThreadBlkPool(BlkPool* pool);

/// The temporary directory for the thread's next `VMem`, owned by the slot, or null.
const TChar* GetThreadTempDir();
/// Stores a string that the slot takes over.
void SetThreadTempDirPtr(TChar* dir);
/// Frees what the slot holds and stores a copy of `dir`, or null for null and empty. Must not be given what the getter gave.
void SetThreadTempDir(const TChar* dir);

/// The cache limit for the thread's next `VMem`, in kilobytes.
std::int16_t GetThreadMaxCacheSize();
void SetThreadMaxCacheSize(std::int16_t kilobytes);

}  // namespace vfile
