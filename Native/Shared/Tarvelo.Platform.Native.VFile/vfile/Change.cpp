// The engine of change: at the cursor, take bytes out and put bytes in, by rebuilding the chain around it. What the change
// does not concern does not move: whole blocks go unread, new blocks come in by four pointers.

#include <algorithm>
#include <cstring>

#include "vfile/BlkPool.h"
#include "vfile/InBlock.h"
#include "vfile/LineEnds.h"
#include "vfile/NewChain.h"
#include "vfile/Require.h"
#include "vmem/VMem.h"

/// Brings the cursor and the scratch buffer to a change at `position`. A failure is `resHeapOverflow` in `res`.
void VFile::InitChange(std::int32_t position) {
  if (StaysForChange(position)) {
    MoveWithin(position - cur.base);
  } else {
    BlkRdr target = cur;
    Walk(target, position, true);
    if (!MoveTo(target)) return;
    pos = position;
    eof = false;
  }
  if (bufValid) return;
  if (!MakeBuf()) {
    Refuse();
    return;
  }
  if (cur.ptr->addr == -1) {
    if (!vfile::Require(TSTR("InitChange"), cur.ptr->len == 0, TSTR("cur.ptr->len>0"))) return;
    // A source that was read first may have taken the last page of the space.
    if (pool->PagesLeft() == 0) {
      res = resTooLong;
      return;
    }
    cur.ptr->addr = pool->TakePage();
    if (cur.ptr->addr == -1) Refuse();
    bufValid = res == resDone;
  } else {
    LoadBuf();
  }
}

/// Takes out `del` bytes at the cursor, which are there, and puts in `ins` bytes: `n` of them, which fit the current block behind
/// the cursor, and the new chain. Leaves `pos` to the caller. False on a failure, with its reason in `res`, the file as it was, and
/// the chain left with the caller.
///
/// All pages are copied first: behind the current block into the new chain, which is nobody's yet, or, as the last of them, inside
/// the page of a block that is cut. Then links and lengths change, and nothing can fail any more.
bool VFile::DoChange(std::int32_t del, const void* bytes, std::int32_t n, NewChain& chain, std::int32_t ins) {
  held = nullptr;
  const std::int32_t rest = cur.ptr->len - cur.ix;
  if (del < rest && !SaveTail(cur.ix + del, chain)) return false;
  // The first block behind the current one that stays, and its bytes if it is cut.
  BlkDesc* kept = cur.ptr->next;
  std::int32_t keptLen = 0;
  if (!CutBehind(std::max(del - rest, 0), chain, kept, keptLen)) return false;
  if (!JoinBehind(chain, kept)) return false;

  ++changes;
  MarkDirty();
  if (n > 0) std::memcpy(buf + cur.ix, bytes, static_cast<std::size_t>(n));
  cur.ptr->len = static_cast<std::int16_t>(cur.ix + n);
  UnlinkBehind(kept);
  if (keptLen > 0) ShortenBehind(keptLen);
  if (!chain.IsEmpty()) LinkBehind(chain);
  length = length - del + ins;
  CheckCurLen();
  CheckIndex();
  return true;
}

/// Puts what the current block holds from index `from` on behind the new chain: into its last block, or one more.
bool VFile::SaveTail(std::int32_t from, NewChain& chain) {
  const std::int32_t count = cur.ptr->len - from;
  if (chain.HasRoom(count)) return chain.Append(buf + from, count);
  return chain.AddBlock(count) && chain.Fill(buf + from);
}

/// Settles what stays when `count` bytes behind the current block go out: whole blocks, unread, and the first part of the one
/// behind them, whose rest moves to the new chain or to the start of its page.
bool VFile::CutBehind(std::int32_t count, NewChain& chain, BlkDesc*& kept, std::int32_t& keptLen) {
  while (kept != nullptr && count >= kept->len) {
    count -= kept->len;
    kept = kept->next;
  }
  if (count == 0) return true;
  if (!vfile::Require(TSTR("DoChange"), kept != nullptr, TSTR("cut out: i too big"))) return Refuse();
  const std::int32_t left = kept->len - count;
  if (!chain.HasRoom(left)) {
    keptLen = left;
    return vm->CopyBlock(kept->addr, kept->addr + count, left) || Refuse();
  }
  if (!chain.AppendFromPage(kept->addr + count, left)) return false;
  kept = kept->next;
  return true;
}

/// Joins the last block of the new chain with the one behind if both fit one.
bool VFile::JoinBehind(NewChain& chain, BlkDesc*& kept) {
  if (kept == nullptr || !chain.HasRoom(kept->len)) return true;
  if (!chain.AppendFromPage(kept->addr, kept->len)) return false;
  kept = kept->next;
  return true;
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
  if (first != last) {
    UnlinkCur();
  } else if (empty->addr != -1) {
    // A page that the virtual memory cannot take back stays with the block.
    vm->Dealloc(empty->addr, BlkSize);
  }
}

/// Sets `vfHasEol` if CR or LF is among the bytes.
void VFile::CheckEOL(const void* bytes, std::int32_t count) {
  if (vfile::FindEol(static_cast<const unsigned char*>(bytes), count) < count) flags |= vfHasEol;
}
