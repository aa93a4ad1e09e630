#include <sys/wait.h>
#include <unistd.h>

#include "host/Host.h"
#include "support/Environment.h"
#include "support/Files.h"
#include "support/VMemPeek.h"

using namespace support;

namespace {

class SwapFileOnPosix : public support::InDirectory {
 protected:
  SwapFileOnPosix() {
    vm.SetTempDir(Units(Directory()).c_str());
    vm.maxAddress = 40 * 1024;
    vm.SetLimit(3);
  }
  Peek vm;
};

TEST_F(SwapFileOnPosix, HasNoName) {
  vm.Mark({0, 1, 2, 3});
  EXPECT_NE(vm.swapFile, INVALID_HANDLE_VALUE);
  EXPECT_TRUE(std::filesystem::is_empty(Directory()));
}

TEST_F(SwapFileOnPosix, IsNotMadeWhereNoNameFits) {
  const std::string tooLong(255 - Directory().string().size(), 'd');
  std::filesystem::create_directory(Path(tooLong));
  vm.SetLimit(1);
  vm.SetTempDir(Name(tooLong).c_str());
  vm.Mark({0});
  EXPECT_HALT("VMem, FlushCachePtr():\nswap file creation failed", vm.Touch({1}));
  EXPECT_EQ(vm.Read(0, 1024), vm.Content(0));
}

// A forked child shares the swap file and its position, and has a copy of the cache. It may read.
TEST_F(SwapFileOnPosix, IsNotDisturbedByAChildThatReads) {
  const Addresses pages = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  vm.Mark(pages);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const pid_t child = fork();
  if (child == 0) {
    char start = 0;
    bool readable = read(ends[0], &start, 1) == 1;
    for (std::int32_t page = 9; page >= 0; --page) readable = readable && vm.Read(page * 1024, 1024).size() == 1024;
    _exit(readable && vm.cacheCount == 4 ? 0 : 1);
  }
  for (const std::int32_t page : pages) vm.Write(page * 1024, vm.Content(page + 100));
  vm.ReleaseCache();
  EXPECT_EQ(lseek(host::DescriptorFromHandle(vm.swapFile), 0, SEEK_CUR), 0);
  ASSERT_EQ(write(ends[1], "x", 1), 1);
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  for (const std::int32_t page : pages) EXPECT_TRUE(vm.Read(page * 1024, 1024) == vm.Content(page + 100)) << page;
}

}  // namespace
