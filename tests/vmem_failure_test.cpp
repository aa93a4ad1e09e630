// What is left of a space where its swap file refuses a transfer in the middle of an operation.

#include <functional>
#include <numeric>

#include "support/Disk.h"
#include "support/VMemPeek.h"

using namespace support;

namespace {

/// A space with one cached page, blocks in use, and two on the general list: 424 bytes at 2648, 924 bytes at 100.
struct Space : Peek {
  struct Block {
    std::int32_t addr, len;
  };

  Space() {
    SetLimit(1);
    for (const std::int32_t len : {100, 0, 600, 0, 3000, 50, 2000, 1024, 10}) {
      blocks.push_back({Take(len), len == 0 ? 1024 : len});
      Fill(blocks.back());
    }
  }
  void Fill(const Block& block) { Write(block.addr, Pattern(block.len, static_cast<std::uint32_t>(block.addr))); }
  /// Frees the block of that number, whose address then is -1.
  void Drop(std::size_t number) { Dealloc(blocks[number].addr, static_cast<std::int16_t>(blocks[number].len)); }
  void Add(std::int32_t len) {
    const Block block{Take(len), len == 0 ? 1024 : len};
    if (block.addr == -7) return;
    blocks.push_back(block);
    Fill(block);
  }
  /// Takes all classes that there are.
  void UseAllClasses() {
    for (std::int32_t len = 21; len < 34; ++len) {
      std::int32_t addr = Take(len);
      Take(4);
      Free(addr, len);
    }
  }
  void ExpectSound() {
    EXPECT_EQ(Rule(), "");
    for (const Block& block : blocks) {
      if (block.addr == -1) continue;
      EXPECT_TRUE(Read(block.addr, block.len) == Pattern(block.len, static_cast<std::uint32_t>(block.addr)))
          << block.len << " bytes at " << block.addr;
    }
  }

  std::vector<Block> blocks;  // in use, each with its content
};

void RunOnFailingDisk(int k, bool throwing, const std::function<void()>& call) {
  const FailingDisk disk(k);
  if (throwing) return void(HaltOf(call));
  const NoteHalts noting;
  call();
}

struct Row {
  const char* name;
  std::function<void(Space&)> prepare;
  std::function<void(Space&)> run;
};

TEST(VMemFailure, TheAllocatorHandsNothingOutThatItCouldNotWrite) {
  const auto nothing = [](Space&) {};
  const auto drop = [](std::size_t number) { return [number](Space& vm) { vm.Drop(number); }; };
  const auto add = [](std::int32_t len) { return [len](Space& vm) { vm.Add(len); }; };
  // clang-format off
  const Row rows[] = {
      {"exact fit at the head", nothing, add(424)}, {"exact fit behind it", nothing, add(924)},
      {"largest block, cut", nothing, add(300)}, {"cut, the rest to a class", nothing, add(920)},
      {"cut, the rest over its length", nothing, add(4)}, {"from a class", drop(4), add(3000)},
      {"a free page", drop(1), add(0)}, {"a page behind a gap", nothing, add(0)},
      {"a gap of four", [](Space& vm) { vm.Add(1024 - vm.maxAddress % 1024 - 4); }, add(0)},
      {"a block of a new size", nothing, drop(5)}, {"a block of a known size", drop(5), drop(4)},
      {"a block to the general list", [](Space& vm) { vm.UseAllClasses(); }, drop(6)},
      {"a page", nothing, drop(3)}, {"1024 bytes off the grid", nothing, drop(7)}};
  // clang-format on
  for (const auto& [name, prepare, run] : rows) {
    for (const bool throwing : {true, false}) {
      for (int k = 1, failed = true; failed; ++k) {
        SCOPED_TRACE(testing::Message() << name << ", transfer " << k << (throwing ? ", throwing" : ", returning"));
        Space vm;
        prepare(vm);
        const std::size_t before = vm.blocks.size();
        RunOnFailingDisk(k, throwing, [&, &call = run] { call(vm); });
        failed = FailingDisk::HasFailed();
        // Its owner may not have come to fill a new block.
        if (failed && vm.blocks.size() > before) vm.Fill(vm.blocks.back());
        vm.ExpectSound();
        for (const std::int32_t len : {300, 4, 50, 0, 3000, 2000}) vm.Add(len);
        vm.ExpectSound();
        if (HasFailure()) return;
      }
    }
  }
}

// The link of the block before the chosen one may lie in two pages.
TEST(VMemFailure, ALinkThatAPageBorderCutsIsWrittenWholeOrNotAtAll) {
  const auto header = [](std::int32_t link, std::int16_t len) {
    return std::string(reinterpret_cast<const char*>(&link), 4) + std::string(reinterpret_cast<const char*>(&len), 2);
  };
  for (int k = 1, failed = true; failed; ++k) {
    SCOPED_TRACE(k);
    Peek vm;
    vm.SetLimit(1);
    vm.maxAddress = 0x20000;
    vm.freeHead[0] = 0x3FE;
    vm.freeCount[0] = 3;
    vm.Write(0x3FE, header(0x10010, 100));
    vm.Write(0x10010, header(0x9000, 2000));
    vm.Write(0x9000, header(-1, 50));
    {
      const FailingDisk disk(k, FailingDisk::kWrites);
      HaltOf([&] { vm.Take(2000); });
      failed = FailingDisk::HasFailed();
    }
    EXPECT_EQ(vm.Rule(), "");
  }
}

// The procedure of a halt repairs the disk, moves the bound and empties the cache, and returns.
TEST(VMemFailure, AHaltProcedureMayUseTheSpace) {
  static Peek* space;
  static std::string seen;
  const auto proc = [](const TChar*) {
    FailingDisk::Repair();
    space->SetMaxCacheSize(100);
    space->ReleaseCache();
    for (std::int32_t page = 0; page < 8; ++page) seen += space->Read(page * 1024, 1) == "" ? "" : ".";
    space->ReleaseCache();
  };
#define CALL(call) [](Peek& vm) { vm.call; }
  const std::function<void(Peek&)> calls[] = {CALL(Touch({7})), CALL(SetLimit(1)), CALL(ReleaseCache()),
                                              CALL(FlushCache()), CALL(CopyBytes(0, 7 * 1024, 2000))};
  for (const auto& call : calls) {
    Peek vm;
    space = &vm;
    vm.maxAddress = 10 * 1024;
    vm.SetLimit(4);
    vm.Mark({0, 1, 2, 3});
    seen.clear();
    const FailingDisk disk(1, FailingDisk::kWrites);
    InstallHaltProc(proc);
    call(vm);
    DeinstallHaltProc();
    EXPECT_EQ(seen, "........");
    EXPECT_EQ(vm.Rule(), "");
    for (const std::int32_t page : {0, 1, 2, 3}) EXPECT_TRUE(vm.Read(page * 1024, 1024) == vm.Content(page));
  }
}

TEST(VMemFailure, WhatCannotBeWrittenStaysInTheCache) {
  const std::tuple<std::string, std::function<void(Peek&)>, int> rows[] = {{"FlushCachePtr", CALL(ReleaseCache()), 1},
                                                                           {"FlushCachePtr", CALL(SetLimit(0)), 2},
                                                                           {"FlushCachePtr", CALL(FlushCache()), 2},
                                                                           {"ExtendFile", CALL(ReleaseCache()), 0}};
  for (const auto& [proc, call, written] : rows) {
    Peek vm;
    vm.maxAddress = 9 * 1024;
    vm.Mark({0, 1, 2});
    vm.ReleaseCache();
    vm.Mark({0, 1, 2});
    if (proc == "ExtendFile") vm.Mark({8});
    {
      const FailingDisk disk(written + 1, FailingDisk::kWrites);
      const NoteHalts noting;
      call(vm);
      EXPECT_EQ(noting.Noted(),
                std::vector<std::string>(1, "VMem, " + proc + "():\nwriting on swap file failed (disk full?)"));
      // What a full disk keeps from being written can be read.
      vm.SetLimit(69);
      for (const std::int32_t page : {0, 1, 2}) EXPECT_TRUE(vm.Read(page * 1024, 1024) == vm.Content(page));
    }
    vm.FlushCache();
    for (const CacheDesc* p = vm.cacheHead; p != nullptr; p = p->next) EXPECT_FALSE(p->dirty) << p->addr;
    EXPECT_EQ(vm.Rule(), "");
  }
}

TEST(VMemFailure, AReadThatFailsHaltsAndLosesNothing) {
  Peek vm;
  vm.maxAddress = 4 * 1024;
  vm.SetLimit(2);
  vm.Mark({0, 1, 2, 3});
  {
    const FailingDisk disk(1, FailingDisk::kReads);
    EXPECT_HALT("VMem, FindPage():\nreading from swap file failed", vm.Touch({0}));
    const NoteHalts noting;
    EXPECT_EQ(vm.Read(1024, 2), "??");
  }
  // A file that ends too early.
  vm.ReleaseCache();
  vm.CutFile(3 * 1024 + 1);
  EXPECT_HALT("VMem, FindPage():\nreading from swap file failed", vm.Touch({3}));
  for (const std::int32_t page : {0, 1, 2}) EXPECT_TRUE(vm.Read(page * 1024, 1024) == vm.Content(page));
}

// What was read ahead before lies where the run goes on, and is overwritten as far as that comes.
TEST(VMemFailure, ARunThatEndsHalfWayServesNothingWrong) {
  Peek vm;
  vm.maxAddress = 40 * 1024;
  vm.SetLimit(1);
  Addresses pages(40);
  std::iota(pages.begin(), pages.end(), 0);
  vm.Mark(pages);
  vm.ReleaseCache();
  pages.resize(18);
  vm.Touch(pages);
  vm.CutFile(23 * 1024);
  EXPECT_TRUE(vm.Read(18 * 1024, 1024) == vm.Content(18));
  for (const std::int32_t page : pages) EXPECT_TRUE(vm.Read(page * 1024, 1024) == vm.Content(page)) << page;
}

}  // namespace
