// The swap file: a flat image of the address space, the page at address A at byte A. No header, no holes; its length only
// grows. It goes with its handle, so no end of the process leaves it behind.

#include "vmem/SwapFile.h"

#include <algorithm>
#include <limits>
#include <new>
#include <string>

#include "host/Host.h"
#include "hsys/CopyUnits.h"
#include "hsys/HostNames.h"
#include "hsys/NumberText.h"
#include "hsys/Require.h"
#include "hsys/Strings.h"
#include "hsys/TempDirectory.h"
#include "hsys/TempNumbers.h"
#include "vmem/PageLayout.h"
#include "vmem/ReadAhead.h"

namespace {

constexpr std::int32_t kNumbers = 100000;
constexpr std::int64_t kLongestFile = std::numeric_limits<std::int32_t>::max();

bool Require(const TChar* proc, bool holds, const TChar* message) {
  return hsys::Require(TSTR("VMem"), proc, holds, message);
}

/// Adds "~vmem<number>.tmp" to the directory in `name`; false if it does not fit.
bool AppendFileName(TChar (&name)[hsys::kNameSize], std::int32_t number) {
  AppendStr(name, hsys::kNameSize, TSTR("~vmem"));
  AppendStr(name, hsys::kNameSize, hsys::NumberText<TChar>(number, 10).text);
  AppendStr(name, hsys::kNameSize, TSTR(".tmp"));
  return std::char_traits<TChar>::length(name) + 1 < hsys::kNameSize;
}

/// Whether the error says that somebody has the name. Any other would meet every name.
bool IsTaken(std::uint32_t error) {
  return error == host::ERROR_FILE_EXISTS || error == host::ERROR_ALREADY_EXISTS ||
         error == host::ERROR_SHARING_VIOLATION;
}

/// The directory with its separator.
void ChooseDirectory(TChar (&name)[hsys::kNameSize], const TChar* dir) {
  if (hsys::IsUsableDirectory(dir)) {
    AssignStr(name, hsys::kNameSize, dir);
  } else {
    hsys::FindTempDirectory(name);
  }
  hsys::CondAppendDirSep(name, hsys::kNameSize);
}

host::OVERLAPPED PlaceOf(std::int32_t addr) { return {static_cast<std::uint32_t>(addr), 0}; }

}  // namespace

HANDLE vmem::CreateSwapFile(TChar* name, std::uint32_t capacity, const TChar* dir) {
  const bool valid = hsys::Require(TSTR("VMem"), name != nullptr) && hsys::Require(TSTR("VMem"), capacity > 0);
  if (!valid) return INVALID_HANDLE_VALUE;
  TChar directory[hsys::kNameSize];
  ChooseDirectory(directory, dir);
  hsys::TempNumbers numbers(static_cast<std::int32_t>(host::GetTickCount() % kNumbers), kNumbers);
  for (bool left = true; left;) {
    TChar full[hsys::kNameSize];
    AssignStr(full, hsys::kNameSize, directory);
    bool tooLong = !AppendFileName(full, numbers.Number());
    if (!tooLong) {
      const HANDLE file = host::CreateFileW(
          full, host::GENERIC_READ | host::GENERIC_WRITE, 0, host::CREATE_ALWAYS,
          host::FILE_ATTRIBUTE_NORMAL | host::FILE_FLAG_RANDOM_ACCESS | host::FILE_FLAG_DELETE_ON_CLOSE);
      if (file != INVALID_HANDLE_VALUE) {
        AssignStr(name, capacity, full);
        return file;
      }
      const std::uint32_t error = host::GetLastError();
      tooLong = error == host::ERROR_FILENAME_EXCED_RANGE;
      if (!tooLong && !IsTaken(error)) break;
    }
    left = tooLong ? numbers.SkipToShortest() : numbers.Step();
  }
  return INVALID_HANDLE_VALUE;
}

/// Writes the page if it is dirty. False behind a halt that returned, when the descriptor may be gone. `flushingAll` says that all
/// other dirty pages are written next.
bool VMem::FlushCachePtr(CacheDesc* p, bool flushingAll) {
  static constexpr const TChar* kProc = TSTR("FlushCachePtr");
  if (!p->dirty) return true;
  if (swapFile == INVALID_HANDLE_VALUE) {
    TChar name[hsys::kNameSize];
    swapFile = vmem::CreateSwapFile(name, hsys::kNameSize, tempDir);
    if (!Require(kProc, swapFile != INVALID_HANDLE_VALUE, TSTR("swap file creation failed"))) return false;
    swapFileName = hsys::CopyUnits(name);
  }
  if (!ExtendFile(p->addr, flushingAll)) return false;
  if (!WriteToSwapFile(p->addr, p->data, kPageSize, kProc)) return false;
  // The end of the last page of all is no 32-bit number; it counts as the largest.
  const std::int64_t end = std::int64_t{p->addr} + kPageSize;
  fileLen = static_cast<std::int32_t>(std::min(std::max<std::int64_t>(fileLen, end), kLongestFile));
  p->dirty = false;
  return true;
}

/// Makes the file `newLen` bytes long: no page of it is ever unwritten. With zeros, but for the dirty pages on the way where all are
/// flushed.
bool VMem::ExtendFile(std::int32_t newLen, bool flushingAll) {
  static constexpr unsigned char kZeros[kPageSize] = {};
  while (fileLen < newLen) {
    CacheDesc* p = flushingAll ? CachedPage(fileLen) : nullptr;
    if (p != nullptr && !p->dirty) p = nullptr;
    if (!WriteToSwapFile(fileLen, p != nullptr ? p->data : kZeros, kPageSize, TSTR("ExtendFile"))) return false;
    fileLen += kPageSize;
    if (p != nullptr) p->dirty = false;
  }
  return true;
}

// A transfer carries its place, since others may share the position. One that fails is made again in its two steps, to
// tell which of them it is that fails.

bool VMem::WriteToSwapFile(std::int32_t addr, const unsigned char* data, std::int32_t count, const TChar* proc) {
  if (readAhead != nullptr) readAhead->Forget(addr);
  std::uint32_t done = 0;
  const auto wanted = static_cast<std::uint32_t>(count);
  if (host::WriteFile(swapFile, data, wanted, &done, PlaceOf(addr)) && done == wanted) return true;
  if (!SeekInSwapFile(addr, proc)) return false;
  const bool written = host::WriteFile(swapFile, data, wanted, &done) && done == wanted;
  return Require(proc, written, TSTR("writing on swap file failed (disk full?)"));
}

bool VMem::ReadFromSwapFile(std::int32_t addr, unsigned char* data) {
  static constexpr const TChar* kProc = TSTR("FindPage");
  if (TakeReadAhead(addr, data)) return true;
  std::uint32_t done = 0;
  if (host::ReadFile(swapFile, data, kPageSize, &done, PlaceOf(addr)) && done == kPageSize) return true;
  if (!SeekInSwapFile(addr, kProc)) return false;
  const bool read = host::ReadFile(swapFile, data, kPageSize, &done) && done == kPageSize;
  return Require(kProc, read, TSTR("reading from swap file failed"));
}

/// Serves a page that was read before it was asked for, or reads a run of pages from it on where it follows one. False if the page
/// has to be read by itself, as it has to where the run fails.
bool VMem::TakeReadAhead(std::int32_t addr, unsigned char* data) {
  if (readAhead == nullptr) readAhead = new (std::nothrow) vmem::ReadAhead;
  if (readAhead == nullptr) return false;
  if (readAhead->Take(addr, data)) return true;
  const vmem::ReadAhead::Stretch stretch = readAhead->Miss(addr, fileLen);
  unsigned char* room = stretch.pages > 1 ? readAhead->Room() : nullptr;
  if (room == nullptr) return false;
  std::uint32_t done = 0;
  const auto wanted = static_cast<std::uint32_t>(stretch.pages * kPageSize);
  if (!host::ReadFile(swapFile, room, wanted, &done, PlaceOf(stretch.begin)) || done != wanted) return false;
  readAhead->Hold(stretch);
  return readAhead->Take(addr, data);
}

bool VMem::SeekInSwapFile(std::int32_t addr, const TChar* proc) {
  const bool sought = host::SetFilePointer(swapFile, addr, host::FILE_BEGIN) != host::INVALID_SET_FILE_POINTER;
  return Require(proc, sought, TSTR("seeking in swap file failed"));
}

void VMem::CloseSwapFile() {
  if (swapFile != INVALID_HANDLE_VALUE) host::CloseHandle(swapFile);
  swapFile = INVALID_HANDLE_VALUE;
  delete[] swapFileName;
  swapFileName = nullptr;
  delete readAhead;
  readAhead = nullptr;
  fileLen = 0;
}
