// The allocator: segregated free lists, threaded through the free blocks. Exact size from the lists, else the worst fit
// of the general list, else growth at the end of the space. Neighbours are never joined.
//
// A list, a class or the end of the space changes when what the block has to hold is written, so that a swap file that refuses
// leaves all as it was.

#include <algorithm>
#include <cstring>
#include <limits>

#include "hsys/Require.h"
#include "vmem/FreeBlock.h"
#include "vmem/PageLayout.h"

using vmem::kGeneral;
using vmem::kLeastBlock;
using vmem::kLeastGeneralBlock;
using vmem::kNoAddress;

namespace {

constexpr std::int32_t kSpaceLimit = std::numeric_limits<std::int32_t>::max();

bool Require(const TChar* proc, bool holds, const TChar* message) {
  return hsys::Require(TSTR("VMem"), proc, holds, message);
}

bool IsPageAddress(std::int32_t addr) { return vmem::OffsetInPage(addr) == 0; }

/// Bytes between the end of a space and its next page. A gap too small for a link takes a whole page more.
std::int32_t GapBefore(std::int32_t end) {
  const std::int32_t gap = vmem::OffsetInPage(kPageSize - vmem::OffsetInPage(end));
  return gap > 0 && gap < kLeastBlock ? gap + kPageSize : gap;
}

}  // namespace

/// A block of the general list, and its neighbours in it.
struct VMem::FreeBlock {
  std::int32_t before = kNoAddress;
  std::int32_t addr = kNoAddress;
  std::int32_t next = kNoAddress;
  std::int16_t len = 0;
};

void VMem::ResetLists() {
  std::fill(std::begin(freeHead), std::end(freeHead), kNoAddress);
  std::fill(std::begin(classSize), std::end(classSize), std::int16_t{0});
  std::fill(std::begin(freeCount), std::end(freeCount), 0);
  classSize[1] = 4;
  classSize[2] = 5;
  classSize[3] = kPageSize;
  classCount = vmem::kPermanentClasses;
  freePageHead = kNoAddress;
  freePageCount = 0;
}

void VMem::Alloc(std::int32_t& addr, std::int16_t len) {
  static constexpr const TChar* kProc = TSTR("Alloc");
  if (!OnOwnerThread() || !Require(kProc, len > 0, TSTR("len must be >0"))) return;
  len = std::max(len, kLeastBlock);
  if (len == kPageSize && freePageHead != kNoAddress) {
    Pop(freePageHead, freePageCount, addr);
    return;
  }
  const std::int32_t index = FindClass(len);
  if (index > 0 && freeHead[index] != kNoAddress) {
    if (!Pop(freeHead[index], freeCount[index], addr)) return;
    if (freeHead[index] == kNoAddress && index > vmem::kPermanentClasses) RemoveClass(index);
    return;
  }
  FreeBlock chosen;
  if (!FindFreeBlock(len, chosen)) return;
  if (chosen.addr != kNoAddress) {
    TakeFreeBlock(chosen, addr, len);
  } else if (HasRoom(len, kProc)) {
    addr = maxAddress;
    maxAddress += len;
  }
}

void VMem::AllocPage(std::int32_t& addr) {
  static constexpr const TChar* kProc = TSTR("AllocPage");
  if (!OnOwnerThread()) return;
  if (freePageHead != kNoAddress) {
    Pop(freePageHead, freePageCount, addr);
    return;
  }
  const std::int32_t gap = GapBefore(maxAddress);
  if (!HasRoom(gap + kPageSize, kProc)) return;
  const std::int32_t page = maxAddress + gap;
  if (!Require(kProc, IsPageAddress(page), TSTR("address is not a page address"))) return;
  if (gap > 0 && !Enlist(maxAddress, static_cast<std::int16_t>(gap), false)) return;
  maxAddress = page + kPageSize;
  addr = page;
}

std::int32_t VMem::PagesLeft() const {
  return freePageCount + std::max(0, (kSpaceLimit - maxAddress - GapBefore(maxAddress)) / kPageSize);
}

void VMem::Dealloc(std::int32_t& addr, std::int16_t len) {
  if (!OnOwnerThread()) return;
  Dealloc0(addr, len, true);
  CheckInvariants();
}

void VMem::DeallocPage(std::int32_t& addr) {
  if (!OnOwnerThread()) return;
  if (!Require(TSTR("DeallocPage"), IsPageAddress(addr), TSTR("address is not a page address"))) return;
  Dealloc0(addr, kPageSize, true);
}

/// Frees a block. A caller's block of a new size makes a class (`makeClass`); the allocator's own remainders do not.
void VMem::Dealloc0(std::int32_t& addr, std::int16_t len, bool makeClass) {
  static constexpr const TChar* kProc = TSTR("Dealloc0");
  const std::int32_t block = addr;
  addr = kNoAddress;
  if (!Require(kProc, len > 0, TSTR("len must be >0"))) return;
  len = std::max(len, kLeastBlock);
  if (!Require(kProc, block >= 0, TSTR("illegal address (<0)"))) return;
  if (!Require(kProc, block <= maxAddress - len, TSTR("illegal address (>max.address)"))) return;
  if (block == maxAddress - len) {
    maxAddress = block;
    return;
  }
  addr = block;
  if (Enlist(block, len, makeClass)) addr = kNoAddress;
}

/// Puts a block on the list for its length, unless what it has to hold there cannot be written. It may lie behind the end of a
/// space that is about to grow.
bool VMem::Enlist(std::int32_t block, std::int16_t len, bool makeClass) {
  if (len == kPageSize && IsPageAddress(block)) return Push(freePageHead, freePageCount, block);
  if (makeClass || len < kLeastGeneralBlock) {
    const std::int32_t index = FindClass(len);
    if (index > 0) return Push(freeHead[index], freeCount[index], block);
    if (classCount < vmem::kMostClasses) {
      // The next unused list is empty.
      if (!Push(freeHead[classCount + 1], freeCount[classCount + 1], block)) return false;
      classSize[++classCount] = len;
      return true;
    }
  }
  if (!Require(TSTR("Dealloc0"), len >= kLeastGeneralBlock, TSTR("len must be >=6"))) return false;
  unsigned char header[kLeastGeneralBlock];
  std::memcpy(header + vmem::kLinkOffset, &freeHead[kGeneral], sizeof freeHead[kGeneral]);
  std::memcpy(header + vmem::kLengthOffset, &len, sizeof len);
  if (!Store(block, header, sizeof header)) return false;
  freeHead[kGeneral] = block;
  ++freeCount[kGeneral];
  return true;
}

/// Whether the space can grow by `bytes`.
bool VMem::HasRoom(std::int32_t bytes, const TChar* proc) const {
  return Require(proc, bytes <= kSpaceLimit - maxAddress, TSTR("address space exhausted"));
}

/// The class of blocks of `len` bytes, or 0.
std::int32_t VMem::FindClass(std::int16_t len) const {
  std::int32_t index = classCount;
  while (index > 0 && classSize[index] != len) --index;
  return index;
}

/// Links a block in before the first of a list.
bool VMem::Push(std::int32_t& head, std::int32_t& count, std::int32_t addr) {
  if (!Store(addr + vmem::kLinkOffset, &head, sizeof head)) return false;
  head = addr;
  ++count;
  return true;
}

/// Takes the first block off a list.
bool VMem::Pop(std::int32_t& head, std::int32_t& count, std::int32_t& addr) {
  std::int32_t next = kNoAddress;
  if (!GetBlock(head + vmem::kLinkOffset, &next, sizeof next)) return false;
  addr = head;
  head = next;
  --count;
  return true;
}

void VMem::RemoveClass(std::int32_t index) {
  const auto closeGap = [&](auto& values, auto empty) {
    std::copy(values + index + 1, values + classCount + 1, values + index);
    values[classCount] = empty;
  };
  closeGap(freeHead, kNoAddress);
  closeGap(classSize, std::int16_t{0});
  closeGap(freeCount, 0);
  --classCount;
}

/// Chooses the first block of exactly `len` bytes, else the first of the largest if the remainder can hold a link, else none.
/// False behind a halt that returned.
bool VMem::FindFreeBlock(std::int16_t len, FreeBlock& chosen) {
  FreeBlock block;
  for (block.addr = freeHead[kGeneral]; block.addr != kNoAddress; block.before = block.addr, block.addr = block.next) {
    if (!GetBlock(block.addr + vmem::kLinkOffset, &block.next, sizeof block.next)) return false;
    if (!GetBlock(block.addr + vmem::kLengthOffset, &block.len, sizeof block.len)) return false;
    if (block.len > chosen.len || block.len == len) chosen = block;
    if (block.len == len) break;
  }
  if (chosen.len != len && chosen.len < len + kLeastBlock) chosen = {};
  return true;
}

/// Writes the link of the block before the chosen one. Where a page border cuts it and the second page is refused, the first, which
/// then could not leave the cache, gets its bytes back.
bool VMem::Relink(const FreeBlock& chosen) {
  struct Undo {
    ~Undo() {
      const std::int32_t offset = vmem::OffsetInPage(at);
      const std::size_t part = static_cast<std::size_t>(std::min<std::int32_t>(sizeof link, kPageSize - offset));
      CacheDesc* page = done ? nullptr : space.HashedPage(at - offset);
      if (page != nullptr) std::memcpy(page->data + offset, &link, part);
    }
    VMem& space;
    std::int32_t at;
    std::int32_t link;
    bool done;
  } undo{*this, chosen.before + vmem::kLinkOffset, chosen.addr, false};
  undo.done = SetBlock(undo.at, &chosen.next, sizeof chosen.next);
  return undo.done;
}

/// Takes a block out of the general list and gives its first `len` bytes. Where the remainder cannot be written the block stays
/// off every list and is not handed out either.
void VMem::TakeFreeBlock(const FreeBlock& chosen, std::int32_t& addr, std::int16_t len) {
  if (chosen.before == kNoAddress) {
    freeHead[kGeneral] = chosen.next;
  } else if (!Relink(chosen)) {
    return;
  }
  --freeCount[kGeneral];
  std::int32_t remainder = chosen.addr + len;
  if (chosen.len > len) {
    Dealloc0(remainder, static_cast<std::int16_t>(chosen.len - len), false);
    if (remainder != kNoAddress) return;
  }
  addr = chosen.addr;
}
