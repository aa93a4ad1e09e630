// The checker of the cache and of the free lists: one test for each rule of VMem.h, in its order.

#include <algorithm>
#include <limits>
#include <new>
#include <vector>

#include "host/Host.h"
#include "hsys/Checked.h"
#include "hsys/Require.h"
#include "vmem/FreeBlock.h"
#include "vmem/PageLayout.h"

void VMem::CheckInvariants() const {
  if constexpr (hsys::kChecked) {
    const TChar* broken = nullptr;
    try {
      broken = BrokenRule();
    } catch (const std::bad_alloc&) {
      // Without memory for a look at the rules they are taken to hold.
    }
    hsys::Require(TSTR("VMem"), TSTR("CheckInvariants"), broken == nullptr, broken);
  }
}

const TChar* VMem::BrokenRule() const {
  const TChar* broken = BrokenCacheRule();
  return broken != nullptr ? broken : BrokenListRule();
}

const TChar* VMem::BrokenCacheRule() const {
  std::vector<std::int32_t> pages;
  const CacheDesc* prev = nullptr;
  for (const CacheDesc* p = cacheHead; p != nullptr; prev = p, p = p->next) {
    if (p->prev != prev || pages.size() > static_cast<std::size_t>(cacheCount)) return TSTR("K1");
    pages.push_back(p->addr);
  }
  if (prev != cacheTail || pages.size() != static_cast<std::size_t>(cacheCount)) return TSTR("K1");
  std::sort(pages.begin(), pages.end());
  if (std::adjacent_find(pages.begin(), pages.end()) != pages.end()) return TSTR("K1");
  for (std::int32_t index = 0; index < kHashSize; ++index) {
    const CacheDesc* entry = hashTable[index];
    if (entry != nullptr && vmem::HashIndex(entry->addr, kHashSize) != index) return TSTR("K2");
    if (entry != nullptr && !std::binary_search(pages.begin(), pages.end(), entry->addr)) return TSTR("K2");
  }
  std::size_t chained = 0;
  for (std::int32_t index = 0; index < kHashSize; ++index) {
    for (const CacheDesc* p = residueHead[index]; p != nullptr; p = p->sibling, ++chained) {
      if (chained > pages.size() || vmem::HashIndex(p->addr, kHashSize) != index) return TSTR("K3");
      if (!std::binary_search(pages.begin(), pages.end(), p->addr)) return TSTR("K3");
    }
  }
  if (chained != pages.size()) return TSTR("K3");
  const bool hasFile = swapFile != INVALID_HANDLE_VALUE;
  const bool wholePages = vmem::OffsetInPage(fileLen) == 0 || fileLen == std::numeric_limits<std::int32_t>::max();
  if (!wholePages || (fileLen > 0 && !hasFile)) return TSTR("K4");
  const bool onGrid = std::all_of(pages.begin(), pages.end(),
                                  [](std::int32_t page) { return page >= 0 && vmem::OffsetInPage(page) == 0; });
  return onGrid ? nullptr : TSTR("K5");
}

const TChar* VMem::BrokenListRule() const {
  struct Block {
    std::int32_t addr;
    std::int32_t len;
  };
  std::vector<Block> blocks;
  // Gives the number of blocks on a list, or -1 if one of them lies wrong. `size` 0 means that the block says it.
  const auto walk = [&](std::int32_t head, std::int32_t size) {
    std::int32_t count = 0;
    for (std::int32_t addr = head; addr != vmem::kNoAddress; ++count) {
      std::int32_t next = vmem::kNoAddress;
      short len = static_cast<short>(size);
      if (addr < 0 || addr > maxAddress - vmem::kLeastBlock || count > maxAddress) return -1;
      if (!Peek(addr + vmem::kLinkOffset, &next, sizeof next)) return -1;
      if (size == 0 && !Peek(addr + vmem::kLengthOffset, &len, sizeof len)) return -1;
      if (len < vmem::kLeastBlock || addr > maxAddress - len) return -1;
      blocks.push_back({addr, len});
      addr = next;
    }
    return count;
  };
  if (walk(freePageHead, kPageSize) != freePageCount) return TSTR("A1");
  for (const Block& page : blocks) {
    if (vmem::OffsetInPage(page.addr) != 0) return TSTR("A1");
  }
  if (classCount < vmem::kPermanentClasses || classCount > vmem::kMostClasses) return TSTR("A2");
  for (std::int32_t index = 1; index < kListCount; ++index) {
    const bool used = index <= classCount;
    if (used != (classSize[index] > 0) || (used && FindClass(classSize[index]) != index)) return TSTR("A2");
    if (index > vmem::kPermanentClasses && used && freeHead[index] == vmem::kNoAddress) return TSTR("A2");
    if ((used ? walk(freeHead[index], classSize[index]) : 0) != freeCount[index]) return TSTR("A2");
  }
  const std::size_t inClasses = blocks.size();
  if (walk(freeHead[vmem::kGeneral], 0) != freeCount[vmem::kGeneral]) return TSTR("A3");
  for (std::size_t i = inClasses; i < blocks.size(); ++i) {
    if (blocks[i].len < vmem::kLeastGeneralBlock) return TSTR("A3");
  }
  std::sort(blocks.begin(), blocks.end(), [](const Block& a, const Block& b) { return a.addr < b.addr; });
  for (std::size_t i = 1; i < blocks.size(); ++i) {
    if (blocks[i - 1].addr + blocks[i - 1].len > blocks[i].addr) return TSTR("A4");
  }
  return nullptr;
}

/// Copies bytes of the space without touching the cache.
bool VMem::Peek(std::int32_t addr, void* buf, std::int32_t len) const {
  auto* bytes = static_cast<unsigned char*>(buf);
  for (std::int32_t at = addr; at < addr + len; ++at) {
    const std::int32_t offset = vmem::OffsetInPage(at);
    const CacheDesc* p = cacheHead;
    while (p != nullptr && p->addr != at - offset) p = p->next;
    unsigned char byte = 0;
    if (p != nullptr) {
      byte = p->data[offset];
    } else if (at < fileLen) {
      std::uint32_t done = 0;
      const host::OVERLAPPED place = {static_cast<std::uint32_t>(at), 0};
      if (!host::ReadFile(swapFile, &byte, 1, &done, place) || done != 1) return false;
    }
    *bytes++ = byte;
  }
  return true;
}
