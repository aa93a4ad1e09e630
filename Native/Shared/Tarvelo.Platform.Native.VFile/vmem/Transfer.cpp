#include <algorithm>
#include <cstring>

#include "hsys/Require.h"
#include "hsys/WrapAdd.h"
#include "vmem/PageLayout.h"

// ---- Hot paths: a value inside one page ----

template <typename Value>
inline void VMem::GetValue(std::int32_t addr, Value& value) {
  constexpr std::int32_t kWidth = sizeof(Value);
  const std::int32_t offset = vmem::OffsetInPage(addr);
  if (addr >= 0 && addr <= maxAddress - kWidth && offset <= kPageSize - kWidth) [[likely]] {
    if (const CacheDesc* p = Page(addr - offset)) std::memcpy(&value, p->data + offset, kWidth);
  } else {
    Get(addr, &value, kWidth);
  }
}

template <typename Value>
inline void VMem::SetValue(std::int32_t addr, const Value& value) {
  constexpr std::int32_t kWidth = sizeof(Value);
  const std::int32_t offset = vmem::OffsetInPage(addr);
  if (addr >= 0 && addr <= maxAddress - kWidth && offset <= kPageSize - kWidth) [[likely]] {
    if (CacheDesc* p = Page(addr - offset)) {
      std::memcpy(p->data + offset, &value, kWidth);
      p->dirty = true;
    }
  } else {
    Set(addr, &value, kWidth);
  }
}

// ---- Blocks ----
//
// Pages are copied by memmove, which is a call: a memcpy whose bound the compiler sees becomes a string instruction, which takes half
// as long again for a page.

bool VMem::IsAccess(std::int32_t addr, const void* buf, std::int32_t len, const TChar* proc) const {
  const auto require = [&](bool holds, const TChar* message) {
    return hsys::Require(TSTR("VMem"), proc, holds, message);
  };
  return require(len > 0, TSTR("length of specified virt.memory must be >0")) &&
         require(addr >= 0, TSTR("illegal address (<0)")) &&
         require(addr <= maxAddress - len, TSTR("illegal address (>max.address)")) &&
         require(buf != nullptr, TSTR("buffer address must not be 0"));
}

void VMem::Get(std::int32_t addr, void* buf, std::int16_t len) { GetBlock(addr, buf, len); }

void VMem::Set(std::int32_t addr, const void* buf, std::int16_t len) { SetBlock(addr, buf, len); }

bool VMem::GetBlock(std::int32_t addr, void* buf, std::int32_t len) {
  if (len == 0) return true;
  if (!IsAccess(addr, buf, len, TSTR("Get"))) return false;
  auto* bytes = static_cast<unsigned char*>(buf);
  std::int32_t left = len;
  std::int32_t offset = vmem::OffsetInPage(addr);
  for (std::int32_t page = addr - offset; left > 0; page = hsys::WrapAdd(page, kPageSize), offset = 0) {
    const CacheDesc* p = Page(page);
    if (p == nullptr) return false;
    const std::int32_t part = std::min(left, kPageSize - offset);
    std::memmove(bytes, p->data + offset, static_cast<std::size_t>(part));
    bytes += part;
    left -= part;
  }
  return true;
}

bool VMem::SetBlock(std::int32_t addr, const void* buf, std::int32_t len) {
  if (len == 0) return true;
  return IsAccess(addr, buf, len, TSTR("Set")) && Store(addr, buf, len);
}

bool VMem::IsAtHand(std::int32_t addr) const { return HashedPage(addr - vmem::OffsetInPage(addr)) != nullptr; }

/// Copies bytes to an address that need not lie inside the space.
bool VMem::Store(std::int32_t addr, const void* buf, std::int32_t len) {
  const auto* bytes = static_cast<const unsigned char*>(buf);
  std::int32_t left = len;
  std::int32_t offset = vmem::OffsetInPage(addr);
  for (std::int32_t page = addr - offset; left > 0; page = hsys::WrapAdd(page, kPageSize), offset = 0) {
    const std::int32_t part = std::min(left, kPageSize - offset);
    CacheDesc* p = part == kPageSize ? PageToOverwrite(page) : Page(page);
    if (p == nullptr) return false;
    std::memmove(p->data + offset, bytes, static_cast<std::size_t>(part));
    p->dirty = true;
    bytes += part;
    left -= part;
  }
  return true;
}

void VMem::CopyBytes(std::int32_t dst, std::int32_t src, std::int16_t len) { CopyBlock(dst, src, len); }

bool VMem::CopyBlock(std::int32_t dst, std::int32_t src, std::int32_t len) {
  if (!OnOwnerThread()) return false;
  if (!hsys::Require(TSTR("VMem"), TSTR("CopyBytes"), len >= 0, TSTR("len must be >=0"))) return false;
  if (len == 0 || dst == src) return true;
  unsigned char chunk[kPageSize];
  const bool forward = dst < src || len <= kPageSize;
  for (std::int32_t done = 0; done < len;) {
    const std::int32_t part = std::min(len - done, kPageSize);
    const std::int32_t at = forward ? done : len - done - part;
    // A sum that leaves 32 bits comes out negative, which the transfer refuses.
    if (!GetBlock(hsys::WrapAdd(src, at), chunk, part) || !SetBlock(hsys::WrapAdd(dst, at), chunk, part)) {
      return false;
    }
    done += part;
  }
  return true;
}

// ---- Typed forms ----

void VMem::Get(std::int32_t addr, signed char& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, char& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, unsigned char& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, short& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, unsigned short& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, TChar& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, int& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, unsigned int& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, long& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, unsigned long& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, long long& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, unsigned long long& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, float& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, double& value) { GetValue(addr, value); }
void VMem::Get(std::int32_t addr, void*& value) { GetValue(addr, value); }

void VMem::Get(std::int32_t addr, long double& value) {
  double stored = 0;
  GetValue(addr, stored);
  value = stored;
}

void VMem::Set(std::int32_t addr, signed char value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, char value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, unsigned char value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, short value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, unsigned short value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, TChar value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, int value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, unsigned int value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, long value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, unsigned long value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, long long value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, unsigned long long value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, float value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, double value) { SetValue(addr, value); }
void VMem::Set(std::int32_t addr, long double value) { SetValue(addr, static_cast<double>(value)); }
void VMem::Set(std::int32_t addr, void* value) { SetValue(addr, value); }
