#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <list>
#include <random>

#include "host/Host.h"
#include "support/Files.h"
#include "support/VMemPeek.h"

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
  const int descriptor = vm.Descriptor();
  std::string bytes(7000, '?');
  bytes.resize(static_cast<std::size_t>(pread(descriptor, bytes.data(), bytes.size(), 0)));
  EXPECT_EQ(bytes, std::string(5120, '\0') + vm.Content(5));
  EXPECT_TRUE(std::filesystem::is_empty(Directory()));
  vm.DeallocAll();
  EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
  vm.maxAddress = 6144;
  EXPECT_EQ(vm.Read(5120, 1024), std::string(1024, '\0')) << "what was dropped came back";
}

TEST_F(SwapFileTest, LiesInTheFirstUsableDirectory) {
  const std::string tooLong(255 - Directory().string().size(), 'd');
  for (const auto& name : {std::string("a"), std::string("b"), tooLong}) std::filesystem::create_directory(Path(name));
  setenv("TMP", Path("b").c_str(), 1);
  for (const auto& [set, begin] : {std::pair("a/", "a/"), {"a", "a\\"}, {"none", "b\\"}}) {
    Start(1);
    vm.SetTempDir(Name(set).c_str());
    vm.Mark({0, 1});
    const std::string name = Narrow(vm.swapFileName);
    const std::string head = Path(begin).string() + "~vmem";
    EXPECT_TRUE(name.starts_with(head) && name.ends_with(".tmp") && name.size() <= head.size() + 9) << name;
  }
  Start(1);
  vm.SetTempDir(Name(tooLong).c_str());
  vm.Mark({0});
  EXPECT_HALT("VMem, FlushCachePtr():\nswap file creation failed", vm.Touch({1}));
  EXPECT_EQ(vm.Read(0, 1024), vm.Content(0));
  unsetenv("TMP");
}

TEST_F(SwapFileTest, TakesTheFirstNameThatNobodyHas) {
  // The numbers of the next two seconds.
  const std::uint32_t now = host::GetTickCount();
  const auto nameOf = [](std::uint32_t number) { return "~vmem" + std::to_string(number % 100000) + ".tmp"; };
  for (std::uint32_t i = 0; i < 2000; ++i) {
    const std::filesystem::path name = Path(nameOf(now + i));
    if (i % 2 == 0) std::filesystem::create_directory(name);
    if (i % 2 == 1) std::filesystem::create_symlink("none", name);
  }
  vm.Mark({0, 1, 2, 3});
  EXPECT_TRUE(vm.Descriptor() >= 0 && !std::filesystem::exists(Path("none")));
  const bool inTime = host::GetTickCount() - now < 2000;
  EXPECT_TRUE(!inTime || Narrow(vm.swapFileName).ends_with("\\" + nameOf(now + 2000))) << Narrow(vm.swapFileName);
}

TEST_F(SwapFileTest, AFileWithoutPositionsHaltsAndLosesNothing) {
  const std::string halt = "VMem, FindPage():\nseeking in swap file failed";
  vm.Mark({0, 1, 2, 3});
  vm.ReleaseCache();
  const int kept = dup(vm.Descriptor());
  const int other = open("/", O_PATH);
  dup2(other, vm.Descriptor());
  {
    const NoteHalts notes;
    EXPECT_EQ(vm.Read(0, 4), "????");
    vm.Write(1, "part of a page");
    EXPECT_EQ(notes.Noted(), std::vector<std::string>(2, halt));
  }
  dup2(kept, vm.Descriptor());
  close(kept);
  close(other);
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
