#include "hfile/HFile.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <vector>

#include "support/HFiles.h"
#include "support/posix/Process.h"

namespace {

using support::HFiles;

TEST_F(HFiles, WithoutDescriptorsNoneIsOpened) {
  HFile other;
  support::InChild([&] {
    const rlimit none = {0, 0};
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_FALSE(other.Lookup(name.c_str(), true));
    EXPECT_EQ(other.res, resTooManyFiles);
  });
}

TEST_F(HFiles, OpenedForReadingAreNotCut) {
  OpenTen(7);
  file.Truncate();
  EXPECT_EQ(file.res, resNoPermission);
}

TEST_F(HFiles, AChildThatClosesLeavesTheLockOfItsParent) {
  ASSERT_TRUE(file.Create(Name("file").c_str(), true));
  support::InChild([&] { file.Close(); });
  HFile other;
  EXPECT_FALSE(other.Open(Name("file").c_str()));
  file.Close();
  EXPECT_TRUE(other.Open(Name("file").c_str()));
}

TEST_F(HFiles, AFailureBehindBytesReadIsOne) {
  const auto page = static_cast<std::int32_t>(sysconf(_SC_PAGESIZE));
  const auto size = static_cast<std::size_t>(page);
  char* pages = static_cast<char*>(mmap(nullptr, 2 * size, PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  ASSERT_EQ(mprotect(pages + page, size, PROT_NONE), 0);
  Put("file", std::string(2 * size, 'x'));
  ASSERT_TRUE(Open(file, 7));
  file.ReadBytes(pages, 2 * page);
  EXPECT_NE(file.res, resDone);
  EXPECT_FALSE(file.eof);
  munmap(pages, 2 * size);
}

// One call of the system gives less of this file than it is asked for, and has its end elsewhere.
TEST_F(HFiles, AShortReadOfARegularFileIsItsEnd) {
  std::vector<char> text(1 << 20);
  ASSERT_TRUE(file.OpenSeqRead(TSTR("/proc/self/smaps")));
  EXPECT_GT(file.ReadBytes(text.data(), 1 << 20), sysconf(_SC_PAGESIZE));
  EXPECT_TRUE(file.eof);
  EXPECT_EQ(file.ReadBytes(text.data(), 1), 0);
}

TEST_F(HFiles, ASizeThatCannotBeToldEmptiesNothing) {
  constexpr off_t kLooksLikeNone = 0xFFFFFFFF;
  ASSERT_TRUE(Open(file, 1));
  std::filesystem::resize_file(name, kLooksLikeNone);
  file.SetPos(5);
  EXPECT_EQ(file.res, resNotSupported);
  file.Truncate();
  EXPECT_EQ(file.res, resNotSupported);
  EXPECT_EQ(std::filesystem::file_size(name), kLooksLikeNone);
}

TEST_F(HFiles, AdoptedHandleIsOwnedAndMayBeDescriptor0) {
  support::InChild([] {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_NONBLOCK), 0);
    ASSERT_EQ(dup2(ends[1], 0), 0);
    ASSERT_EQ(close(ends[1]), 0);
    char written[4096];
    {
      HFile adopted(host::HandleFromDescriptor(0));
      for (const std::int32_t count : {0, -1, 2500}) adopted.Write('x', count);
      EXPECT_TRUE(adopted.IsOpen() && adopted.GetPos() == 0 && adopted.Length() == 0 && adopted.res == resDone);
      EXPECT_EQ(read(ends[0], written, sizeof written), 2500);
      adopted.Flush();
      EXPECT_EQ(adopted.res, resDone);
      adopted.WriteBytes("abc", 3);
      HFile reader(host::HandleFromDescriptor(dup(ends[0])));
      EXPECT_EQ(reader.ReadBytes(written, 10), 3);
      EXPECT_TRUE(reader.eof && reader.res == resDone);
      // More than the pipe takes.
      const std::vector<char> large(1 << 20);
      adopted.WriteBytes(large.data(), 1 << 20);
      EXPECT_EQ(adopted.res, resDiskFull);
    }
    while (read(ends[0], written, sizeof written) > 0) continue;
    EXPECT_EQ(read(ends[0], written, 1), 0) << "closed";
  });
}

}  // namespace
