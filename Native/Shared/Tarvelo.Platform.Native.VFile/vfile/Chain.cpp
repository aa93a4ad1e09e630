// Blocks and their links. Nothing else relinks blocks.

#include "vfile/BlkPool.h"
#include "vfile/NewChain.h"
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

/// Takes a block out of the chain and gives it back.
void VFile::Unlink(BlkDesc* p) {
  (p->prev != nullptr ? p->prev->next : first) = p->next;
  (p->next != nullptr ? p->next->prev : last) = p->prev;
  --blockCount;
  DisposeBlkPtr(p);
}

/// Makes the new chain part of the file, behind `p`.
void VFile::LinkBehind(BlkDesc* p, NewChain& chain) {
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
