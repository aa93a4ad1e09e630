/// @file
/// The blocks that a change brings, before they are part of the file.
#pragma once

#include "vfile/VFile.h"

/// Owns a chain of new blocks with pages and bytes, and gives it back to the pool unless the file has taken it.
///
/// What adds to it gives false, with the reason in the file's `res`, where that cannot be done: `resHeapOverflow`, or
/// `resTooLong` where the thread's space has no page left.
class VFile::NewChain {
 public:
  explicit NewChain(VFile& file) : file_(file) {}
  ~NewChain() { file_.DisposeBlkPtrList(p1); }

  NewChain(const NewChain&) = delete;
  NewChain& operator=(const NewChain&) = delete;

  /// Adds a block of `len` bytes, 1 to `BlkSize`, which `Fill` then gives its bytes.
  bool AddBlock(std::int32_t len);
  bool Fill(const void* bytes);
  /// Adds `n` bytes to the last block, which has room.
  bool Append(const void* bytes, std::int32_t n);
  /// The same with the bytes at `addr`.
  bool AppendFromPage(std::int32_t addr, std::int32_t n);

  bool IsEmpty() const { return p1 == nullptr; }
  /// Whether the last block has room for `n` bytes more.
  bool HasRoom(std::int32_t n) const { return p2 != nullptr && p2->len + n <= BlkSize; }

  BlkDesc* p1 = nullptr;   ///< head; null together with the tail
  BlkDesc* p2 = nullptr;   ///< tail
  std::int32_t count = 0;  ///< blocks

 private:
  VFile& file_;
};
