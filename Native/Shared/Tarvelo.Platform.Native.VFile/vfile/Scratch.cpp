// The scratch buffer: a write-behind copy of the current block.
//
//   bufValid  bufDirty  STATE                              LEFT BY
//   false     false     the bytes are in the page alone    LoadBuf, InitChange: 2
//   true      false     buffer and page agree              a change: 3; MoveTo another block, Flush: 1
//   true      true      the buffer is newer                MoveTo another block, Flush: written, 1; CheckCurLen of an
//                                                          empty block: 1
//
// Whoever moves `cur` to another block does it by MoveTo. The buffer still holds the bytes of the block that was left, `held`, until it
// loads another or the chain changes: back there they need no loading while the page is at hand.
//
// A page that cannot be read or written is a halt of the virtual memory. Behind one that returned nothing has moved, the bytes
// are where they were, and `res` is `resHeapOverflow`.

#include <algorithm>
#include <new>

#include "vfile/PositionIndex.h"
#include "vfile/VFile.h"
#include "vmem/VMem.h"

/// Sees to it that there is a buffer; false if the heap is exhausted.
bool VFile::MakeBuf() {
  if (buf == nullptr) buf = new (std::nothrow) unsigned char[BlkSize];
  return buf != nullptr;
}

/// Ends an operation that the heap or the virtual memory refused.
bool VFile::Refuse() {
  // A reason that is known stays.
  if (res == resDone) res = resHeapOverflow;
  return false;
}

/// Sees to it that the buffer holds the current block, which has bytes; false if there is no buffer, or its page was refused.
bool VFile::LoadBuf() {
  if (bufValid) return true;
  if (!MakeBuf()) return false;
  const bool holds = held == cur.ptr && vm->IsAtHand(cur.ptr->addr);
  held = nullptr;
  if (!holds && !vm->GetBlock(cur.ptr->addr, buf, cur.ptr->len)) return Refuse();
  bufValid = true;
  return true;
}

/// Copies bytes of the current block where `LoadBuf` has failed: for want of a buffer, or there is nothing to be had.
bool VFile::CopyUnbuffered(std::int32_t ix, void* bytes, std::int32_t count) {
  return buf == nullptr && (vm->GetBlock(cur.ptr->addr + ix, bytes, count) || Refuse());
}

bool VFile::WriteBack() {
  if (!bufDirty) return true;
  const std::int32_t len = cur.ptr->len;
  // A page that is not at hand takes the whole block, of which it may need no reading. One byte at least tells it that it changes.
  const std::int32_t from = vm->IsAtHand(cur.ptr->addr) ? std::min<std::int32_t>(dirtyFrom, len - 1) : 0;
  if (!vm->SetBlock(cur.ptr->addr + from, buf + from, len - from)) return Refuse();
  bufDirty = false;
  return true;
}

bool VFile::MoveTo(const BlkRdr& target) {
  if (target.ptr != cur.ptr) {
    if (!WriteBack()) return false;
    if (bufValid) held = cur.ptr;
    bufValid = false;
    if (index != nullptr) {
      SettleCurLen();
      index->settledLen = target.ptr->len;
    }
  }
  cur = target;
  return true;
}

/// Steps to the next block while the cursor is at the end of its own; false at the end of the file.
bool VFile::StepForward() {
  while (cur.ix >= cur.ptr->len) {
    if (cur.ptr->next == nullptr) return false;
    if (!MoveTo({cur.ptr->next, cur.base + cur.ptr->len, 0})) return false;
  }
  return true;
}

/// Steps to the previous block while the cursor is at the start of its own; false at the start of the file.
bool VFile::StepBackward() {
  while (cur.ix < 1) {
    BlkDesc* prev = cur.ptr->prev;
    if (prev == nullptr) return false;
    if (!MoveTo({prev, cur.base - prev->len, prev->len})) return false;
  }
  return true;
}

/// The bytes of the current block, which has some: in the buffer, or in `spare` where there is none; null if they are refused.
const unsigned char* VFile::BlockBytes(RunBuffer& spare) {
  if (LoadBuf()) return buf;
  return CopyUnbuffered(0, spare.bytes, cur.ptr->len) ? spare.bytes : nullptr;
}

VFile::Run VFile::RunForward(RunBuffer& spare) {
  const unsigned char* bytes = StepForward() ? BlockBytes(spare) : nullptr;
  if (bytes == nullptr) return {nullptr, 0};
  return {bytes + cur.ix, cur.ptr->len - cur.ix};
}

VFile::Run VFile::RunBackward(RunBuffer& spare) {
  const unsigned char* bytes = StepBackward() ? BlockBytes(spare) : nullptr;
  if (bytes == nullptr) return {nullptr, 0};
  return {bytes, cur.ix};
}

void VFile::Skip(std::int32_t count) {
  cur.ix = static_cast<std::int16_t>(cur.ix + count);
  pos += count;
  eof = false;
}

void VFile::Flush() {
  if (!OnOwnerThread()) return;
  if (!WriteBack()) return;
  bufValid = false;
  held = nullptr;
  delete[] buf;
  buf = nullptr;
}
