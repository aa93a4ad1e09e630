/// @file
/// How addresses fall into pages, and the lookup of a page that every transfer makes.
#pragma once

#include "vmem/VMem.h"

/// Bytes of a page. `VMem::pageSize` has the same value.
inline constexpr std::int32_t kPageBits = 10;
inline constexpr std::int32_t kPageSize = 1 << kPageBits;

namespace vmem {

constexpr std::int32_t OffsetInPage(std::int32_t addr) { return addr & (kPageSize - 1); }
/// The entry of a page in a hash table whose size is a power of two: its page number modulo that size.
constexpr std::int32_t HashIndex(std::int32_t addr, std::int32_t hashSize) {
  return (addr >> kPageBits) & (hashSize - 1);
}

}  // namespace vmem

/// The page that the hash table names for `addr`, a multiple of 1024; null if it names none.
inline CacheDesc* VMem::HashedPage(std::int32_t addr) const {
  CacheDesc* p = hashTable[vmem::HashIndex(addr, kHashSize)];
  return p != nullptr && p->addr == addr ? p : nullptr;
}

/// `FindPage`, without a call for a page that the hash table names.
inline CacheDesc* VMem::Page(std::int32_t addr) {
  CacheDesc* p = HashedPage(addr);
  if (p != nullptr) [[likely]]
    return p;
  return FindPage(addr);
}
