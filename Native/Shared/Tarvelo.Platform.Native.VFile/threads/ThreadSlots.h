/// @file
/// Numbered slots of pointer-wide values, of which every thread has its own, behind one thread-local index of the host.
///
/// The module runs from `TlsModuleStart` to `TlsModuleStop`. A thread has values from `TlsTableCreate` to
/// `TlsTableDelete`; the table is touched by its thread alone, without a lock. A slot number is handed out to a purpose,
/// for all threads at once, under a lock.
///
/// Start, stop and everything that hands slots out or back belongs to the moments of load and unload, when the host runs
/// nothing else in this library.
#pragma once

#include <cstdint>

namespace threads {

/// An integer or a pointer; the module does not know which.
using SlotValue = std::uintptr_t;

inline constexpr std::int32_t kSlotCount = 64;
inline constexpr std::int32_t kNoSlot = -1;

/// False if the module is running or the host has no index left.
bool TlsModuleStart();
/// Whether the module was running and its index could be given back. Tables of other threads are not visited.
bool TlsModuleStop();

/// Hands out a slot number, or `kNoSlot` if all are in use or the module is not running. Numbers go upward; only when
/// the last has been handed out are gaps used again, the lowest first.
std::int32_t TlsSlotAlloc();
/// Takes a slot number back. False if the module is not running or there is no such slot.
bool TlsSlotFree(std::int32_t slot);

/// Gives the calling thread a fresh table, all values 0, and has the thread's end notified. False if the module is not
/// running or the heap is exhausted.
bool TlsTableCreate();
/// Frees the calling thread's table. False if the module is not running.
bool TlsTableDelete();
/// Whether the module runs and the calling thread has a table.
bool TlsTableExists();
/// Whether the calling thread has, or once had, a table.
bool TlsTableWasCreated();

/// The calling thread's value; 0 where there is none: no module, no such slot, no table.
SlotValue TlsSlotGet(std::int32_t slot);
/// Sets it. False, and nothing stored, in the same three cases.
bool TlsSlotSet(std::int32_t slot, SlotValue value);

}  // namespace threads
