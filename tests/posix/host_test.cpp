#include "host/Host.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "host/posix/PosixNames.h"
#include "support/HostFiles.h"
#include "support/posix/Process.h"
#include "support/posix/SystemCalls.h"

namespace {

using namespace host;
using support::ErrorOf;
using support::HostFiles;
using support::kReadWrite;

std::uint32_t done;

TEST_F(HostFiles, OpenLinksAndNamesOfAnyLength) {
  std::filesystem::create_symlink("loop", Path("loop"));
  std::filesystem::create_symlink("new", Path("to new"));
  std::string tooLong;
  for (int i = 0; i < 2100; ++i) tooLong += "./";
  // clang-format off
  const OpenRow rows[] = {
      {"new\\", {123, 123, 123, 123}}, {"loop", {80, 1921, 1921, 1921}},
      {std::string(256, 'n'), {206, 206, 206, 206}}, {"to new", {80, 0, 2, 0}}, {tooLong, {206, 206, 206, 206}}};
  // clang-format on
  CheckOpens(rows);
  for (const int full : {ENOSPC, EDQUOT, EFBIG}) EXPECT_EQ(posix::ErrorFromErrno(full), ERROR_DISK_FULL);
}

TEST_F(HostFiles, SharingHoldsBetweenProcessesAndARefusedOpenLeavesTheFile) {
  for (std::uint32_t i = 0; i < 16; ++i) {
    const std::uint32_t first = i / 4, second = i % 4;
    Put("file", "abc");
    {
      const support::StoppedChild holder([&] { return Opened("file", GENERIC_READ, first) != INVALID_HANDLE_VALUE; });
      EXPECT_EQ(Open("file", GENERIC_READ, second, OPEN_EXISTING), (first & second & FILE_SHARE_READ) != 0 ? 0u : 32u);
      EXPECT_TRUE(Open("file", kReadWrite, 0, CREATE_ALWAYS) == 32 && Open("file", kReadWrite, 0, CREATE_NEW) == 80);
    }
    EXPECT_TRUE(Open("file", GENERIC_READ, second, OPEN_EXISTING) == 0 && Content("file") == "abc");
  }
  // What is no regular file knows no sharing.
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  for (const TString& name : {Name("pipe"), TString(TSTR("/dev/null"))}) {
    const HANDLE first = CreateFileW(name.c_str(), kReadWrite, 0, OPEN_EXISTING, 0);
    const HANDLE second = CreateFileW(name.c_str(), kReadWrite, 0, CREATE_ALWAYS, 0);
    EXPECT_NE(second, INVALID_HANDLE_VALUE);
    CloseHandle(first);
    CloseHandle(second);
  }
}

TEST_F(HostFiles, CloseLiftsTheLockThoughAChildHoldsACopy) {
  const HANDLE file = Opened("file", kReadWrite, 0);
  EXPECT_EQ(fcntl(DescriptorFromHandle(file), F_GETFD), FD_CLOEXEC);
  const support::StoppedChild child([] { return true; });
  EXPECT_TRUE(CloseHandle(file));
  EXPECT_EQ(Open("file", kReadWrite, 0, OPEN_EXISTING), 0u);
}

// Other threads remove the file and put others in its place. What is open is what the name leads to, and stays so.
TEST_F(HostFiles, AnOpenFileHasItsName) {
  Put("other", "abc");
  const TString name = Name("file");
  const TString other = Name("other");
  const support::Meanwhile changing([&] {
    CopyFileW(other.c_str(), name.c_str(), false);
    DeleteFileW(name.c_str());
  });
  const support::Meanwhile removing([&] { DeleteFileW(name.c_str()); });
  int opened = 0;
  int astray = 0;
  for (int i = 0; i < 40000; ++i) {
    const std::uint32_t how = CREATE_NEW + static_cast<std::uint32_t>(i % 4);
    const HANDLE file = Opened("file", kReadWrite, 0, how);
    if (file == INVALID_HANDLE_VALUE) continue;
    struct stat held;
    struct stat named;
    fstat(DescriptorFromHandle(file), &held);
    const bool same = stat(Path("file").c_str(), &named) == 0 && named.st_ino == held.st_ino;
    ++opened;
    if (!same || (how == CREATE_ALWAYS && held.st_size != 0)) ++astray;
    CloseHandle(file);
  }
  EXPECT_GT(opened, 1000);
  EXPECT_EQ(astray, 0);
}

TEST_F(HostFiles, NoFileIsAStandardStream) {
  support::InChild([this] {
    close(0);
    const HANDLE file = Opened("file", kReadWrite, 0);
    const HANDLE unnamed = CreateFileW(Name("swap").c_str(), kReadWrite, 0, CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE);
    EXPECT_GT(DescriptorFromHandle(file), 2);
    EXPECT_GT(DescriptorFromHandle(unnamed), 2);
    EXPECT_EQ(fcntl(0, F_GETFD), -1);
    // Where no other is left, nothing is made.
    const rlimit three = {3, 3};
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &three), 0);
    EXPECT_EQ(Open("new", kReadWrite, 0, CREATE_NEW), 4u);
    EXPECT_FALSE(std::filesystem::exists(Path("new")));
  });
}

TEST_F(HostFiles, DeleteOnCloseLeavesNothingEvenWhenKilled) {
  Put("taken", "abc");
  std::filesystem::create_symlink("swap", Path("link"));
  const auto create = [this](const char* name) {
    return CreateFileW(Name(name).c_str(), kReadWrite, 0, CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE);
  };
  for (const char* name : {"taken", "link"}) EXPECT_EQ(ErrorOf(create(name) != INVALID_HANDLE_VALUE), 80u);
  {
    const support::StoppedChild killed([&] {
      struct stat status = {};
      const HANDLE file = create("swap");
      return fstat(DescriptorFromHandle(file), &status) == 0 && (status.st_mode & 07777) == 0600 &&
             WriteFile(file, "xyz", 3, &done);
    });
  }
  EXPECT_TRUE(!std::filesystem::exists(Path("swap")) && Content("taken") == "abc");
  // Where names cannot be taken away again, another name is no way out.
  support::InChild([&] {
    ASSERT_TRUE(support::AnswerCalls({{SYS_unlinkat, EPERM}}));
    EXPECT_EQ(ErrorOf(create("stays") != INVALID_HANDLE_VALUE), 5u);
  });
}

TEST_F(HostFiles, ReadOnlyNoLongerMeansWritableForReaders) {
  const struct {
    mode_t locked, mask, free;
  } rows[] = {{04444, 022, 04644}, {0444, 0, 0666}, {0440, 0, 0660}, {0404, 0, 0606}, {0400, 0, 0600}, {0, 0, 0200}};
  const std::string path = Path("file").string();
  Put("file", "");
  const mode_t mask = umask(0);
  for (const auto& row : rows) {
    struct stat status = {};
    umask(row.mask);
    EXPECT_EQ(chmod(path.c_str(), row.locked), 0);
    EXPECT_TRUE(SetFileAttributesW(Name("file").c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, row.free) << row.locked;
  }
  umask(mask);
}

// The name leads to one file and to the other in turn: neither gets a mode that was made of the other's.
TEST_F(HostFiles, AttributesAreChangedWhereTheyWereRead) {
  const std::string one = Path("file").string();
  const std::string two = Path("secret").string();
  const int readable = open(one.c_str(), O_RDONLY | O_CREAT, 0444);
  const int secret = open(two.c_str(), O_RDONLY | O_CREAT, 0600);
  const support::Meanwhile swapping([&] { renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, two.c_str(), RENAME_EXCHANGE); });
  mode_t mode = 0600;
  for (int i = 0; i < 4000 && mode == 0600; ++i) {
    struct stat status = {};
    fchmod(readable, 0444);
    SetFileAttributesW(Name("file").c_str(), FILE_ATTRIBUTE_NORMAL);
    fstat(secret, &status);
    mode = status.st_mode & 07777;
  }
  close(readable);
  close(secret);
  EXPECT_EQ(mode, 0600u);
}

TEST_F(HostFiles, NamesReachEveryFileAndBadUnitsNone) {
  const TString name = support::Units(Directory()) + TString({'\\', 0xE4, 0xD83D, 0xDE00, 0xDCFF, 0xDC80});
  CloseHandle(CreateFileW(name.c_str(), kReadWrite, 0, CREATE_NEW, 0));
  EXPECT_TRUE(std::filesystem::exists(Directory() / "\xC3\xA4\xF0\x9F\x98\x80\xFF\x80"));
  for (const TString& bad : {TString({0xD800, 'x'}), TString({0xDC7F}), TString({0xDD00})})
    EXPECT_EQ(ErrorOf(CreateFileW(bad.c_str(), kReadWrite, 0, CREATE_NEW, 0) != INVALID_HANDLE_VALUE), 123u);
  // Where the forms of UTF-8 begin and end: what is none comes back byte for byte as well.
  TChar units[8] = {};
  const std::string edges = "A\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF1\xF4\xF5";
  for (std::size_t i = 0, n = edges.size(); i < n * n * n * n; ++i) {
    const std::string bytes = {edges[i % n], edges[i / n % n], edges[i / n / n % n], edges[i / n / n / n]};
    units[UnitsFromBytes(units, 8, bytes.data(), 4, Backslash::kIsOrdinary)] = 0;
    ASSERT_EQ(posix::NativeName(units).Text(), bytes);
  }
}

}  // namespace
