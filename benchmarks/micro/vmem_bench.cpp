// The page cache: what an access costs that finds its page, and one that does not.

#include <benchmark/benchmark.h>
#include <vector>

#include "vmem/VMem.h"

namespace {

constexpr std::int32_t kPage = 1024;

/// A space of `count` pages, each written once.
void Fill(VMem& space, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) {
    std::int32_t addr = -1;
    space.AllocPage(addr);
    space.Set(addr, i);
  }
}

void GetOfCachedPage(benchmark::State& state) {
  VMem space;
  Fill(space, 64);
  std::int32_t addr = 0;
  std::int32_t sum = 0;
  for (auto _ : state) {
    int value = 0;
    space.Get(addr, value);
    sum += value;
    addr = (addr + kPage + 4) & (64 * kPage - 1);
  }
  benchmark::DoNotOptimize(sum);
}
BENCHMARK(GetOfCachedPage);

void SetOfCachedPage(benchmark::State& state) {
  VMem space;
  Fill(space, 64);
  std::int32_t addr = 0;
  for (auto _ : state) {
    space.Set(addr, 1);
    addr = (addr + kPage + 4) & (64 * kPage - 1);
  }
}
BENCHMARK(SetOfCachedPage);

/// Goes round a space of a quarter more pages than the cache holds, so that every access misses. Argument: the bound in
/// kilobytes. Pages are clean, so a miss is one read of the swap file.
void GetOfMissingPage(benchmark::State& state) {
  VMem space;
  const auto kilobytes = static_cast<std::int16_t>(state.range(0));
  space.SetMaxCacheSize(kilobytes);
  const std::int32_t count = kilobytes + kilobytes / 4;
  Fill(space, count);
  space.FlushCache();
  std::int32_t page = 0;
  for (auto _ : state) {
    int value = 0;
    space.Get(page * kPage, value);
    benchmark::DoNotOptimize(value);
    page = page + 1 == count ? 0 : page + 1;
  }
}
BENCHMARK(GetOfMissingPage)->Arg(70)->Arg(32767);

/// The same with changed pages: a miss is one write and one read.
void SetOfMissingPage(benchmark::State& state) {
  VMem space;
  const auto kilobytes = static_cast<std::int16_t>(state.range(0));
  space.SetMaxCacheSize(kilobytes);
  const std::int32_t count = kilobytes + kilobytes / 4;
  Fill(space, count);
  std::int32_t page = 0;
  for (auto _ : state) {
    space.Set(page * kPage, page);
    page = page + 1 == count ? 0 : page + 1;
  }
}
BENCHMARK(SetOfMissingPage)->Arg(70)->Arg(32767);

}  // namespace
