#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tuple>

#include "hfile/HFile.h"
#include "host/Host.h"
#include "support/HFiles.h"
#include "support/Halts.h"
#include "support/posix/Process.h"

namespace {

using support::Narrow;
using Texts = std::vector<std::string>;

TString Wide(const std::string& text) { return TString(text.begin(), text.end()); }

struct PosixNames : support::InDirectory {
  std::string In(const std::string& name) const { return Path(name).string(); }
};

TEST_F(PosixNames, FullNamesAreResolvedAsText) {
  support::InChild([this] {
    std::filesystem::create_directory(Path("sub"));
    TChar full[261];
    TChar small[5] = TSTR("abc");
    std::filesystem::current_path("/");
    const std::pair<const char*, const char*> rows[] = {
        {"a/.", "/a"}, {"/", "/"}, {"\\..\\x", "/x"}, {"", "/"}, {"usr//x/../y/", "/usr/y"}, {"/a/b/../../..", "/"}};
    for (const auto& [name, expected] : rows) {
      HFile::GetFullName(full, 261, Wide(name).c_str());
      EXPECT_EQ(Narrow(full), expected) << name;
    }
    HFile::GetFullName(small, 5, small);
    HFile::GetFullName(full, 4, TSTR("abc"));
    EXPECT_TRUE(Narrow(small) == "/abc" && Narrow(full) == "abc");
    // What fits when it is resolved need not fit before.
    HFile::GetFullName(small, 5, TSTR("abcdef/../x"));
    EXPECT_EQ(Narrow(small), "/x");
    HFile::GetFullName(small, 5, TString(9000, 'n').c_str());
    EXPECT_EQ(Narrow(small), "nnnn");
    std::filesystem::current_path(Path("sub"));
    HFile::GetFullName(full, 261, TSTR("./../x\\y"));
    EXPECT_EQ(Narrow(full), In("x/y"));
    std::filesystem::remove(Path("sub"));
    HFile::GetFullName(full, 261, TSTR("a/../b"));
    EXPECT_EQ(Narrow(full), "a/../b");
  });
}

TEST_F(PosixNames, ReadOnlyTakesEveryWriteBit) {
  const mode_t old = umask(002);
  const TString file = Name("file");
  EXPECT_TRUE(HFile().Create(file.c_str(), false) && !HFile::SetReadOnly(Name("").c_str(), true));
  for (const bool readOnly : {false, true, true, false}) {
    struct stat status;
    EXPECT_TRUE(HFile::SetReadOnly(file.c_str(), readOnly));
    EXPECT_TRUE(stat(Path("file").c_str(), &status) == 0 && (status.st_mode & 07777) == (readOnly ? 0444u : 0664u));
  }
  umask(old);
}

TEST_F(PosixNames, APositionBeyondFourGiBIsNone) {
  Put("large", "");
  std::filesystem::resize_file(Path("large"), 3'000'000'000);
  const HANDLE handle = host::CreateFileW(Name("large").c_str(), host::GENERIC_READ, 0, host::OPEN_EXISTING, 0);
  ASSERT_NE(handle, INVALID_HANDLE_VALUE);
  HFile file(handle);
  lseek(host::DescriptorFromHandle(handle), 5'000'000'000, SEEK_SET);
  EXPECT_EQ(file.GetPos(), 0);
}

TEST_F(PosixNames, TemporaryDirectoryIsTheFirstUsable) {
  Put("file", "");
  const std::pair<const char*, mode_t> directories[] = {{"one", 0777},     {"two", 0777},      {"last", 0777},
                                                        {"no read", 0333}, {"no write", 0555}, {"no search", 0666}};
  for (const auto& [name, mode] : directories) {
    std::filesystem::create_directory(Path(name));
    ASSERT_EQ(chmod(Path(name).c_str(), mode), 0);
  }
  ASSERT_EQ(chmod(Directory().c_str(), 0755), 0);
  support::InChild([this] {
    // Rights count for others than root alone.
    EXPECT_TRUE(geteuid() != 0 || setuid(65534) == 0);
    // "TMP", "TEMP", "TMPDIR", and which of them it is.
    // clang-format off
    const Texts rows[] = {
        {"one", "two", "last", In("one\\")}, {"one\\", "two", "last", In("one\\")}, {"file", "two", "last", In("two\\")},
        {"no", "file", "last", In("last\\")}, {"no", "no", "no", "/var/tmp/"}, {"no read", "two", "last", In("two\\")},
        {"no write", "no search", "last", In("last\\")}, {"no", "no", "no read", "/var/tmp/"},
        {"no", "no", "no write", "/var/tmp/"}, {"no", "no", "no search", "/var/tmp/"},
        {std::string(400, 'x'), "two", "last", In("two\\")}};
    // clang-format on
    for (const Texts& row : rows) {
      setenv("TMP", In(row[0]).c_str(), 1);
      setenv("TEMP", In(row[1]).c_str(), 1);
      setenv("TMPDIR", In(row[2]).c_str(), 1);
      TChar dir[261];
      HFile::GetTempDir(dir, 261);
      EXPECT_EQ(Narrow(dir), row[3]);
      HFile::GetTempDir(dir, 5);
      EXPECT_EQ(Narrow(dir), row[3].substr(0, 4));
    }
  });
  for (const auto& [name, mode] : directories) chmod(Path(name).c_str(), 0777);
}

using support::TemporaryFiles;

TEST_F(TemporaryFiles, ArePrivate) {
  const mode_t old = umask(0);
  struct stat status;
  EXPECT_TRUE(Create(nullptr, nullptr, Name("").c_str()));
  EXPECT_TRUE(stat(Narrow(name).c_str(), &status) == 0 && (status.st_mode & 07777) == 0600) << Narrow(name);
  umask(old);
}

TEST_F(TemporaryFiles, TakeTheNextNumberForATakenNameAlone) {
  support::InChild([this] {
    const TString directory = support::Units(Directory());
    const TString broken(1, 0xD800);
    // Names of up to 255 bytes: beside 189 of the prefix and 62 of the extension three digits fit, beside 125 none.
    const TString wide(63, 0x20AC);
    const TString half(61, 'x');
    const std::tuple<const TChar*, const TChar*, const TChar*, std::int32_t> rows[] = {
        {broken.c_str(), nullptr, directory.c_str(), resIllegalName},
        {wide.c_str(), wide.c_str(), directory.c_str(), resNotDone},
        {wide.c_str(), half.c_str(), directory.c_str(), resDone}};
    for (const auto& [prefix, ext, dir, res] : rows) {
      EXPECT_EQ(std::tuple(Create(prefix, ext, dir), file.res), std::tuple(res == resDone, res));
    }
    file.Close();
    // The numbers of half a second, made before its time has come.
    const std::uint32_t first = host::GetTickCount() + 1000;
    for (std::uint32_t i = 0; i < 500; ++i) {
      const std::int32_t number = static_cast<std::int32_t>(first + i) % 100000000;
      std::filesystem::create_symlink("none", Path("p" + std::to_string(number)));
    }
    while (static_cast<std::int32_t>(host::GetTickCount() - first) < 0) usleep(1000);
    EXPECT_TRUE(Create(TSTR("p"), TSTR(""), directory.c_str()) && !std::filesystem::exists(Path("none")));
    EXPECT_FALSE(std::filesystem::is_symlink(std::filesystem::path(TString(name)))) << Narrow(name);
    file.Close();

    const rlimit noDescriptors = {3, 3};
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &noDescriptors), 0);
    EXPECT_FALSE(Create(nullptr, nullptr, directory.c_str()));
    EXPECT_EQ(file.res, resTooManyFiles);
  });
  support::InChild([this] {
    EXPECT_TRUE(chmod(Directory().c_str(), 0555) == 0 && (geteuid() != 0 || seteuid(65534) == 0));
    EXPECT_FALSE(Create(nullptr, nullptr, support::Units(Directory()).c_str()));
    EXPECT_EQ(file.res, resNoPermission);
  });
  chmod(Directory().c_str(), 0755);
}

}  // namespace
