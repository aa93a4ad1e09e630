#include "vmem/PageTable.h"

#include <atomic>
#include <new>

namespace vmem {
namespace {

constinit std::atomic<PageTable*> kept = nullptr;

}  // namespace

PageTable* TakePageTable() {
  PageTable* table = kept.exchange(nullptr);
  return table != nullptr ? table : new (std::nothrow) PageTable();
}

void GivePageTable(PageTable* table) { delete kept.exchange(table); }

void FreeKeptPageTable() { GivePageTable(nullptr); }

}  // namespace vmem
