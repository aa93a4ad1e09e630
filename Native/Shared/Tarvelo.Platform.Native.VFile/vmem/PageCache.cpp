// The list of cached pages and the hash table. Nothing else touches them, but for the lookup in PageLayout.h.
//
// Two facts surprise. Replacement goes by the order of loading, since a hit through the hash table moves nothing. And a
// descriptor is good only until the next page is asked for, since nothing is pinned. Nor is it good behind a halt, whose
// procedure may have asked for pages, moved the bound or emptied the cache.
//
// The order of the list is that of loading, so it is not searched: the pages of each residue are chained as well.

#include <cstring>
#include <new>

#include "host/Host.h"
#include "hsys/Require.h"
#include "vmem/PageLayout.h"

namespace {

bool Require(const TChar* proc, bool holds, const TChar* message) {
  return hsys::Require(TSTR("VMem"), proc, holds, message);
}

}  // namespace

void VMem::FlushCache() {
  if (!OnOwnerThread()) return;
  for (CacheDesc* p = cacheHead; p != nullptr && FlushCachePtr(p, true); p = p->next) continue;
  CheckInvariants();
}

void VMem::ReleaseCache() {
  if (!OnOwnerThread()) return;
  ShrinkCache(0);
  CheckInvariants();
}

/// The page at `addr`, a multiple of 1024 inside the space, in memory with its current content; null only behind a halt that
/// returned. A page that the hash table names is given without touching anything.
CacheDesc* VMem::FindPage(std::int32_t addr) {
  CacheDesc* p = HashedPage(addr);
  if (p != nullptr) return p;
  p = CachedPage(addr);
  return p != nullptr ? UseCached(p) : LoadPage(addr, true);
}

/// The same for a page all of whose bytes the caller sets at once: one that is not cached is not read.
CacheDesc* VMem::PageToOverwrite(std::int32_t addr) {
  CacheDesc* p = HashedPage(addr);
  if (p != nullptr) return p;
  p = CachedPage(addr);
  return p != nullptr ? UseCached(p) : LoadPage(addr, false);
}

/// The page at `addr` if it is cached. Touches nothing.
CacheDesc* VMem::CachedPage(std::int32_t addr) const {
  CacheDesc* p = residueHead[vmem::HashIndex(addr, kHashSize)];
  while (p != nullptr && p->addr != addr) p = p->sibling;
  return p;
}

/// A cached page that the hash table does not name moves to the head and gets its entry.
CacheDesc* VMem::UseCached(CacheDesc* p) {
  if (p != cacheHead) {
    Unlink(p);
    LinkHead(p);
  }
  hashTable[vmem::HashIndex(p->addr, kHashSize)] = p;
  return p;
}

/// Brings a page that is not cached to the head of the list; with its content only where that is to be read.
CacheDesc* VMem::LoadPage(std::int32_t addr, bool read) {
  // Outside the list a descriptor is held by this alone: a halt while the page is read loses no memory.
  struct Unlinked {
    ~Unlinked() {
      if (p != spare) delete p;
    }
    CacheDesc* p;
    const CacheDesc* spare;
  } unlinked{TakeDescriptor(), spareDesc};
  CacheDesc* p = unlinked.p;
  if (p == nullptr) return nullptr;
  p->addr = addr;
  p->dirty = false;
  if (read && !FillPage(p)) return nullptr;
  LinkHead(p);
  unlinked.p = nullptr;
  hashTable[vmem::HashIndex(addr, kHashSize)] = p;
  return p;
}

/// A descriptor that is in no list: the spare one for an empty cache, the victim of a full one, else a new one.
CacheDesc* VMem::TakeDescriptor() {
  if (cacheHead == nullptr && spareDesc != nullptr) return spareDesc;
  CacheDesc* victim = cacheCount < cacheLimit ? nullptr : Victim();
  if (victim == nullptr) {
    CacheDesc* p = nullptr;
    NewCachePtr(p);
    return p;
  }
  if (!FlushCachePtr(victim, false)) return nullptr;
  UnHashCachePtr(victim);
  Unlink(victim);
  return victim;
}

/// The page that leaves a full cache: the tail. A forked child, which is known by its thread's id, shares the swap file with its
/// parent and must not write on it: there the last page goes that need not be written, and where all have to the cache grows.
CacheDesc* VMem::Victim() const {
  CacheDesc* victim = cacheTail;
  if (ownerThread == host::GetCurrentThreadId()) [[likely]]
    return victim;
  while (victim != nullptr && victim->dirty) victim = victim->prev;
  return victim;
}

bool VMem::FillPage(CacheDesc* p) {
  if (p->addr < fileLen) return ReadFromSwapFile(p->addr, p->data);
  std::memset(p->data, 0, sizeof p->data);
  return true;
}

void VMem::LinkHead(CacheDesc* p) {
  p->prev = nullptr;
  p->next = cacheHead;
  (cacheHead != nullptr ? cacheHead->prev : cacheTail) = p;
  cacheHead = p;
  ++cacheCount;
  CacheDesc*& head = residueHead[vmem::HashIndex(p->addr, kHashSize)];
  p->sibling = head;
  head = p;
}

void VMem::Unlink(CacheDesc* p) {
  (p->prev != nullptr ? p->prev->next : cacheHead) = p->next;
  (p->next != nullptr ? p->next->prev : cacheTail) = p->prev;
  --cacheCount;
  CacheDesc** link = &residueHead[vmem::HashIndex(p->addr, kHashSize)];
  while (*link != p) link = &(*link)->sibling;
  *link = p->sibling;
}

void VMem::NewCachePtr(CacheDesc*& p) {
  p = new (std::nothrow) CacheDesc;
  Require(TSTR("NewCachePtr"), p != nullptr, TSTR("p==NIL"));
}

void VMem::DisposeCachePtr(CacheDesc*& p) {
  if (!Require(TSTR("DisposeCachePtr"), p != nullptr, TSTR("p==NIL"))) return;
  UnHashCachePtr(p);
  delete p;
  p = nullptr;
}

void VMem::UnHashCachePtr(CacheDesc* p) {
  if (p == nullptr) return;
  CacheDesc*& entry = hashTable[vmem::HashIndex(p->addr, kHashSize)];
  if (entry == p) entry = nullptr;
}

/// Takes pages from the head of the list until `count` are left. A page that could not be written stays.
void VMem::ShrinkCache(std::int16_t count) {
  while (cacheCount > count) {
    CacheDesc* p = cacheHead;
    if (!FlushCachePtr(p, count == 0)) return;
    UnHashCachePtr(p);
    Unlink(p);
    if (p != spareDesc) DisposeCachePtr(p);
  }
}

/// Frees all pages, unwritten, and the spare descriptor. The tables name nothing then.
void VMem::DropCache() {
  for (CacheDesc* p = cacheHead; p != nullptr;) {
    CacheDesc* next = p->next;
    residueHead[vmem::HashIndex(p->addr, kHashSize)] = nullptr;
    if (p != spareDesc) DisposeCachePtr(p);
    p = next;
  }
  cacheHead = cacheTail = nullptr;
  cacheCount = 0;
  if (spareDesc != nullptr) DisposeCachePtr(spareDesc);
}
