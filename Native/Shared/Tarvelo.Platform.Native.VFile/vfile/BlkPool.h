/// @file
/// The free block descriptors of one thread.
#pragma once

#include "vfile/Blocks.h"
#include "vmem/VMem.h"

/// Descriptors that no file uses, with the pages that they own. Shared by all files of a thread, owned by none; made with
/// the thread's first file and destroyed with its last, when the pages go with the `VMem`. Everything is O(1) but the
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
  /// Takes a descriptor back, with its page.
  void Dispose(BlkDesc* p);
  /// Takes back the chain from `head` to `tail`.
  void DisposeChain(BlkDesc* head, BlkDesc* tail);

 private:
  [[maybe_unused]] VMem* vm;
  BlkDesc* free = nullptr;  // owned, linked through `next`
};
