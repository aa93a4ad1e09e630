// Reads at places that a generator gives, alike for all contestants.
#pragma once

#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "Contestant.h"
#include "HostFile.h"
#include "Measuring.h"

/// A contestant that reads `count` bytes, at most a page, at random multiples of `grid`: `read` brings the bytes of a place. The sum of
/// what it brought is held against that of the content.
template <typename Read>
Contestant RandomReads(const Setting& setting, std::int64_t grid, std::size_t count, Read read) {
  const auto places = std::make_shared<std::vector<std::int32_t>>();
  std::mt19937 random(4);
  const std::int64_t bound = (setting.size - static_cast<std::int64_t>(count)) / grid + 1;
  for (std::int32_t i = 0; i < setting.count; ++i) {
    places->push_back(static_cast<std::int32_t>(static_cast<std::int64_t>(random()) % bound * grid));
  }
  const auto sumOf = [=](auto& readPlace) {
    std::uint64_t sum = 0;
    char bytes[kPage];
    for (const std::int32_t place : *places) {
      readPlace(place, bytes);
      sum += FirstWord(bytes) + 3 * FirstWord(bytes + count - 8);
    }
    return sum;
  };
  const auto sum = std::make_shared<std::uint64_t>(0);
  const auto check = [=] {
    const HostFile file = HostFile::Open(setting.content);
    const auto readFile = [&](std::int32_t place, char* bytes) { file.ReadAt(place, bytes, count); };
    Expect(*sum == sumOf(readFile), "bytes at random places");
    return 0;
  };
  return {[=]() mutable { *sum = sumOf(read); }, check};
}

/// Reads of pages of a store at random, all in one transaction. With `kEdit` each page is changed and put back.
template <typename Store, bool kEdit>
Contestant PagesOfStore(const Setting& setting) {
  const auto store = std::make_shared<Store>(setting);
  Contestant reads = RandomReads(setting, kPage, kPage, [=](std::int32_t place, char* bytes) {
    store->Read(place / std::int32_t{kPage}, bytes);
    if (!kEdit) return;
    std::memmove(bytes + 512, bytes + 496, 496);
    store->Write(bytes);
  });
  const auto run = [=] {
    store->Begin(kEdit);
    reads.run();
    store->End();
  };
  return {run, kEdit ? [] { return std::uint64_t{0}; } : reads.check};
}
