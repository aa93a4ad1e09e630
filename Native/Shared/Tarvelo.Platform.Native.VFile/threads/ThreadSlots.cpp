#include "threads/ThreadSlots.h"

#include <algorithm>
#include <new>

#include "host/Host.h"

namespace threads {
namespace {

/// The values of one thread, on the heap under the thread's pointer at `tlsIndex`.
struct ThreadSlotTable {
  SlotValue entries[kSlotCount];
};

// Written at load and unload only, and read without the lock.
constinit std::uint32_t tlsIndex = host::TLS_OUT_OF_INDEXES;

// Guarded by slotLock, which exists while the module runs.
constinit bool slotInUse[kSlotCount] = {};
constinit std::int32_t slotHighWater = 0;  // numbers from here on were never handed out since the last reset
host::CRITICAL_SECTION slotLock;

/// Stands in a thread's pointer in place of a table that it had. No `thread_local` object tells of that: where the compiler keeps
/// these by keys of a thread library, what is written at a thread's very start is lost.
constinit ThreadSlotTable tableIsGone = {};

class Lock {
 public:
  Lock() { host::EnterCriticalSection(&slotLock); }
  ~Lock() { host::LeaveCriticalSection(&slotLock); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
};

bool IsRunning() { return tlsIndex != host::TLS_OUT_OF_INDEXES; }

bool IsSlot(std::int32_t slot) { return static_cast<std::uint32_t>(slot) < static_cast<std::uint32_t>(kSlotCount); }

/// What stands in the calling thread's pointer.
ThreadSlotTable* TableOrMark() {
  return IsRunning() ? static_cast<ThreadSlotTable*>(host::TlsGetValue(tlsIndex)) : nullptr;
}

ThreadSlotTable* Table() {
  ThreadSlotTable* table = TableOrMark();
  return table != &tableIsGone ? table : nullptr;
}

}  // namespace

bool TlsModuleStart() {
  if (IsRunning()) return false;
  host::InitializeCriticalSection(&slotLock);
  tlsIndex = host::TlsAlloc();
  if (!IsRunning()) return false;
  std::fill(std::begin(slotInUse), std::end(slotInUse), false);
  return true;
}

bool TlsModuleStop() {
  if (!IsRunning()) return false;
  bool freed = false;
  {
    const Lock lock;
    freed = host::TlsFree(tlsIndex);
    tlsIndex = host::TLS_OUT_OF_INDEXES;
  }
  host::DeleteCriticalSection(&slotLock);
  return freed;
}

std::int32_t TlsSlotAlloc() {
  if (!IsRunning()) return kNoSlot;
  const Lock lock;
  std::int32_t slot = slotHighWater;
  if (slot < kSlotCount) {
    ++slotHighWater;
  } else {
    slot = static_cast<std::int32_t>(std::find(std::begin(slotInUse), std::end(slotInUse), false) - slotInUse);
    if (slot == kSlotCount) return kNoSlot;
  }
  slotInUse[slot] = true;
  return slot;
}

bool TlsSlotFree(std::int32_t slot) {
  if (!IsRunning() || !IsSlot(slot)) return false;
  const Lock lock;
  slotInUse[slot] = false;
  if (slot == slotHighWater - 1) --slotHighWater;
  if (std::find(slotInUse, slotInUse + slotHighWater, true) == slotInUse + slotHighWater) slotHighWater = 0;
  return true;
}

bool TlsTableCreate() {
  if (!IsRunning()) return false;
  auto* table = new (std::nothrow) ThreadSlotTable{};
  if (table == nullptr) return false;
  host::TlsSetValue(tlsIndex, table);
  host::NotifyThreadEnd();
  return true;
}

bool TlsTableDelete() {
  if (!IsRunning()) return false;
  ThreadSlotTable* table = TableOrMark();
  if (table == nullptr || table == &tableIsGone) return true;
  delete table;
  return host::TlsSetValue(tlsIndex, &tableIsGone);
}

bool TlsTableExists() { return Table() != nullptr; }

bool TlsTableWasCreated() { return TableOrMark() != nullptr; }

SlotValue TlsSlotGet(std::int32_t slot) {
  const ThreadSlotTable* table = Table();
  return table != nullptr && IsSlot(slot) ? table->entries[slot] : 0;
}

bool TlsSlotSet(std::int32_t slot, SlotValue value) {
  ThreadSlotTable* table = Table();
  if (table == nullptr || !IsSlot(slot)) return false;
  table->entries[slot] = value;
  return true;
}

}  // namespace threads
