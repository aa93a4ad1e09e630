// Reading by a cursor of the reader's, which leaves the object as it is. Where the cursor stands in the current block the
// bytes come from the scratch buffer, since the page may be older.

#include <algorithm>
#include <cstring>

#include "vfile/Require.h"
#include "vfile/VFile.h"
#include "vmem/VMem.h"

std::int32_t VFile::ReadAt(std::int32_t position, void* buffer, std::int32_t count) const {
  if (position < 0 || position >= length || count <= 0 || buffer == nullptr) return 0;
  count = std::min(count, length - position);
  BlkRdr rd;
  SetPosC(rd, position);
  return ReadBytesC(rd, buffer, count) ? count : 0;
}

void VFile::SetPosC(BlkRdr& rd, std::int32_t position) const {
  if (!vfile::Require(TSTR("SetPosC"), position >= 0, TSTR("call error"))) return;
  rd = cur;
  Walk(rd, std::min(position, length), false);
}

/// False behind a halt that returned.
bool VFile::ReadBytesC(BlkRdr& rd, void* buffer, std::int32_t count) const {
  static constexpr const TChar* kProc = TSTR("ReadBytesC");
  const bool valid = count <= length - (rd.base + rd.ix) && count >= 0 && buffer != nullptr;
  if (!vfile::Require(kProc, valid, TSTR("call error"))) return false;
  auto* target = static_cast<unsigned char*>(buffer);
  while (count > 0) {
    if (!StepC(rd, kProc)) return false;
    const auto n = static_cast<std::int16_t>(std::min(rd.ptr->len - rd.ix, count));
    if (!CopyC(rd, target, n)) return false;
    rd.ix = static_cast<std::int16_t>(rd.ix + n);
    target += n;
    count -= n;
  }
  return true;
}

bool VFile::ReadByteC(BlkRdr& rd, unsigned char& byte) const {
  static constexpr const TChar* kProc = TSTR("ReadByteC");
  if (!vfile::Require(kProc, rd.base + rd.ix < length, TSTR("call error")) || !StepC(rd, kProc)) return false;
  if (!CopyC(rd, &byte, 1)) return false;
  ++rd.ix;
  return true;
}

/// Steps to the next block while the cursor is at the end of its own.
bool VFile::StepC(BlkRdr& rd, const TChar* proc) const {
  while (rd.ix >= rd.ptr->len) {
    if (!vfile::Require(proc, rd.ptr->next != nullptr, TSTR("rd.ptr->next==NIL"))) return false;
    rd = {rd.ptr->next, rd.base + rd.ptr->len, 0};
  }
  return true;
}

/// Copies `count` bytes of the cursor's block.
bool VFile::CopyC(const BlkRdr& rd, void* buffer, std::int16_t count) const {
  if (rd.ptr != cur.ptr || !bufValid) return vm->GetBlock(rd.ptr->addr + rd.ix, buffer, count);
  std::memcpy(buffer, buf + rd.ix, static_cast<std::size_t>(count));
  return true;
}
