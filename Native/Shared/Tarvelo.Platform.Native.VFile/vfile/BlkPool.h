/// @file
/// The block descriptors of one thread.
#pragma once

#include "vfile/Blocks.h"
#include "vmem/VMem.h"

/// All block descriptors of a thread: those that its files use, and those that no file uses, most of which have a page of their own.
/// They come from the heap by slabs, in the order in which they are asked for, so that a walk along a new chain is one along
/// memory. Shared by all files of a thread; made with the thread's first file and destroyed with its last, when the pages go with the
/// `VMem`. Everything is O(1) but the destructor, which costs the number of slabs.
class BlkPool {
 public:
  /// An empty pool of descriptors whose pages lie in `threadVMem`.
  explicit BlkPool(VMem* threadVMem) : vm(threadVMem) {}
  /// Frees all descriptors. Does not touch the `VMem`.
  ~BlkPool();

  BlkPool(const BlkPool&) = delete;
  BlkPool& operator=(const BlkPool&) = delete;

  /// A descriptor with or, if it is new, without a page; null if the heap is exhausted.
  BlkDesc* New();
  /// Takes a descriptor back, with its page if it has one.
  void Dispose(BlkDesc* p);
  /// Takes back the chain from `head` to `tail`, of `count` descriptors, of which only a single one may be without a page.
  void DisposeChain(BlkDesc* head, BlkDesc* tail, std::int32_t count);
  /// The page of a free descriptor, else a new one of the space; -1 only behind a halt that returned.
  std::int32_t TakePage();
  /// How many blocks can be had before the thread's space ends.
  std::int32_t PagesLeft() const { return freeCount + vm->PagesLeft(); }

 private:
  struct Slab;

  BlkDesc* Carve();

  VMem* vm;
  BlkDesc* free = nullptr;  // with pages, linked through `next`
  std::int32_t freeCount = 0;
  BlkDesc* bare = nullptr;  // without pages, likewise
  Slab* slabs = nullptr;    // owned; the first is carved
  std::int32_t carved = 0;  // descriptors taken of the first slab
  std::int32_t total = 0;   // descriptors of all slabs
};
