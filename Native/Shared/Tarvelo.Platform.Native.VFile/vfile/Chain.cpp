// Blocks and their links. Nothing else relinks blocks.

#include "vfile/BlkPool.h"
#include "vfile/NewChain.h"
#include "vfile/PositionIndex.h"
#include "vfile/Require.h"
#include "vmem/VMem.h"

BlkDesc* VFile::NewBlkPtr(BlkDesc* prev, BlkDesc* next, std::int16_t len) {
  static constexpr const TChar* kProc = TSTR("NewBlkPtr");
  if (!vfile::Require(kProc, len >= 0, TSTR("len<0"))) return nullptr;
  // Should the page be refused by a halt that throws, the descriptor goes back.
  struct Taken {
    ~Taken() {
      if (p != nullptr) pool->Dispose(p);
    }
    BlkPool* pool;
    BlkDesc* p;
  } taken{pool, pool->New()};
  BlkDesc* p = taken.p;
  if (p == nullptr) return nullptr;
  if (len > 0 && p->addr == -1) {
    if (!vfile::Require(kProc, len <= BlkSize, TSTR("len>BlkSize"))) return nullptr;
    AllocBuf(p->addr, BlkSize);
    if (p->addr == -1) return nullptr;
  }
  p->prev = prev;
  p->next = next;
  p->len = len;
  taken.p = nullptr;
  return p;
}

void VFile::DisposeBlkPtr(BlkDesc*& p) {
  if (!vfile::Require(TSTR("DisposeBlkPtr"), p != nullptr, TSTR("p==NIL"))) return;
  pool->Dispose(p);
  p = nullptr;
}

void VFile::DisposeBlkPtrList(BlkDesc*& head) {
  while (head != nullptr) {
    BlkDesc* next = head->next;
    DisposeBlkPtr(head);
    head = next;
  }
}

void VFile::AllocBuf(std::int32_t& addr, std::int16_t size) {
  if (size == BlkSize) {
    vm->AllocPage(addr);
  } else {
    vm->Alloc(addr, size);
  }
}

/// Takes a block out of the chain and gives it back. The index is the caller's.
void VFile::Unlink(BlkDesc* p) {
  (p->prev != nullptr ? p->prev->next : first) = p->next;
  (p->next != nullptr ? p->next->prev : last) = p->prev;
  --blockCount;
  DisposeBlkPtr(p);
}

/// Takes out the blocks behind the current one up to `kept`, or to the end.
void VFile::UnlinkBehind(const BlkDesc* kept) {
  const std::int32_t before = blockCount;
  while (cur.ptr->next != kept) Unlink(cur.ptr->next);
  if (index != nullptr && blockCount < before) index->RemoveBehind(index->Locate(cur.base), before - blockCount);
}

/// Takes out the current block, which is empty and not the only one. The cursor stands at the start of the next block, else at the
/// end of the one before.
void VFile::UnlinkCur() {
  BlkDesc* empty = cur.ptr;
  if (index != nullptr) index->Remove(index->Locate(cur.base));
  if (empty->next != nullptr) {
    cur.ptr = empty->next;
  } else {
    cur.ptr = empty->prev;
    cur.base -= cur.ptr->len;
    cur.ix = cur.ptr->len;
  }
  Unlink(empty);
  if (index != nullptr) index->settledLen = cur.ptr->len;
  CheckIndex();
}

/// Gives the block behind the current one another length.
void VFile::ShortenBehind(std::int32_t len) {
  cur.ptr->next->len = static_cast<std::int16_t>(len);
  if (index != nullptr) index->SetLenBehind(index->Locate(cur.base), len);
}

/// Makes the new chain part of the file, behind the current block.
void VFile::LinkBehind(NewChain& chain) {
  if (index != nullptr && !index->InsertBehind(index->Locate(cur.base), chain.p1, chain.count)) DropIndex();
  BlkDesc* p = cur.ptr;
  BlkDesc* q = p->next;
  p->next = chain.p1;
  chain.p1->prev = p;
  chain.p2->next = q;
  (q != nullptr ? q->prev : last) = chain.p2;
  blockCount += chain.count;
  chain.p1 = chain.p2 = nullptr;
}

bool VFile::NewChain::AddBlock(std::int32_t len) {
  if (file_.pool->PagesLeft() == 0) {
    file_.res = resTooLong;
    return false;
  }
  BlkDesc* p = file_.NewBlkPtr(p2, nullptr, static_cast<std::int16_t>(len));
  if (p == nullptr) return file_.Refuse();
  (p2 != nullptr ? p2->next : p1) = p;
  p2 = p;
  ++count;
  return true;
}

bool VFile::NewChain::Fill(const void* bytes) { return file_.vm->SetBlock(p2->addr, bytes, p2->len) || file_.Refuse(); }

bool VFile::NewChain::Append(const void* bytes, std::int32_t n) {
  if (!vfile::Require(TSTR("DoChange"), HasRoom(n), TSTR("Append: p2->len > BlkSize"))) return file_.Refuse();
  if (!file_.vm->SetBlock(p2->addr + p2->len, bytes, n)) return file_.Refuse();
  p2->len = static_cast<std::int16_t>(p2->len + n);
  return true;
}

bool VFile::NewChain::AppendFromPage(std::int32_t addr, std::int32_t n) {
  if (!vfile::Require(TSTR("DoChange"), HasRoom(n), TSTR("cut out: p2->len > BlkSize"))) return file_.Refuse();
  if (!file_.vm->CopyBlock(p2->addr + p2->len, addr, n)) return file_.Refuse();
  p2->len = static_cast<std::int16_t>(p2->len + n);
  return true;
}
