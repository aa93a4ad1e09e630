// The allocator: segregated free lists, threaded through the free blocks. Exact size from the lists, else the worst fit
// of the general list, else growth at the end of the space. Neighbours are never joined.

#include <algorithm>
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

}  // namespace

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
    addr = Pop(freePageHead, freePageCount);
    return;
  }
  const std::int32_t index = FindClass(len);
  if (index > 0 && freeHead[index] != kNoAddress) {
    addr = Pop(freeHead[index], freeCount[index]);
    if (freeHead[index] == kNoAddress && index > vmem::kPermanentClasses) RemoveClass(index);
    return;
  }
  if (AllocFromGeneralList(addr, len)) return;
  const std::int32_t end = maxAddress;
  if (Grow(len, kProc)) addr = end;
}

void VMem::AllocPage(std::int32_t& addr) {
  static constexpr const TChar* kProc = TSTR("AllocPage");
  if (!OnOwnerThread()) return;
  if (freePageHead != kNoAddress) {
    addr = Pop(freePageHead, freePageCount);
    return;
  }
  const std::int32_t gapStart = maxAddress;
  std::int32_t gap = vmem::OffsetInPage(pageSize - vmem::OffsetInPage(maxAddress));
  // A gap too small for a link takes a whole page more.
  if (gap > 0 && gap < kLeastBlock) gap += kPageSize;
  if (!Grow(gap + kPageSize, kProc)) return;
  const std::int32_t page = gapStart + gap;
  if (!Require(kProc, IsPageAddress(page), TSTR("address is not a page address"))) return;
  addr = page;
  std::int32_t gapAddr = gapStart;
  if (gap > 0) Dealloc0(gapAddr, static_cast<std::int16_t>(gap), false);
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
  if (len == kPageSize && IsPageAddress(block)) {
    Push(freePageHead, freePageCount, block);
    return;
  }
  if (makeClass || len < kLeastGeneralBlock) {
    std::int32_t index = FindClass(len);
    if (index == 0 && classCount < vmem::kMostClasses) {
      index = ++classCount;
      classSize[index] = len;
    }
    if (index > 0) {
      Push(freeHead[index], freeCount[index], block);
      return;
    }
  }
  if (!Require(kProc, len >= kLeastGeneralBlock, TSTR("len must be >=6"))) return;
  Push(freeHead[kGeneral], freeCount[kGeneral], block);
  Set(block + vmem::kLengthOffset, static_cast<short>(len));
}

/// Moves the end of the space up by `bytes`.
bool VMem::Grow(std::int32_t bytes, const TChar* proc) {
  if (!Require(proc, bytes <= kSpaceLimit - maxAddress, TSTR("address space exhausted"))) return false;
  maxAddress += bytes;
  return true;
}

/// The class of blocks of `len` bytes, or 0.
std::int32_t VMem::FindClass(std::int16_t len) const {
  std::int32_t index = classCount;
  while (index > 0 && classSize[index] != len) --index;
  return index;
}

void VMem::Push(std::int32_t& head, std::int32_t& count, std::int32_t addr) {
  if (!SetBlock(addr + vmem::kLinkOffset, &head, sizeof head)) return;
  head = addr;
  ++count;
}

std::int32_t VMem::Pop(std::int32_t& head, std::int32_t& count) {
  const std::int32_t addr = head;
  std::int32_t next = kNoAddress;
  if (!GetBlock(addr + vmem::kLinkOffset, &next, sizeof next)) return kNoAddress;
  head = next;
  --count;
  return addr;
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

/// Takes the first block of exactly `len` bytes, else cuts the first of the largest if the remainder can hold a link. False if
/// the list has no such block. Behind a halt that returned there is no address.
bool VMem::AllocFromGeneralList(std::int32_t& addr, std::int16_t len) {
  struct Block {
    std::int32_t before = kNoAddress;
    std::int32_t addr = kNoAddress;
    std::int32_t next = kNoAddress;
    short len = 0;
  };
  Block chosen;
  Block block;
  for (block.addr = freeHead[kGeneral]; block.addr != kNoAddress; block.before = block.addr, block.addr = block.next) {
    if (!GetBlock(block.addr + vmem::kLinkOffset, &block.next, sizeof block.next) ||
        !GetBlock(block.addr + vmem::kLengthOffset, &block.len, sizeof block.len)) {
      addr = kNoAddress;
      return true;
    }
    if (block.len > chosen.len || block.len == len) chosen = block;
    if (block.len == len) break;
  }
  if (chosen.len != len && chosen.len < len + kLeastBlock) return false;
  if (chosen.before == kNoAddress) {
    freeHead[kGeneral] = chosen.next;
  } else {
    Set(chosen.before + vmem::kLinkOffset, chosen.next);
  }
  --freeCount[kGeneral];
  addr = chosen.addr;
  std::int32_t remainder = chosen.addr + len;
  if (chosen.len > len) Dealloc0(remainder, static_cast<std::int16_t>(chosen.len - len), false);
  return true;
}
