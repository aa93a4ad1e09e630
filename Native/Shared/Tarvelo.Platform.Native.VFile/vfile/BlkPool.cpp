#include "vfile/BlkPool.h"

#include <algorithm>
#include <cstddef>
#include <new>

namespace {

constexpr std::int32_t kLeastSlab = 32;
constexpr std::int32_t kLargestSlab = 2048;

}  // namespace

/// Descriptors that came from the heap together. They go back to it with the pool.
struct BlkPool::Slab {
  Slab* next;
  std::int32_t size;
  BlkDesc descs[1];  // `size` of them
};

BlkPool::~BlkPool() {
  while (slabs != nullptr) {
    Slab* slab = slabs;
    slabs = slab->next;
    ::operator delete(slab);
  }
}

BlkDesc* BlkPool::New() {
  BlkDesc*& from = free != nullptr ? free : bare;
  BlkDesc* p = from;
  if (p == nullptr) return Carve();
  if (p->addr != -1) --freeCount;
  from = p->next;
  return p;
}

/// A descriptor that was never used.
BlkDesc* BlkPool::Carve() {
  if (slabs == nullptr || carved == slabs->size) {
    // A part of what there is, so that the slabs stay few and little of the last one lies idle.
    const std::int32_t size = std::clamp(total / 8, kLeastSlab, kLargestSlab);
    void* memory =
        ::operator new(offsetof(Slab, descs) + static_cast<std::size_t>(size) * sizeof(BlkDesc), std::nothrow);
    if (memory == nullptr) return nullptr;
    auto* slab = static_cast<Slab*>(memory);
    slab->next = slabs;
    slab->size = size;
    slabs = slab;
    carved = 0;
    total += size;
  }
  BlkDesc* p = slabs->descs + carved++;
  p->addr = -1;
  return p;
}

void BlkPool::Dispose(BlkDesc* p) { DisposeChain(p, p, 1); }

void BlkPool::DisposeChain(BlkDesc* head, BlkDesc* tail, std::int32_t count) {
  BlkDesc*& to = head->addr != -1 ? free : bare;
  tail->next = to;
  to = head;
  if (head->addr != -1) freeCount += count;
}

std::int32_t BlkPool::TakePage() {
  std::int32_t addr = -1;
  if (free == nullptr) {
    vm->AllocPage(addr);
  } else {
    BlkDesc* p = New();
    addr = p->addr;
    p->addr = -1;
    Dispose(p);
  }
  return addr;
}
