/// @file
/// The blocks that a change brings, before they are part of the file.
#pragma once

#include "vfile/VFile.h"

/// Owns a chain of new blocks with pages and bytes, and gives it back to the pool unless the file has taken it.
class VFile::NewChain {
 public:
  explicit NewChain(VFile& file) : file_(file) {}
  ~NewChain() { file_.DisposeBlkPtrList(p1); }

  NewChain(const NewChain&) = delete;
  NewChain& operator=(const NewChain&) = delete;

  /// Adds a block of `count` bytes, 1 to `BlkSize`. False, with `resHeapOverflow` in the file's `res`, if there is none.
  bool Append(const void* bytes, std::int32_t count);
  bool IsEmpty() const { return p1 == nullptr; }
  /// Whether the last block has room for `count` bytes more.
  bool HasRoom(std::int32_t count) const { return p2 != nullptr && p2->len + count <= BlkSize; }

  BlkDesc* p1 = nullptr;  ///< head; null together with the tail
  BlkDesc* p2 = nullptr;  ///< tail

 private:
  VFile& file_;
};
