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
    return p;
  }
  p = new (std::nothrow) BlkDesc;
  if (p != nullptr) p->addr = -1;
  return p;
}

void BlkPool::Dispose(BlkDesc* p) { DisposeChain(p, p); }

void BlkPool::DisposeChain(BlkDesc* head, BlkDesc* tail) {
  tail->next = free;
  free = head;
}
