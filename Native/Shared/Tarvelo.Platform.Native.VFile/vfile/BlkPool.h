/// @file
/// The free block descriptors of one thread.
#pragma once

#include "vfile/Blocks.h"
#include "vmem/VMem.h"

/// Descriptors that no file uses, with the pages that they own: each has one. Shared by all files of a thread, owned by none;
/// made with the thread's first file and destroyed with its last, when the pages go with the `VMem`. Everything is O(1) but the
/// destructor.
class BlkPool {
 public:
  /// An empty pool of descriptors whose pages lie in `threadVMem`.
  explicit BlkPool(VMem* threadVMem) : vm(threadVMem) {}
  /// Frees the descriptors. Does not touch the `VMem`.
  ~BlkPool();

  BlkPool(const BlkPool&) = delete;
  BlkPool& operator=(const BlkPool&) = delete;

  /// A descriptor with or, if it is new, without a page; null if the heap is exhausted.
  BlkDesc* New();
  /// Takes a descriptor back, with its page; frees one that has none.
  void Dispose(BlkDesc* p);
  /// Takes back the chain from `head` to `tail`, of `count` descriptors, of which only a single one may be without a page.
  void DisposeChain(BlkDesc* head, BlkDesc* tail, std::int32_t count);
  /// The page of a free descriptor, else a new one of the space; -1 only behind a halt that returned.
  std::int32_t TakePage();
  /// How many blocks can be had before the thread's space ends.
  std::int32_t PagesLeft() const { return freeCount + vm->PagesLeft(); }

 private:
  VMem* vm;
  BlkDesc* free = nullptr;  // owned, linked through `next`
  std::int32_t freeCount = 0;
};
