/// @file
/// The tables by which a cache finds its pages.
#pragma once

#include <cstdint>

#include "vmem/VMem.h"

namespace vmem {

/// One pair of tables, 256 KB. Whoever gives a pair back leaves every entry null, which takes as long as there are pages; clearing
/// it anew for each `VMem` would cost more than all the work on a small file.
struct PageTable {
  static constexpr std::int32_t kSize = 16384;

  CacheDesc* named[kSize];     ///< see rule K2
  CacheDesc* residues[kSize];  ///< see rule K3
};

/// A pair whose entries are all null, which the caller owns; null if the heap is exhausted. On any thread.
PageTable* TakePageTable();
/// Takes a pair back. One is kept for whoever needs the next, on any thread.
void GivePageTable(PageTable* table);
/// Frees the one that is kept.
void FreeKeptPageTable();

}  // namespace vmem
