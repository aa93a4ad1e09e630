/// @file
/// The class VMem.

/// @class VMem
/// A flat address space of up to 2^31-1 bytes outside process memory: paged, cached, and swapped to a temporary file.
///
///     char record[100] = {};
///     VMem vm;
///     std::int32_t addr;
///     vm.Alloc(addr, 100);
///     vm.Set(addr, record, 100);
///     vm.Get(addr, record, 100);
///     vm.Dealloc(addr, 100);
///
/// An address is a byte offset from the start of the space, never a pointer; -1 stands for none. All data go in and out by
/// copying. The space is cut into pages of 1024 bytes, of which a bounded number is cached on the heap, beside 256 KB of tables and up to 32 KB that are read ahead. Pages that fall
/// out of the cache go to a swap file, which comes into being when the first changed page has to be written, belongs to
/// this object alone, and is gone with it or with the process, however that ends.
///
/// Failures: there is no result code. Every operation succeeds or halts, under the module word "VMem"; a `Get` can need a
/// page of the cache and so can halt on a full disk just as a `Set` can. A halt leaves the space, its lists and its data sound:
/// the operation has done nothing, or has stopped where the failure was. Pages that could not be written stay in the cache, so
/// with a higher bound of the cache all data can still be read.
///
/// Thread: an object belongs to the thread that constructed it. All operations halt on another thread, except for
/// `WriteStatus` and the forms of `Get` and `Set`, which do not look.
///
/// Sections of the class, each in the file of its name: the object and its settings (VMem.cpp), cache (PageCache.cpp), swap
/// file (SwapFile.cpp), allocator (Allocator.cpp), transfer (Transfer.cpp), the checker (Invariants.cpp).
#pragma once

#include <cstdint>

#include "host/Export.h"
#include "host/Handle.h"
#include "host/Line.h"
#include "host/Unit.h"

/// One cached page. Owned by the cache of one `VMem`; a pointer to it is good only until the next page is asked for.
struct CacheDesc {
  CacheDesc* next;                       ///< Toward the tail of the list of cached pages; null at the tail.
  std::int32_t addr;                     ///< Address of the page, a multiple of 1024.
  bool dirty;                            ///< The swap file does not hold these data.
  alignas(16) unsigned char data[1024];  ///< The page.
  CacheDesc* prev;                       ///< Toward the head; null at the head.
  CacheDesc* sibling;                    ///< Next cached page that shares its entry of the hash table, or null.
};

namespace vmem {
class ReadAhead;
struct PageTable;
}  // namespace vmem

class VFILE_API VMem {
 public:
  /// An empty space with a cache of 70 kilobytes and no swap file. Halts if the heap is exhausted; behind a halt that returned, so do
  /// all operations.
  VMem();
  /// `DeallocAll`, with its thread check: it may halt, and so may throw where the installed halt procedure does.
  ~VMem() noexcept(false);

  VMem(const VMem&) = delete;
  VMem& operator=(const VMem&) = delete;

  /// @name Settings
  /// @{

  /// The directory set for the swap file, or null. Valid until the next `SetTempDir`.
  const TChar* GetTempDir();
  /// Sets the directory for the swap file, of which a copy is kept; null or empty clears it. It counts when the next swap
  /// file is made. Must not be given what `GetTempDir` gave. An exhausted heap leaves it cleared.
  void SetTempDir(const TChar* dir);
  /// Kilobytes that the cached pages take now.
  std::int16_t GetCacheSize();
  /// The bound of the cache in kilobytes, as set.
  std::int16_t GetMaxCacheSize();
  /// Sets the bound; a negative one counts as 0. A page costs 1036 bytes of it, and at least one page is cached whatever
  /// the bound. Pages above it leave the cache at once, the newest first.
  void SetMaxCacheSize(std::int16_t kilobytes);
  /// Has no effect.
  void WriteStatus();

  /// @}
  /// @name Cache
  /// @{

  /// Writes all changed pages to the swap file. They stay in the cache.
  void FlushCache();
  /// Writes all changed pages and empties the cache. All data stay reachable.
  void ReleaseCache();
  /// Drops the whole space with all data, the cache and the swap file. The settings stay, and the object can be used again.
  void DeallocAll();

  /// @}
  /// @name Allocator
  ///
  /// Blocks have no headers: the length is stated again when a block is freed. A new block holds what the space last held
  /// there. Lengths are in bytes, 1 to 32767; less than 4 count as 4. Halts: a length below 1 ("len must be >0"), an address
  /// outside the space ("illegal address (<0)", "illegal address (>max.address)"), a page off the grid ("address is not a
  /// page address"), a space that would pass 2^31-1 bytes ("address space exhausted").
  /// @{

  /// Gives a block of `len` bytes at any address.
  void Alloc(std::int32_t& addr, std::int16_t len);
  /// Gives a block of 1024 bytes at a multiple of 1024.
  void AllocPage(std::int32_t& addr);
  /// Frees a block of exactly `len` bytes; `addr` becomes -1. Where the swap file refuses what that takes, the block is not
  /// freed, and `addr` stays.
  void Dealloc(std::int32_t& addr, std::int16_t len);
  /// Frees a block of 1024 bytes at a multiple of 1024, likewise.
  void DeallocPage(std::int32_t& addr);
  /// How many pages `AllocPage` can give before the space ends, 2^21-1 in an empty one. Does not look at the thread.
  std::int32_t PagesLeft() const;

  /// @}
  /// @name Transfer
  ///
  /// A transfer must lie inside the space, 0 up to the end of what was allocated at its far end. Halts: a negative length
  /// ("length of specified virt.memory must be >0"), an address outside ("illegal address (<0)", "illegal address
  /// (>max.address)"), a null buffer ("buffer address must not be 0"). A length of 0 does nothing and looks at nothing else.
  /// The typed forms are the block form with the width of the type, in memory order, at any address; a `long double` is
  /// stored as a `double` of 8 bytes.
  /// @{

  /// Copies `len` bytes at `addr` to `buf`.
  void Get(std::int32_t addr, void* buf, std::int16_t len);
  /// @}
  /// @{
  /// Copies the value at `addr`.
  void Get(std::int32_t addr, signed char& value);
  void Get(std::int32_t addr, char& value);
  void Get(std::int32_t addr, unsigned char& value);
  void Get(std::int32_t addr, short& value);
  void Get(std::int32_t addr, unsigned short& value);
  void Get(std::int32_t addr, TChar& value);
  void Get(std::int32_t addr, int& value);
  void Get(std::int32_t addr, unsigned int& value);
  void Get(std::int32_t addr, long& value);
  void Get(std::int32_t addr, unsigned long& value);
  void Get(std::int32_t addr, long long& value);
  void Get(std::int32_t addr, unsigned long long& value);
  void Get(std::int32_t addr, float& value);
  void Get(std::int32_t addr, double& value);
  void Get(std::int32_t addr, long double& value);
  void Get(std::int32_t addr, void*& value);
  /// @}
  /// @{
  /// Copies `len` bytes from `buf` to `addr`.
  void Set(std::int32_t addr, const void* buf, std::int16_t len);
  /// @}
  /// @{
  /// Copies the value to `addr`.
  void Set(std::int32_t addr, signed char value);
  void Set(std::int32_t addr, char value);
  void Set(std::int32_t addr, unsigned char value);
  void Set(std::int32_t addr, short value);
  void Set(std::int32_t addr, unsigned short value);
  void Set(std::int32_t addr, TChar value);
  void Set(std::int32_t addr, int value);
  void Set(std::int32_t addr, unsigned int value);
  void Set(std::int32_t addr, long value);
  void Set(std::int32_t addr, unsigned long value);
  void Set(std::int32_t addr, long long value);
  void Set(std::int32_t addr, unsigned long long value);
  void Set(std::int32_t addr, float value);
  void Set(std::int32_t addr, double value);
  void Set(std::int32_t addr, long double value);
  void Set(std::int32_t addr, void* value);
  /// @}
  /// @{
  /// Copies `len` bytes inside the space, from `src` to `dst`; the ranges may overlap. A range that leaves the space is
  /// found by the 1024-byte chunk that does. A negative length halts ("len must be >=0").
  void CopyBytes(std::int32_t dst, std::int32_t src, std::int16_t len);
  /// @}
  /// @{
  /// `Get`, `Set` and `CopyBytes`, telling whether they came to their end; otherwise a halt has returned.
  bool GetBlock(std::int32_t addr, void* buf, std::int32_t len);
  bool SetBlock(std::int32_t addr, const void* buf, std::int32_t len);
  bool CopyBlock(std::int32_t dst, std::int32_t src, std::int32_t len);

  /// Whether the page at `addr` is cached so that a transfer finds it at once. Touches nothing.
  bool IsAtHand(std::int32_t addr) const;

  /// @}

 protected:
  // The data model, for derived classes to look at: a checker, a dump, a test.
  //
  // The list of cached pages runs from `cacheHead` by `next` to the tail; the hash table is its index, one entry for
  // each of 16384 residues of the page number, with no chains.
  //   K1  `cacheCount` is the length of the list; a page is in it at most once; `prev` mirrors `next`; `cacheTail` is its
  //       last member, null when it is empty.
  //   K2  A hash entry is null, or points to a member of the list whose page has that residue. A page can be in the list
  //       without being in the table, after another of its residue took the entry.
  //   K3  `residueHead` heads, for each residue, the chain by `sibling` of all members of the list that have it.
  //   K4  A page is in the file if its address is below `fileLen`: a multiple of 1024, or 2^31-1 behind the last page of
  //       all; 0 while there is no file. A page that is neither cached nor in the file reads as zeros.
  //   K5  Pages lie on the grid: `addr` is a multiple of 1024, from 0 up.
  // Replacement goes by the order of loading: new pages enter at the head and the victim leaves at the tail. A page found
  // through the table keeps its place; only one found by searching the list moves to the head.
  //
  // The free lists run through the free blocks themselves, last in, first out, and end in -1:
  //   A1  Free pages: `freePageCount` blocks of 1024 bytes at multiples of 1024, from `freePageHead`.
  //   A2  Classes 1 to `classCount`: `freeCount[i]` blocks of exactly `classSize[i]` bytes, from `freeHead[i]`. The classes 1, 2 and 3 of
  //       4, 5 and 1024 bytes are permanent; one above is made by the first block freed of its size and goes with the
  //       last. No two have the same size.
  //   A3  The general list: `freeCount[0]` blocks of any length of at least 6, from `freeHead[0]`.
  //   A4  Free blocks lie inside the space and do not overlap. Neighbours are never joined.
  // A free block holds, at its start, little-endian (FreeBlock.h):
  //   OFFSET  SIZE  CONTENT
  //   0       4     address of the next block of the list, or -1
  //   4       2     its length, on the general list alone

  /// The name of the first rule above that does not hold, or null. Touches neither the cache nor the order in it; costs the
  /// size of the cache for each page of a free list. A checking build halts under "VMem" with the name.
  const TChar* BrokenRule() const;

  static constexpr std::int32_t kHashSize = 16384;  ///< entries of the hash table
  static constexpr std::int32_t kListCount = 17;    ///< lists of free blocks

  std::int32_t pageSize;               ///< 1024, always
  HANDLE swapFile;                     ///< owned; INVALID_HANDLE_VALUE while there is none
  TChar* tempDir;                      ///< owned heap copy of the setting, or null
  TChar* swapFileName;                 ///< owned heap copy of the swap file's name while it exists, or null
  std::uint32_t ownerThread;           ///< id of the constructing thread; 0 after the destructor
  CacheDesc* spareDesc;                ///< owned; allocated in advance, in the list only as its first page
  CacheDesc* cacheHead;                ///< owns the list
  CacheDesc** hashTable;               ///< `kHashSize` entries, see K2; part of `pageTable`
  std::int16_t cacheCount;             ///< cached pages
  std::int16_t cacheLimit;             ///< pages that the cache may hold; one is held even if it is 0
  std::int16_t maxCacheSize;           ///< the bound as set, in kilobytes
  std::int32_t maxAddress;             ///< end of the space
  std::int32_t fileLen;                ///< bytes of the swap file
  std::int16_t classCount;             ///< size classes in use, 3 to 16
  std::int32_t freeHead[kListCount];   ///< first block of each list, or -1
  std::int16_t classSize[kListCount];  ///< bytes of each class's blocks; 0 for the general list and unused classes
  std::int32_t freeCount[kListCount];  ///< blocks in each list
  std::int32_t freePageHead;           ///< first free page, or -1
  std::int32_t freePageCount;          ///< free pages
  CacheDesc* cacheTail;                ///< the next victim
  CacheDesc** residueHead;             ///< `kHashSize` entries, see K3; part of `pageTable`
  vmem::PageTable* pageTable;          ///< owned
  vmem::ReadAhead* readAhead;          ///< owned; made with the first read of the swap file

 private:
  struct FreeBlock;

  bool OnOwnerThread(std::int32_t line = VFILE_LINE) const;

  // PageCache.cpp: the list and the hash table.
  CacheDesc* Page(std::int32_t addr);
  CacheDesc* HashedPage(std::int32_t addr) const;
  CacheDesc* FindPage(std::int32_t addr);
  CacheDesc* PageToOverwrite(std::int32_t addr);
  CacheDesc* CachedPage(std::int32_t addr) const;
  CacheDesc* UseCached(CacheDesc* p);
  CacheDesc* LoadPage(std::int32_t addr, bool read);
  void PrefetchVictim() const;
  CacheDesc* TakeDescriptor();
  CacheDesc* Victim() const;
  bool FillPage(CacheDesc* p);
  void LinkHead(CacheDesc* p);
  void Unlink(CacheDesc* p);
  void NewCachePtr(CacheDesc*& p);
  void DisposeCachePtr(CacheDesc*& p);
  void UnHashCachePtr(CacheDesc* p);
  void ShrinkCache(std::int16_t count);
  void DropCache();

  // SwapFile.cpp
  bool FlushCachePtr(CacheDesc* p, bool flushingAll);
  bool SeekInSwapFile(std::int32_t addr, const TChar* proc);
  bool ReadFromSwapFile(std::int32_t addr, unsigned char* data);
  bool TakeReadAhead(std::int32_t addr, unsigned char* data);
  bool ExtendFile(std::int32_t newLen, bool flushingAll);
  bool WriteToSwapFile(std::int32_t addr, const unsigned char* data, std::int32_t count, const TChar* proc);
  void CloseSwapFile();

  // Allocator.cpp
  void ResetLists();
  void Dealloc0(std::int32_t& addr, std::int16_t len, bool makeClass);
  bool Enlist(std::int32_t block, std::int16_t len, bool makeClass);
  bool HasRoom(std::int32_t bytes, const TChar* proc) const;
  std::int32_t FindClass(std::int16_t len) const;
  bool Push(std::int32_t& head, std::int32_t& count, std::int32_t addr);
  bool Pop(std::int32_t& head, std::int32_t& count, std::int32_t& addr);
  void RemoveClass(std::int32_t index);
  bool Relink(const FreeBlock& chosen);
  bool FindFreeBlock(std::int16_t len, FreeBlock& chosen);
  void TakeFreeBlock(const FreeBlock& chosen, std::int32_t& addr, std::int16_t len);

  // Invariants.cpp
  void CheckInvariants() const;
  const TChar* BrokenCacheRule() const;
  const TChar* BrokenListRule() const;
  bool Peek(std::int32_t addr, void* buf, std::int32_t len) const;

  // Transfer.cpp
  bool Store(std::int32_t addr, const void* buf, std::int32_t len);
  bool IsAccess(std::int32_t addr, const void* buf, std::int32_t len, const TChar* proc) const;
  template <typename Value>
  VFILE_LOCAL void GetValue(std::int32_t addr, Value& value);
  template <typename Value>
  VFILE_LOCAL void SetValue(std::int32_t addr, const Value& value);
};
