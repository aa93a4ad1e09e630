#include "vfile/BlkPool.h"

#include <new>

BlkPool::~BlkPool() {
  while (free != nullptr) {
    BlkDesc* p = free;
    free = p->next;
    delete p;
  }
}

BlkDesc* BlkPool::New() {
  BlkDesc* p = free;
  if (p != nullptr) {
    free = p->next;
    --freeCount;
    return p;
  }
  p = new (std::nothrow) BlkDesc;
  if (p != nullptr) p->addr = -1;
  return p;
}

void BlkPool::Dispose(BlkDesc* p) { DisposeChain(p, p, 1); }

void BlkPool::DisposeChain(BlkDesc* head, BlkDesc* tail, std::int32_t count) {
  if (head->addr == -1) {
    delete head;
    return;
  }
  tail->next = free;
  free = head;
  freeCount += count;
}

std::int32_t BlkPool::TakePage() {
  std::int32_t addr = -1;
  if (free == nullptr) {
    vm->AllocPage(addr);
  } else {
    BlkDesc* p = New();
    addr = p->addr;
    delete p;
  }
  return addr;
}
