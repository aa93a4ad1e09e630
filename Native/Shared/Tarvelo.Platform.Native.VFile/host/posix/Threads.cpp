#include <array>
#include <atomic>
#include <mutex>
#include <new>
#include <pthread.h>
#include <unistd.h>

#include "host/Host.h"

namespace host {
namespace {

// ---- Thread-local pointers ----

constexpr std::uint32_t kIndexCount = 64;

/// Odd while the index is handed out. Raised by each TlsAlloc and TlsFree, so that a value stored under an earlier life
/// of the index is not seen in a later one.
std::array<std::atomic<std::uint32_t>, kIndexCount> generations;

struct TlsEntry {
  std::uint32_t generation;
  void* value;
};

/// Plain storage and no object, so that it stands until the thread is gone for good. The system's own keys would be
/// cleared in the order of their numbers while the steps at a thread's end still need them.
thread_local TlsEntry tlsEntries[kIndexCount];

bool IsHandedOut(std::uint32_t generation) { return (generation & 1) != 0; }

// ---- Thread id ----

/// At a fixed place in the thread's own memory, so that a look at it is no call.
[[gnu::tls_model("initial-exec")]] thread_local std::uint32_t threadId = 0;

/// A forked child has one thread, the one that forked, under a new id.
void ForgetThreadId() { threadId = 0; }

std::uint32_t ReadThreadId() {
  static std::once_flag once;
  std::call_once(once, [] { pthread_atfork(nullptr, nullptr, ForgetThreadId); });
  threadId = static_cast<std::uint32_t>(gettid());
  return threadId;
}

std::recursive_mutex& MutexOf(CRITICAL_SECTION* section) {
  return *std::launder(reinterpret_cast<std::recursive_mutex*>(section->storage));
}

}  // namespace

std::uint32_t TlsAlloc() {
  for (std::uint32_t index = 0; index < kIndexCount; ++index) {
    std::uint32_t generation = generations[index].load();
    if (!IsHandedOut(generation) && generations[index].compare_exchange_strong(generation, generation + 1))
      return index;
  }
  SetLastError(ERROR_GEN_FAILURE);
  return TLS_OUT_OF_INDEXES;
}

bool TlsFree(std::uint32_t index) {
  if (index < kIndexCount) {
    std::uint32_t generation = generations[index].load();
    if (IsHandedOut(generation) && generations[index].compare_exchange_strong(generation, generation + 1)) return true;
  }
  SetLastError(ERROR_INVALID_PARAMETER);
  return false;
}

void* TlsGetValue(std::uint32_t index) {
  if (index >= kIndexCount) return nullptr;
  const TlsEntry& entry = tlsEntries[index];
  return IsHandedOut(entry.generation) && entry.generation == generations[index].load() ? entry.value : nullptr;
}

bool TlsSetValue(std::uint32_t index, void* value) {
  const std::uint32_t generation = index < kIndexCount ? generations[index].load() : 0;
  if (!IsHandedOut(generation)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
  }
  tlsEntries[index] = {generation, value};
  return true;
}

void InitializeCriticalSection(CRITICAL_SECTION* section) {
  static_assert(sizeof(std::recursive_mutex) <= sizeof section->storage);
  new (section->storage) std::recursive_mutex;
}

void EnterCriticalSection(CRITICAL_SECTION* section) { MutexOf(section).lock(); }

void LeaveCriticalSection(CRITICAL_SECTION* section) { MutexOf(section).unlock(); }

void DeleteCriticalSection(CRITICAL_SECTION* section) { MutexOf(section).~recursive_mutex(); }

std::uint32_t GetCurrentThreadId() {
  const std::uint32_t id = threadId;
  return id != 0 ? id : ReadThreadId();
}

}  // namespace host
