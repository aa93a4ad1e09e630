#include "vfile/ThreadValues.h"

#include "host/Line.h"
#include "hsys/CopyUnits.h"
#include "threads/ThreadSlots.h"
#include "vfile/Require.h"
#include "vfile/VFile.h"

namespace {

constexpr std::int16_t kDefaultMaxCacheSize = 70;

/// The values, in the order in which their slots are allocated.
enum Value { openFileCount, threadVMem, threadBlkPool, threadTempDir, threadMaxCacheSize, kValueCount };

// Written at process attach and detach only.
constinit std::int32_t slots[kValueCount] = {threads::kNoSlot, threads::kNoSlot, threads::kNoSlot, threads::kNoSlot,
                                             threads::kNoSlot};

void RequireAllSlots(bool allocated, std::int32_t line = VFILE_LINE) {
  for (const std::int32_t slot : slots) vfile::Require((slot != threads::kNoSlot) == allocated, line);
}

threads::SlotValue Get(Value value) {
  vfile::Require(slots[value] != threads::kNoSlot);
  return threads::TlsSlotGet(slots[value]);
}

void Set(Value value, threads::SlotValue content) {
  vfile::Require(slots[value] != threads::kNoSlot);
  threads::TlsSlotSet(slots[value], content);
}

template <typename T>
T* GetPointer(Value value) {
  return reinterpret_cast<T*>(Get(value));
}

void SetPointer(Value value, void* pointer) { Set(value, reinterpret_cast<threads::SlotValue>(pointer)); }

/// Numbers are stored widened with their sign.
threads::SlotValue Widen(std::int32_t number) { return static_cast<threads::SlotValue>(std::intptr_t{number}); }

}  // namespace

// ---- Life ----

bool VFile::TLS_InitializeProcess() {
  RequireAllSlots(false);
  for (std::int32_t& slot : slots) slot = threads::TlsSlotAlloc();
  RequireAllSlots(true);
  return true;
}

bool VFile::TLS_UninitializeProcess() {
  RequireAllSlots(true);
  for (std::int32_t& slot : slots) threads::TlsSlotFree(slot);
  for (std::int32_t& slot : slots) slot = threads::kNoSlot;
  return true;
}

bool VFile::TLS_InitializeThread() {
  RequireAllSlots(true);
  if (!threads::TlsTableExists()) return true;
  Set(openFileCount, 0);
  SetPointer(threadVMem, nullptr);
  SetPointer(threadBlkPool, nullptr);
  SetPointer(threadTempDir, nullptr);
  Set(threadMaxCacheSize, Widen(kDefaultMaxCacheSize));
  return true;
}

bool VFile::TLS_UninitializeThread() {
  RequireAllSlots(true);
  if (!threads::TlsTableExists()) return true;
  vfile::Require(vfile::GetOpenFileCount() == 0);
  vfile::Require(vfile::GetThreadVMem() == nullptr);
  vfile::Require(vfile::GetThreadBlkPool() == nullptr);
  vfile::SetThreadTempDir(nullptr);
  return true;
}

// ---- Values ----

namespace vfile {

bool CreateThreadValues() { return threads::TlsTableCreate() && VFile::TLS_InitializeThread(); }

std::int32_t GetOpenFileCount() { return static_cast<std::int32_t>(Get(openFileCount)); }
void SetOpenFileCount(std::int32_t count) { Set(openFileCount, Widen(count)); }
void IncOpenFileCount() { SetOpenFileCount(GetOpenFileCount() + 1); }
void DecOpenFileCount() { SetOpenFileCount(GetOpenFileCount() - 1); }

VMem* GetThreadVMem() { return GetPointer<VMem>(threadVMem); }
void SetThreadVMem(VMem* vm) { SetPointer(threadVMem, vm); }

BlkPool* GetThreadBlkPool() { return GetPointer<BlkPool>(threadBlkPool); }
void SetThreadBlkPool(BlkPool* pool) { SetPointer(threadBlkPool, pool); }

const TChar* GetThreadTempDir() { return GetPointer<TChar>(threadTempDir); }
void SetThreadTempDirPtr(TChar* dir) { SetPointer(threadTempDir, dir); }

void SetThreadTempDir(const TChar* dir) {
  delete[] GetPointer<TChar>(threadTempDir);
  // Frees its copy where it cannot be stored, on a thread without a table.
  TChar* copy = dir != nullptr && *dir != 0 ? hsys::CopyUnits(dir) : nullptr;
  if (copy != nullptr && !threads::TlsTableExists()) {
    delete[] copy;
    copy = nullptr;
  }
  SetThreadTempDirPtr(copy);
}

std::int16_t GetThreadMaxCacheSize() { return static_cast<std::int16_t>(Get(threadMaxCacheSize)); }
void SetThreadMaxCacheSize(std::int16_t kilobytes) { Set(threadMaxCacheSize, Widen(kilobytes)); }

}  // namespace vfile
