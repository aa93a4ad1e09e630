#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <list>
#include <random>

#include "host/Host.h"
#include "support/Environment.h"
#include "support/Files.h"
#include "support/Pipe.h"
#include "support/VMemPeek.h"
#include "vmem/SwapFile.h"

using namespace support;

namespace {

/// Number of a page that shares its entry of the hash table with page 0.
constexpr std::int32_t kAlias = 16384;

/// The list of cached pages, each with whether the table leads to it. The data are the test's.
struct CacheModel {
  struct Page {
    std::int32_t addr;
    bool dirty, hashed;
  };

  void Access(std::int32_t addr, std::int32_t len, bool write) {
    for (std::int32_t at = addr / 1024 * 1024; len > 0 && at < addr + len; at += 1024) {
      auto page = std::find_if(cached.begin(), cached.end(), [&](const Page& p) { return p.addr == at; });
      if (page == cached.end()) {
        if (!cached.empty() && cached.size() >= limit) cached.pop_back();
        page = cached.insert(cached.begin(), {at, false, false});
      }
      if (!page->hashed) cached.splice(cached.begin(), cached, page);
      for (auto& other : cached) other.hashed = other.hashed && (other.addr - at) % (kAlias * 1024) != 0;
      page->hashed = true;
      page->dirty = page->dirty || write;
    }
  }
  /// Compares the list, and the data with those of `space`.
  void ExpectIn(const Peek& vm, const std::string& space) const {
    const CacheDesc* p = vm.cacheHead;
    for (const auto& page : cached) {
      ASSERT_TRUE(p != nullptr && p->addr == page.addr && p->dirty == page.dirty);
      ASSERT_EQ(std::memcmp(p->data, &space[static_cast<std::size_t>(p->addr)], 1024), 0);
      p = p->next;
    }
    EXPECT_EQ(std::tuple(p, vm.Rule()), std::tuple(nullptr, ""));
  }

  std::size_t limit;
  std::list<Page> cached = {};
};

class SwapFileTest : public support::InDirectory {
 protected:
  SwapFileTest() { Start(3); }
  void Start(std::int32_t limit) {
    if (vm.maxAddress > 0) vm.DeallocAll();
    vm.SetTempDir(Units(Directory()).c_str());
    vm.maxAddress = 3 * kAlias * 1024;
    vm.SetLimit(limit);
  }
  Peek vm;
};

TEST_F(SwapFileTest, ComesWithTheFirstWriteOfAChangedPage) {
  vm.Touch({0, 1, 2, 3});
  EXPECT_EQ(std::tuple(vm.swapFile, vm.cacheHead), std::tuple(INVALID_HANDLE_VALUE, vm.spareDesc));
  vm.Mark({5});
  vm.Touch({1, 2, 3});
  EXPECT_EQ(vm.InFile(0, 7000), std::string(5120, '\0') + vm.Content(5));
  const HANDLE file = vm.swapFile;
  std::int64_t size = 0;
  EXPECT_TRUE(host::GetFileSizeEx(file, &size));
  vm.DeallocAll();
  EXPECT_FALSE(host::GetFileSizeEx(file, &size));
  EXPECT_TRUE(std::filesystem::is_empty(Directory()));
  vm.maxAddress = 6144;
  EXPECT_EQ(vm.Read(5120, 1024), std::string(1024, '\0')) << "what was dropped came back";
}

TEST_F(SwapFileTest, ReadsAtAPlaceEndWhereTheFileEnds) {
  vm.Mark({0, 1, 2, 3});
  vm.ReleaseCache();
  const std::string last = vm.Content(3);
  for (const auto& [place, left] : {std::pair(4095u, 1u), {4096, 0}, {4097, 0}, {0x7FFFFFFF, 0}, {0xFFFFFFFF, 0}}) {
    host::SetLastError(77);
    EXPECT_EQ(vm.InFile(place, 9), last.substr(1024 - left)) << place;
    EXPECT_EQ(host::GetLastError(), 77u) << place;
  }
  EXPECT_EQ(vm.InFile(1023, 1026), vm.Content(0).substr(1023) + vm.Content(1) + vm.Content(2).substr(0, 1));
}

TEST_F(SwapFileTest, LiesInTheFirstUsableDirectory) {
  for (const char* name : {"a", "b"}) std::filesystem::create_directory(Path(name));
  const support::Variable temp("TMP", Path("b"));
  for (const auto& [set, begin] : {std::pair("a/", "a/"), {"a", "a\\"}, {"none", "b\\"}}) {
    Start(1);
    vm.SetTempDir(Name(set).c_str());
    vm.Mark({0, 1});
    const std::string name = Narrow(vm.swapFileName);
    const std::string head = Path(begin).string() + "~vmem";
    EXPECT_TRUE(name.starts_with(head) && name.ends_with(".tmp") && name.size() <= head.size() + 9) << name;
  }
}

// Directories, what is read-only and what others have open. One of a time to come: a machine that has other work is given more.
TEST_F(SwapFileTest, TakesTheFirstNameThatIsFree) {
  constexpr std::int32_t kTaken = 300;
  bool inTime = false;
  for (std::uint32_t lead = 250; lead <= 32000 && !inTime; lead *= 2) {
    const std::string directory = std::to_string(lead);
    std::filesystem::create_directory(Path(directory));
    const std::uint32_t first = host::GetTickCount() + lead;
    const auto past = [first] { return static_cast<std::int32_t>(host::GetTickCount() - first); };
    std::vector<std::string> names;
    std::vector<HANDLE> held;
    for (std::uint32_t i = 0; i <= kTaken; ++i)
      names.push_back("~vmem" + std::to_string((first + i) % 100000) + ".tmp");
    for (std::size_t i = 0; i < kTaken; ++i) {
      const std::string taken = directory + "/" + names[i];
      if (i % 3 == 0) {
        std::filesystem::create_directory(Path(taken));
        continue;
      }
      Put(taken, "mine");
      SetReadOnly(Path(taken), i % 3 == 1);
      if (i % 3 == 2)
        held.push_back(host::CreateFileW(Name(taken).c_str(), host::GENERIC_READ, 7, host::OPEN_EXISTING, 0));
    }
    const bool begunInTime = past() < 0;
    while (past() < 0) continue;
    TChar name[261];
    const HANDLE file = vmem::CreateSwapFile(name, 261, Name(directory).c_str());
    inTime = begunInTime && past() < kTaken;
    EXPECT_TRUE(!inTime || Narrow(name).ends_with("\\" + names.back())) << Narrow(name);
    EXPECT_TRUE(host::CloseHandle(file));
    for (const HANDLE each : held) host::CloseHandle(each);
    for (std::size_t i = 0; i < kTaken; ++i) {
      EXPECT_TRUE(i % 3 == 0 || Content(directory + "/" + names[i]) == "mine") << i;
    }
  }
  EXPECT_TRUE(inTime);
}

TEST_F(SwapFileTest, AFileWithoutPositionsHaltsAndLosesNothing) {
  const std::string halt = "VMem, FindPage():\nseeking in swap file failed";
  vm.Mark({0, 1, 2, 3});
  vm.ReleaseCache();
  const support::Pipe pipe("");
  const HANDLE file = std::exchange(vm.swapFile, pipe.Handle());
  {
    const NoteHalts notes;
    EXPECT_EQ(vm.Read(0, 4), "????");
    vm.Write(1, "part of a page");
    EXPECT_EQ(notes.Noted(), std::vector<std::string>(2, halt));
  }
  vm.swapFile = file;
  EXPECT_EQ(vm.Read(0, 1024), vm.Content(0));
  EXPECT_EQ(vm.Rule(), "");
}

class CacheModelTest : public SwapFileTest, public testing::WithParamInterface<int> {};

TEST_P(CacheModelTest, HoldsAndEvictsAsTheModel) {
  std::mt19937 random(static_cast<std::uint32_t>(GetParam()));
  const auto below = [&](int bound) { return static_cast<int>(random() % static_cast<std::uint32_t>(bound)); };
  Start(GetParam());
  CacheModel model{static_cast<std::size_t>(GetParam())};
  std::string space(static_cast<std::size_t>(vm.maxAddress), '\0');
  const auto read = [&](std::int32_t addr, std::int32_t len) {
    model.Access(addr, len, false);
    return vm.Read(addr, len) == space.substr(static_cast<std::size_t>(addr), static_cast<std::size_t>(len));
  };
  const auto write = [&](std::int32_t addr, std::int32_t len) {
    const std::string content = Pattern(len, static_cast<std::uint32_t>(random()));
    model.Access(addr, len, true);
    vm.Write(addr, content);
    space.replace(static_cast<std::size_t>(addr), content.size(), content);
  };
  for (int step = 0; step < 1500 && !HasFailure(); ++step) {
    const auto address = [&] { return (below(3) * kAlias + below(7)) * 1024 + (below(3) > 0 ? below(1024) : 0); };
    const std::int32_t lengths[] = {below(8), below(8), below(3000), 1023 + below(3)};
    const std::int32_t addr = address();
    const std::int32_t len = lengths[below(4)];
    const int verb = below(100);
    if (verb < 40) {
      ASSERT_TRUE(read(addr, len)) << step;
    } else if (verb < 80) {
      write(addr, len);
    } else if (verb < 88) {
      // A rising run, with changes of what it comes to next, of what it has passed, and of what lies elsewhere.
      std::int32_t page = addr / 1024 * 1024;
      for (int left = below(40); left > 0; --left, page += 1024) {
        if (below(3) == 0) write(page + below(5) * 1024, below(2) == 0 ? 1024 : below(1500));
        if (below(9) == 0) write(address(), 1 + below(2000));
        if (below(9) == 0) page = std::max(page - 1024 * below(9), 0);
        ASSERT_TRUE(read(page, 1024)) << step;
      }
    } else if (verb < 92) {
      vm.FlushCache();
      for (auto& page : model.cached) page.dirty = false;
    } else if (verb < 96) {
      const std::int32_t dst = below(2) > 0 ? address() : addr + below(1500);
      vm.CopyBytes(dst, addr, static_cast<std::int16_t>(len));
      std::memmove(&space[static_cast<std::size_t>(dst)], &space[static_cast<std::size_t>(addr)],
                   static_cast<std::size_t>(len));
      vm.ReleaseCache();
      model.cached.clear();
    } else if (below(30) == 0) {
      Start(GetParam());
      space.assign(space.size(), '\0');
      model.cached.clear();
    } else {
      const int limit = below(GetParam() + 1);
      vm.SetLimit(limit);
      vm.SetLimit(GetParam());
      while (model.cached.size() > static_cast<std::size_t>(limit)) model.cached.pop_front();
    }
    model.ExpectIn(vm, space);
  }
}

INSTANTIATE_TEST_SUITE_P(Limits, CacheModelTest, testing::Values(0, 1, 2, 3, 4, 9, 16));

}  // namespace
