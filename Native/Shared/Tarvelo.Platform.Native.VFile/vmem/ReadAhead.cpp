#include "vmem/ReadAhead.h"

#include <cstring>
#include <new>

#include "vmem/PageLayout.h"

namespace vmem {
namespace {

/// Pages that are asked for one behind the other before it is a run.
constexpr std::int32_t kLeastRun = 3;
/// How far behind the one before a page of a run may lie: those between are cached.
constexpr std::int32_t kMostAhead = 4 * kPageSize;

}  // namespace

bool ReadAhead::Take(std::int32_t addr, unsigned char* data) {
  for (Run& run : runs_) {
    if (addr < run.begin || addr >= run.end) continue;
    std::memcpy(data, run.room.get() + (addr - run.begin), kPageSize);
    run.next = addr + kPageSize;
    latest_ = static_cast<std::int32_t>(&run - runs_);
    return true;
  }
  return false;
}

std::int32_t ReadAhead::Miss(std::int32_t addr) {
  const auto goesOn = [&](const Run& run) { return addr >= run.next && addr - run.next < kMostAhead; };
  std::int32_t chosen = 0;
  while (chosen < kRuns && !(runs_[chosen].length > 0 && goesOn(runs_[chosen]))) ++chosen;
  if (chosen == kRuns) {
    chosen = (latest_ + 1) % kRuns;
    runs_[chosen].length = 0;
    runs_[chosen].begin = runs_[chosen].end = 0;
  }
  latest_ = chosen;
  Run& run = runs_[chosen];
  // The address behind the last page of all is no 32-bit number; no page follows that one.
  run.next = static_cast<std::int32_t>(static_cast<std::uint32_t>(addr) + kPageSize);
  if (run.length < kLeastRun) ++run.length;
  return run.length < kLeastRun ? 1 : kPages;
}

unsigned char* ReadAhead::Room() {
  Run& run = runs_[latest_];
  if (run.room == nullptr) run.room.reset(new (std::nothrow) unsigned char[kPages * kPageSize]);
  return run.room.get();
}

void ReadAhead::Hold(std::int32_t addr, std::int32_t pages) {
  runs_[latest_].begin = addr;
  runs_[latest_].end = addr + pages * kPageSize;
}

void ReadAhead::Forget(std::int32_t addr) {
  for (Run& run : runs_) {
    if (addr < run.begin || addr >= run.end) continue;
    // Those before it can still be asked for.
    run.end = addr;
  }
}

}  // namespace vmem
