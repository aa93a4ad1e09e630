#include <algorithm>
#include <random>
#include <utility>

#include "support/VMemPeek.h"

using namespace support;

namespace {

/// The allocator with one vector of all free blocks, each with its list.
struct AllocatorModel {
  static constexpr std::int32_t kPages = -1, kGeneral = 0;  // else a class, by its size
  struct Block {
    std::int32_t list, addr, len;
  };

  auto Newest(std::int32_t list) const {
    return std::find_if(blocks.begin(), blocks.end(), [&](const Block& block) { return block.list == list; });
  }
  /// A length of 0 stands for a page.
  std::int32_t Take(std::int32_t len) {
    auto block = len % 1024 == 0 ? Newest(kPages) : blocks.end();
    if (block == blocks.end() && len == 0) {
      const std::int32_t start = end;
      const std::int32_t page = (end + (end % 1024 > 1020 ? 2047 : 1023)) / 1024 * 1024;
      end = page + 1024;
      if (page > start) Free(start, page - start, false);
      return page;
    }
    if (block == blocks.end()) block = Newest(len);
    if (block == blocks.end()) {
      const auto rank = [&](const Block& b) { return b.list != kGeneral ? -1 : b.len == len ? 0x10000 : b.len; };
      block = std::max_element(blocks.begin(), blocks.end(), [&](auto& a, auto& b) { return rank(a) < rank(b); });
      if (block == blocks.end() || rank(*block) < len + 4) return std::exchange(end, end + len);
    }
    const Block taken = *block;
    blocks.erase(block);
    const bool lasting = taken.list <= 5 || taken.list == 1024;
    if (!lasting && Newest(taken.list) == blocks.end()) std::erase(classes, taken.list);
    if (taken.list == kGeneral && taken.len > len) Free(taken.addr + len, taken.len - len, false);
    return taken.addr;
  }
  void Free(std::int32_t addr, std::int32_t len, bool makeClass) {
    if (addr + len == end) {
      end = addr;
      return;
    }
    std::int32_t list = makeClass || len < 6 ? len : kGeneral;
    if (len == 1024 && addr % 1024 == 0) list = kPages;
    if (list > 0 && std::count(classes.begin(), classes.end(), list) == 0) {
      if (classes.size() < 17) {
        classes.push_back(list);
      } else {
        list = kGeneral;
      }
    }
    blocks.insert(blocks.begin(), {list, addr, len});
  }
  /// Compares heads and classes. What is behind a head shows once it is taken.
  void ExpectIn(const Peek& vm) const {
    const auto head = [&](int list) { return Newest(list) != blocks.end() ? Newest(list)->addr : -1; };
    EXPECT_EQ(vm.freePageHead, head(kPages));
    for (std::size_t i = 0; i < classes.size(); ++i) EXPECT_EQ(vm.freeHead[i], head(classes[i]));
    EXPECT_EQ(Addresses(vm.classSize, vm.classSize + vm.classCount + 1), classes);
    EXPECT_EQ(std::tuple(vm.maxAddress, vm.Rule()), std::tuple(end, ""));
  }

  std::vector<Block> blocks;  // the newest first
  Addresses classes = {kGeneral, 4, 5, 1024};
  std::int32_t end = 0;
};

TEST(AllocatorTest, GivesWhatTheModelGives) {
  Peek vm;
  AllocatorModel model;
  std::vector<std::pair<std::int32_t, std::int32_t>> live;  // address and length
  vm.SetMaxCacheSize(3);
  std::mt19937 random;
  const auto below = [&](int bound) { return static_cast<int>(random() % static_cast<std::uint32_t>(bound)); };
  for (int step = 0; step < 2400 && !HasFailure(); ++step) {
    // The space grows and shrinks by turns.
    if (live.empty() || below(100) < (step / 200 % 2 == 0 ? 60 : 40)) {
      const int gap = below(2) > 0 ? below(5) : 20 + below(2) * 10;
      const int toGap = std::max(1, 1024 - model.end % 1024 - gap);
      const int sizes[] = {0, 1024, 1 + below(9), 1 + below(40), toGap, toGap};
      const std::int32_t len = sizes[below(6)];
      const std::int32_t used = len == 0 ? 1024 : std::max(len, 4);
      const std::int32_t addr = vm.Take(len);
      EXPECT_EQ(addr, model.Take(len == 0 ? 0 : used)) << step << ' ' << len;
      vm.Write(addr, Pattern(used, static_cast<std::uint32_t>(addr)));
      live.emplace_back(addr, used);
    } else {
      std::swap(live[static_cast<std::size_t>(below(static_cast<int>(live.size())))], live.back());
      const auto [addr, len] = live.back();
      EXPECT_EQ(vm.Read(addr, len), Pattern(len, static_cast<std::uint32_t>(addr))) << step;
      vm.Free(addr, len > 4 ? len : 1 + below(4));
      model.Free(addr, len, true);
      live.pop_back();
    }
    model.ExpectIn(vm);
  }
  vm.DeallocAll();
  AllocatorModel().ExpectIn(vm);
}

}  // namespace
