#include "vmem/ReadAhead.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "vmem/PageLayout.h"

namespace vmem {
namespace {

/// Pages that are asked for one behind the other before it is a run.
constexpr std::int32_t kLeastRun = 3;
/// How far from the one before a page of a run may lie: those between are cached.
constexpr std::int32_t kMostApart = 4 * kPageSize;

}  // namespace

bool ReadAhead::Take(std::int32_t addr, unsigned char* data) {
  for (Run& run : runs_) {
    if (addr < run.begin || addr >= run.end) continue;
    std::memmove(data, run.room.get() + (addr - run.begin), kPageSize);
    run.last = addr;
    latest_ = static_cast<std::int32_t>(&run - runs_);
    return true;
  }
  return false;
}

ReadAhead::Stretch ReadAhead::Miss(std::int32_t addr, std::int32_t fileLen) {
  const auto isNear = [&](const Run& run) { return run.length > 0 && std::abs(addr - run.last) <= kMostApart; };
  std::int32_t chosen = 0;
  while (chosen < kRuns && !isNear(runs_[chosen])) ++chosen;
  if (chosen == kRuns) {
    chosen = (latest_ + 1) % kRuns;
    runs_[chosen].length = 0;
    runs_[chosen].begin = runs_[chosen].end = 0;
  }
  latest_ = chosen;
  Run& run = runs_[chosen];
  const bool rises = addr >= run.last;
  // A run that turns has its last page and this one.
  run.length = run.length > 1 && rises != run.rises ? 2 : std::min(run.length + 1, kLeastRun);
  run.rises = rises;
  run.last = addr;
  const std::int32_t pagesBehind = (fileLen - addr) / kPageSize;
  if (run.length < kLeastRun || pagesBehind == 0) return {addr, 1};
  if (rises) return {addr, std::min(pagesBehind, kPages)};
  const std::int32_t pages = std::min(addr / kPageSize + 1, kPages);
  return {addr - (pages - 1) * kPageSize, pages};
}

unsigned char* ReadAhead::Room() {
  Run& run = runs_[latest_];
  // Also where the reading fails half-way.
  run.begin = run.end = 0;
  if (run.room == nullptr) run.room.reset(new (std::nothrow) unsigned char[kPages * kPageSize]);
  return run.room.get();
}

void ReadAhead::Hold(const Stretch& stretch) {
  runs_[latest_].begin = stretch.begin;
  runs_[latest_].end = stretch.begin + stretch.pages * kPageSize;
}

void ReadAhead::Forget(std::int32_t addr) {
  for (Run& run : runs_) {
    if (addr < run.begin || addr >= run.end) continue;
    // Those before it stay.
    run.end = addr;
  }
}

}  // namespace vmem
