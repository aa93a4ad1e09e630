#include "vmem/VMem.h"

#include <algorithm>
#include <memory>
#include <new>

#include "host/Host.h"
#include "hsys/CopyUnits.h"
#include "hsys/Require.h"
#include "vmem/PageLayout.h"
#include "vmem/PageTable.h"

namespace {

constexpr std::int16_t kDefaultCacheSize = 70;
constexpr std::int32_t kKilobyte = 1024;
/// Cost of a cached page for the conversion between kilobytes and pages.
constexpr std::int32_t kCachedPageCost = 1036;

}  // namespace

VMem::VMem() {
  pageSize = kPageSize;
  swapFile = INVALID_HANDLE_VALUE;
  tempDir = nullptr;
  swapFileName = nullptr;
  ownerThread = host::GetCurrentThreadId();
  spareDesc = nullptr;
  cacheHead = nullptr;
  hashTable = nullptr;
  cacheCount = 0;
  maxAddress = 0;
  fileLen = 0;
  ResetLists();
  cacheTail = nullptr;
  residueHead = nullptr;
  pageTable = nullptr;
  readAhead = nullptr;
  // Should the descriptor be refused by a halt that throws, the tables go back.
  std::unique_ptr<vmem::PageTable, void (*)(vmem::PageTable*)> table(vmem::TakePageTable(), vmem::GivePageTable);
  if (!hsys::Require(TSTR("VMem"), TSTR("NewCachePtr"), table != nullptr, TSTR("p==NIL"))) {
    ownerThread = 0;
    return;
  }
  NewCachePtr(spareDesc);
  if (spareDesc != nullptr) *spareDesc = CacheDesc{};
  static_assert(vmem::PageTable::kSize == kHashSize);
  pageTable = table.release();
  hashTable = pageTable->named;
  residueHead = pageTable->residues;
  SetMaxCacheSize(kDefaultCacheSize);
}

VMem::~VMem() noexcept(false) {
  if (pageTable == nullptr || !OnOwnerThread()) return;
  DeallocAll();
  vmem::GivePageTable(pageTable);
  pageTable = nullptr;
  delete[] tempDir;
  tempDir = nullptr;
  ownerThread = 0;
}

bool VMem::OnOwnerThread(std::int32_t line) const {
  return hsys::Require(TSTR("VMem"), ownerThread == host::GetCurrentThreadId(), line);
}

const TChar* VMem::GetTempDir() { return OnOwnerThread() ? tempDir : nullptr; }

void VMem::SetTempDir(const TChar* dir) {
  if (!OnOwnerThread()) return;
  delete[] tempDir;
  tempDir = dir != nullptr && *dir != 0 ? hsys::CopyUnits(dir) : nullptr;
}

std::int16_t VMem::GetCacheSize() {
  if (!OnOwnerThread()) return 0;
  return static_cast<std::int16_t>(cacheCount * kCachedPageCost / kKilobyte);
}

std::int16_t VMem::GetMaxCacheSize() { return OnOwnerThread() ? maxCacheSize : std::int16_t{0}; }

void VMem::SetMaxCacheSize(std::int16_t kilobytes) {
  if (!OnOwnerThread()) return;
  maxCacheSize = std::max(kilobytes, std::int16_t{0});
  cacheLimit = static_cast<std::int16_t>(maxCacheSize * kKilobyte / kCachedPageCost);
  ShrinkCache(cacheLimit);
}

void VMem::WriteStatus() {}

void VMem::DeallocAll() {
  if (!OnOwnerThread()) return;
  DropCache();
  maxAddress = 0;
  ResetLists();
  CloseSwapFile();
}
