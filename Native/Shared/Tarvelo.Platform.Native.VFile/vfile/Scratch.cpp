// The scratch buffer: a write-behind copy of the current block.
//
//   bufValid  bufDirty  STATE                              LEFT BY
//   false     false     the bytes are in the page alone    LoadBuf, InitChange: 2
//   true      false     buffer and page agree              a change: 3; MoveTo another block, Flush: 1
//   true      true      the buffer is newer                MoveTo another block, Flush: written, 1; CheckCurLen of an
//                                                          empty block: 1
//
// Whoever moves `cur` to another block does it by MoveTo.

#include <new>

#include "vfile/VFile.h"
#include "vmem/VMem.h"

/// Sees to it that there is a buffer; false if the heap is exhausted.
bool VFile::MakeBuf() {
  if (buf == nullptr) buf = new (std::nothrow) unsigned char[BlkSize];
  return buf != nullptr;
}

/// Sees to it that the buffer holds the current block, which has bytes; false if there is no buffer.
bool VFile::LoadBuf() {
  if (bufValid) return true;
  if (!MakeBuf()) return false;
  vm->Get(cur.ptr->addr, buf, cur.ptr->len);
  bufValid = true;
  return true;
}

void VFile::WriteBack() {
  if (!bufDirty) return;
  vm->Set(cur.ptr->addr, buf, cur.ptr->len);
  bufDirty = false;
}

void VFile::MoveTo(const BlkRdr& target) {
  if (target.ptr != cur.ptr) {
    WriteBack();
    bufValid = false;
  }
  cur = target;
}

/// Steps to the next block while the cursor is at the end of its own; false at the end of the file.
bool VFile::StepForward() {
  while (cur.ix >= cur.ptr->len) {
    if (cur.ptr->next == nullptr) return false;
    MoveTo({cur.ptr->next, cur.base + cur.ptr->len, 0});
  }
  return true;
}

/// Steps to the previous block while the cursor is at the start of its own; false at the start of the file.
bool VFile::StepBackward() {
  while (cur.ix < 1) {
    BlkDesc* prev = cur.ptr->prev;
    if (prev == nullptr) return false;
    MoveTo({prev, cur.base - prev->len, prev->len});
  }
  return true;
}

/// The bytes of the current block, which has some: in the buffer, or in `spare` where there is none.
const unsigned char* VFile::BlockBytes(RunBuffer& spare) {
  if (LoadBuf()) return buf;
  vm->Get(cur.ptr->addr, spare.bytes, cur.ptr->len);
  return spare.bytes;
}

VFile::Run VFile::RunForward(RunBuffer& spare) {
  if (!StepForward()) return {nullptr, 0};
  return {BlockBytes(spare) + cur.ix, cur.ptr->len - cur.ix};
}

VFile::Run VFile::RunBackward(RunBuffer& spare) {
  if (!StepBackward()) return {nullptr, 0};
  return {BlockBytes(spare), cur.ix};
}

void VFile::Skip(std::int32_t count) {
  cur.ix = static_cast<std::int16_t>(cur.ix + count);
  pos += count;
  eof = false;
}

void VFile::Flush() {
  if (!OnOwnerThread()) return;
  WriteBack();
  bufValid = false;
  delete[] buf;
  buf = nullptr;
}
