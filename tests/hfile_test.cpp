#include "hfile/HFile.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <vector>

#include "support/Files.h"
#include "support/Process.h"

namespace {

struct HFiles : support::InDirectory {
  const TString name = Name("file");
  HFile file;
  char buffer[16];

  /// `Lookup`, `Create` and `CreateSeqWrite`, each without and with its flag; then `Open` and `OpenSeqRead`.
  bool Open(HFile& f, int way) const {
    constexpr bool (HFile::*kFlagged[])(const TChar*, bool) = {&HFile::Lookup, &HFile::Create, &HFile::CreateSeqWrite};
    if (way < 6) return (f.*kFlagged[way / 2])(name.c_str(), way % 2 != 0);
    return way == 6 ? f.Open(name.c_str()) : f.OpenSeqRead(name.c_str());
  }
  void OpenTen(int way) {
    Put("file", "0123456789");
    EXPECT_TRUE(Open(file, way));
  }
};

TEST_F(HFiles, OpenOperationsKnowWhatExistsAndShareOnlyReading) {
  constexpr std::int32_t kOnMissing[] = {14, 0, 0, 0, 0, 0, 14, 14}, kOnExisting[] = {0, 0, 6, 0, 6, 0, 0, 0};
  for (int i = 0; i < 16; ++i) {
    const int way = i / 2;
    std::filesystem::remove(name);
    if (i % 2 != 0) Put("file", "abc");
    file.res = resDiskFull;
    const bool opened = Open(file, way);
    EXPECT_EQ(file.res, i % 2 != 0 ? kOnExisting[way] : kOnMissing[way]) << way;
    EXPECT_TRUE(opened == file.IsOpen() && opened == (file.res == resDone));
    EXPECT_EQ(file.Length(), opened && i % 2 != 0 && way != 3 && way != 5 ? 3 : 0) << way;
    for (int second = 0; opened && second < 8; ++second) {
      HFile other;
      EXPECT_EQ(Open(other, second), way == 7 && second == 7) << way << second;
      EXPECT_EQ(other.res, way == 7 && second == 7 ? 0 : second == 2 || second == 4 ? 6 : 17) << way << second;
      EXPECT_FALSE(Open(file, second));
      EXPECT_TRUE(file.res == resCallError && file.IsOpen());
    }
    if (opened) file.Close();
  }
}

TEST_F(HFiles, ReadingTellsTheEndAndFailuresStand) {
  OpenTen(6);
  file.SetPos(-4, 2);
  EXPECT_TRUE(file.ReadBytes(buffer, 4) == 4 && !file.eof && file.ReadBytes(buffer, 1) == 0 && file.eof);
  file.ReadBytes(nullptr, 0);
  file.WriteBytes(nullptr, 0);
  EXPECT_TRUE(file.eof && file.res == resDone) << "nothing asked, nothing done";
  file.SetPos(0, 3);
  EXPECT_TRUE(!file.eof && file.res == resCallError);
  file.SetPos(INT32_MAX);
  EXPECT_TRUE(!file.eof && file.GetPos() == 10 && file.res == resDone);
  file.SetPos(-6, 1);
  EXPECT_TRUE(file.ReadBytes(buffer, 10) == 6 && std::string(buffer, 6) == "456789" && file.eof);
  file.WriteBytes(nullptr, 1);
  file.WriteBytes("x", 1);
  file.Write('x', 1);
  EXPECT_TRUE(file.ReadBytes(buffer, 1) == 0 && file.res == resCallError && file.eof && file.Length() == 10);
  file.SetPos(5);
  file.Truncate();
  EXPECT_TRUE(file.res == resDone && !file.eof && file.Length() == 5 && file.GetPos() == 5);
  file.SetPos(-6, 2);
  EXPECT_TRUE(file.res == resCallError && file.GetPos() == 5);
  file.Close();
  EXPECT_EQ(file.res, resDone);
  file.Close();
  EXPECT_EQ(file.res, resCallError);
}

TEST_F(HFiles, EachWayToOpenAllowsWhatItIsFor) {
  const struct {
    std::int32_t read, readRes, writeRes, changeRes;
  } rows[] = {{10, 0, 0, 0}, {10, 0, 0, 0}, {0, 0, 0, 0},  {0, 0, 0, 0},
              {0, 17, 0, 0}, {0, 17, 0, 0}, {10, 0, 0, 0}, {10, 0, 17, 17}};
  for (int way = 0; way < 8; ++way) {
    const auto& row = rows[way];
    Put("file", "0123456789");
    if (way == 2 || way == 4) std::filesystem::remove(name);
    ASSERT_TRUE(Open(file, way)) << way;
    EXPECT_EQ(file.ReadBytes(buffer, 10), row.read) << way;
    EXPECT_TRUE(file.res == row.readRes && (row.readRes == 0 || !file.eof)) << way;
    file.Reset();
    file.WriteBytes("x", 1);
    EXPECT_EQ(file.res, row.writeRes) << way;
    file.Flush();
    EXPECT_EQ(file.res, row.changeRes) << way;
    file.Truncate();
    EXPECT_EQ(file.res, row.changeRes) << way;
    file.Close();
    EXPECT_EQ(Content("file"), row.changeRes == 0 ? "x" : "0123456789") << way;
  }
}

TEST_F(HFiles, RefusalsOfTheHostAreResults) {
  HFile other;
  const TString directory = support::Units(Directory());
  for (const bool reads : {false, true}) {
    EXPECT_FALSE(reads ? other.OpenSeqRead(directory.c_str()) : other.Open(directory.c_str()));
    EXPECT_EQ(other.res, resNoPermission);
  }
  support::InChild([&] {
    const rlimit none = {0, 0};
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_FALSE(other.Lookup(name.c_str(), true));
    EXPECT_EQ(other.res, resTooManyFiles);
  });
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
