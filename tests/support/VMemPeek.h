/// @file
/// A `VMem` whose data model a test can look at.
#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "host/Host.h"
#include "support/Halts.h"
#include "vmem/VMem.h"

namespace support {

using Addresses = std::vector<std::int32_t>;

/// Bytes that no shift by less than their count maps onto themselves.
inline std::string Pattern(std::int32_t count, std::uint32_t seed = 1) {
  std::string bytes;
  for (; count > 0; --count) {
    seed = seed * 1103515245 + 12345;
    bytes += static_cast<char>(seed >> 16);
  }
  return bytes;
}

struct Peek : VMem {
  using VMem::cacheHead, VMem::cacheCount, VMem::cacheLimit, VMem::spareDesc, VMem::classCount, VMem::classSize;
  using VMem::freeCount, VMem::freeHead, VMem::freePageHead, VMem::swapFile, VMem::swapFileName, VMem::fileLen,
      VMem::maxAddress;

  ~Peek() noexcept = default;

  /// The name of an invariant that does not hold, or nothing.
  std::string Rule() const { return BrokenRule() != nullptr ? Narrow(BrokenRule()) : ""; }
  /// What tells one state from most others.
  auto Shape() const {
    return std::tuple(Rule(), cacheHead, cacheCount, maxAddress, swapFile, freeHead[0], freePageHead);
  }
  /// What the swap file has at a place, at most `len` bytes.
  std::string InFile(std::uint32_t place, std::uint32_t len) const {
    std::string bytes(len, '?');
    std::uint32_t done = 0;
    EXPECT_TRUE(host::ReadFile(swapFile, bytes.data(), len, &done, {place, 0}));
    return bytes.substr(0, done);
  }
  /// Takes the end of the swap file away.
  void CutFile(std::int32_t size) const {
    host::SetFilePointer(swapFile, size, host::FILE_BEGIN);
    EXPECT_TRUE(host::SetEndOfFile(swapFile));
  }
  /// A new block of `len` bytes, 0 for a page; -7 if it was refused.
  std::int32_t Take(std::int32_t len) {
    std::int32_t addr = -7;
    if (len != 0) {
      Alloc(addr, static_cast<std::int16_t>(len));
    } else {
      AllocPage(addr);
    }
    return addr;
  }
  void Free(std::int32_t addr, std::int32_t len) {
    Dealloc(addr, static_cast<std::int16_t>(len));
    EXPECT_EQ(addr, -1);
  }
  /// Sets the bound that allows so many pages.
  void SetLimit(std::int32_t pages) { SetMaxCacheSize(static_cast<std::int16_t>(pages == 0 ? 0 : pages + 1)); }
  /// Reads a byte of each page.
  void Touch(const Addresses& pages) {
    for (const std::int32_t page : pages) Read(page * 1024, 1);
  }
  /// Fills each page with content of its own.
  void Mark(const Addresses& pages) {
    for (const std::int32_t page : pages) Write(page * 1024, Content(page));
  }
  static std::string Content(std::int32_t page) { return Pattern(1024, static_cast<std::uint32_t>(page)); }
  std::string Read(std::int32_t addr, std::int32_t len) {
    std::string bytes(static_cast<std::size_t>(len), '?');
    Get(addr, bytes.data(), static_cast<std::int16_t>(len));
    return bytes;
  }
  void Write(std::int32_t addr, const std::string& bytes) {
    Set(addr, bytes.data(), static_cast<std::int16_t>(bytes.size()));
  }
};

}  // namespace support
