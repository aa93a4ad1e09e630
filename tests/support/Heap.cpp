#include "support/Heap.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int allocationsLeft = -1;  // -1: the heap works
thread_local bool hasFailed = false;
thread_local bool throwingFail = false;

void* Allocate(std::size_t size) noexcept {
  if (allocationsLeft == 0) {
    hasFailed = true;
    return nullptr;
  }
  if (allocationsLeft > 0) --allocationsLeft;
  return std::malloc(size > 0 ? size : 1);
}

void* AllocateOrThrow(std::size_t size) {
  void* p = throwingFail ? Allocate(size) : std::malloc(size > 0 ? size : 1);
  if (p == nullptr) throw std::bad_alloc();
  return p;
}

}  // namespace

void* operator new(std::size_t size) { return AllocateOrThrow(size); }
void* operator new[](std::size_t size) { return AllocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }

support::FailingHeap::FailingHeap(int failing, Kind kind) {
  hasFailed = false;
  throwingFail = kind == kAll;
  allocationsLeft = failing - 1;
}

support::FailingHeap::~FailingHeap() {
  allocationsLeft = -1;
  throwingFail = false;
}

bool support::FailingHeap::HasFailed() { return hasFailed; }
