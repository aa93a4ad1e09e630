// The engine of change: at the cursor, take bytes out and put bytes in, by rebuilding the chain around it. What the change
// does not concern does not move: whole blocks go unread, new blocks come in by four pointers.

#include <algorithm>
#include <cstring>

#include "vfile/NewChain.h"
#include "vfile/Require.h"
#include "vfile/Walk.h"
#include "vmem/VMem.h"

/// Brings the cursor and the scratch buffer to a change at `position`. A failure is `resHeapOverflow` in `res`.
void VFile::InitChange(std::int32_t position) {
  BlkRdr target = cur;
  vfile::Walk(target, first, last, length, position, true);
  MoveTo(target);
  pos = position;
  eof = false;
  if (bufValid) return;
  if (!MakeBuf()) {
    res = resHeapOverflow;
    return;
  }
  if (cur.ptr->addr == -1) {
    if (!vfile::Require(TSTR("InitChange"), cur.ptr->len == 0, TSTR("cur.ptr->len>0"))) return;
    AllocBuf(cur.ptr->addr, BlkSize);
  } else if (cur.ptr->len > 0) {
    vm->Get(cur.ptr->addr, buf, cur.ptr->len);
  }
  bufValid = true;
}

/// Takes out `del` bytes at the cursor, which are there, and puts in `n` bytes, which fit the current block behind the
/// cursor, and the new chain. Leaves `length` and `pos` to the caller. A failure is `resHeapOverflow` in `res`, with the file
/// unchanged and the chain left with the caller.
void VFile::DoChange(std::int32_t del, const void* bytes, std::int32_t n, NewChain& chain) {
  const std::int32_t rest = cur.ptr->len - cur.ix;
  // The only step that can fail comes first.
  if (del < rest && !SaveTail(cur.ix + del, chain)) return;
  if (del > rest) CutBehind(del - rest, chain);
  bufDirty = true;
  if (n > 0) std::memcpy(buf + cur.ix, bytes, static_cast<std::size_t>(n));
  cur.ptr->len = static_cast<std::int16_t>(cur.ix + n);
  if (!chain.IsEmpty()) JoinBehind(chain);
  CheckCurLen();
}

/// Puts what the current block holds from index `from` on behind the new chain: into its last block, or one more.
bool VFile::SaveTail(std::int32_t from, NewChain& chain) {
  const std::int32_t count = cur.ptr->len - from;
  if (!chain.HasRoom(count)) return chain.Append(buf + from, count);
  BlkDesc* p2 = chain.p2;
  vm->Set(p2->addr + p2->len, buf + from, static_cast<std::int16_t>(count));
  p2->len = static_cast<std::int16_t>(p2->len + count);
  vfile::Require(TSTR("DoChange"), p2->len <= BlkSize, TSTR("Append: p2->len > BlkSize"));
  return true;
}

/// Takes out `count` bytes behind the current block: whole blocks unread, the first part of the one behind them.
void VFile::CutBehind(std::int32_t count, NewChain& chain) {
  static constexpr const TChar* kProc = TSTR("DoChange");
  BlkDesc* current = cur.ptr;
  while (current->next != nullptr && count >= current->next->len) {
    count -= current->next->len;
    Unlink(current->next);
  }
  if (count == 0) return;
  BlkDesc* p = current->next;
  if (!vfile::Require(kProc, p != nullptr && count < p->len, TSTR("cut out: i too big"))) return;
  const auto left = static_cast<std::int16_t>(p->len - count);
  if (chain.HasRoom(left)) {
    AppendFromPage(chain.p2, p->addr + count, left);
    if (!vfile::Require(kProc, chain.p2->len <= BlkSize, TSTR("cut out: p2->len > BlkSize"))) return;
    Unlink(p);
  } else {
    vm->CopyBytes(p->addr, p->addr + count, left);
    p->len = left;
  }
}

/// Links the new chain in behind the current block, and joins its last block with the one behind if both fit one.
void VFile::JoinBehind(NewChain& chain) {
  BlkDesc* p2 = chain.p2;
  LinkBehind(cur.ptr, chain);
  BlkDesc* q = p2->next;
  if (q == nullptr || p2->len + q->len > BlkSize) return;
  AppendFromPage(p2, q->addr, q->len);
  Unlink(q);
}

/// Copies `count` bytes at `addr` behind those of the block `p`, which has room.
void VFile::AppendFromPage(BlkDesc* p, std::int32_t addr, std::int16_t count) {
  vm->CopyBytes(p->addr + p->len, addr, count);
  p->len = static_cast<std::int16_t>(p->len + count);
}

/// Restores C5 and C8 after a change of the current block's length: an empty one goes, and the cursor stands at the start of
/// the next block, else at the end of the one before. The last block of all stays, without its page.
void VFile::CheckCurLen() {
  static constexpr const TChar* kProc = TSTR("CheckCurLen");
  BlkDesc* empty = cur.ptr;
  if (!vfile::Require(kProc, empty->len <= BlkSize, TSTR("cur.ptr->len > BlkSize")) || empty->len != 0) return;
  if (!vfile::Require(kProc, cur.ix == 0, TSTR("cur.ix!=0"))) return;
  bufValid = false;
  bufDirty = false;
  if (empty->next != nullptr) {
    cur.ptr = empty->next;
    Unlink(empty);
  } else if (empty->prev != nullptr) {
    cur.ptr = empty->prev;
    cur.base -= cur.ptr->len;
    cur.ix = cur.ptr->len;
    Unlink(empty);
  } else if (empty->addr != -1) {
    vm->Dealloc(empty->addr, BlkSize);
  }
}

/// Sets `vfHasEol` if CR or LF is among the bytes.
void VFile::CheckEOL(const void* bytes, std::int32_t count) {
  const auto* begin = static_cast<const unsigned char*>(bytes);
  if (std::any_of(begin, begin + count, [](unsigned char byte) { return byte == 13 || byte == 10; })) flags |= vfHasEol;
}
