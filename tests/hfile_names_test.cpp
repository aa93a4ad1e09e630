#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tuple>

#include "hfile/HFile.h"
#include "host/Host.h"
#include "support/Files.h"
#include "support/Halts.h"
#include "support/Process.h"

using support::Narrow;

namespace {

using Texts = std::vector<std::string>;

TString Wide(const std::string& text) { return TString(text.begin(), text.end()); }

TEST(Names, ArePutTogetherFromTheirParts) {
  // clang-format off
  const Texts rows[] = {
      {"C", "dir", "f", "x", "C:dir\\f.x"}, {"C:\\z", "dir/", "f", ".x", "C:dir/f.x"}, {"", "", "f", "", "f"},
      {"", "dir\\", "", "t", "dir\\.t"}, {"", "", "f.", ".t", "f..t"}};
  // clang-format on
  for (const Texts& row : rows) {
    const auto size = static_cast<std::uint32_t>(row[4].size() + 1);
    TString part[4];
    for (std::size_t i = 0; i < 4; ++i) part[i] = Wide(row[i]);
    for (const std::uint32_t room : {size, size - 1}) {
      TChar joined[32];
      HFile::BuildName(joined, room, part[0].c_str(), part[1].c_str(), part[2].c_str(), part[3].c_str());
      EXPECT_EQ(Narrow(joined), room == size ? row[4] : "");
    }
  }
}

TEST(Names, GetOneSeparatorIfItFits) {
  const std::tuple<std::string, std::uint32_t, std::string> rows[] = {
      {"", 8, ""}, {"a", 8, "a\\"}, {"a/", 8, "a/"}, {"a\\", 8, "a\\"}, {"abc", 5, "abc\\"}, {"abc", 4, "abc"}};
  TChar buffer[8];
  for (const auto& [name, size, expected] : rows) {
    AssignStr(buffer, 8, Wide(name).c_str());
    HFile::CondAppendDirSep(buffer, size);
    EXPECT_EQ(Narrow(buffer), expected);
  }
  HFile::BuildName(buffer, 4, TSTR("ab"), TSTR("cd"));
  EXPECT_EQ(Narrow(buffer), "abc");
  EXPECT_TRUE(HFile::EqualName(TSTR("a/B"), TSTR("A/b")) && !HFile::EqualName(TSTR("a/b"), TSTR("a\\b")));
}

TEST(Names, HaltWithoutRoomOrName) {
  TChar b[8] = {};
  HFile file;
  HFile open(host::HandleFromDescriptor(dup(1)));
  const auto* name = TSTR("n");
  // clang-format off
#define WITH(call) [&](TChar* to, std::uint32_t size) { HFile::call; }
  const std::function<void(TChar*, std::uint32_t)> calls[] = {
      WITH(CondAppendDirSep(to, size)), WITH(BuildName(to, size, name, name)), WITH(GetTempDir(to, size)),
      WITH(BuildName(to, size, name, name, name, name)), WITH(GetNextBackupExt(to, size)), WITH(GetFullName(to, size, name)),
      WITH(SplitName(to, size, b, 8, name)), WITH(SplitName(b, 8, to, size, name)),
      WITH(SplitName(b, 8, b, 8, b, 8, to, size, name)), WITH(SplitName(to, size, b, 8, b, 8, b, 8, name)),
      WITH(CreateTempFile(file, to, size, nullptr, nullptr, nullptr, false))};
  // clang-format on
  for (const auto& call : calls) {
    EXPECT_ASSERTION("HFile", call(b, 0)) << &call - calls;
    EXPECT_ASSERTION("HFile", call(nullptr, 8)) << &call - calls;
  }
  EXPECT_ASSERTION("HFile", HFile::SplitName(b, 8, b, 8, nullptr));
  EXPECT_ASSERTION("HFile", HFile::SplitName(b, 8, nullptr, 0, nullptr, 0, nullptr, 0, nullptr));
  EXPECT_ASSERTION("HFile", HFile::Exists(nullptr));
  EXPECT_ASSERTION("HFile", HFile::CreateTempFile(open, b, 8, nullptr, nullptr, nullptr, false));
  const support::NoteHalts noting;
  EXPECT_TRUE(!HFile::Exists(nullptr) && !HFile::GetNextBackupExt(nullptr, 8));
}

struct FilesByName : support::InDirectory {
  std::string In(const std::string& name) const { return Path(name).string(); }
};

TEST_F(FilesByName, FullNamesAreResolvedAsText) {
  support::InChild([this] {
    std::filesystem::create_directory(Path("sub"));
    TChar full[261];
    TChar small[5] = TSTR("abc");
    std::filesystem::current_path("/");
    for (const auto& [name, expected] : {std::pair("a/.", "/a"), {"/", "/"}, {"\\..\\x", "/x"}, {"", "/"}}) {
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
    std::filesystem::remove(Path("sub"));
    HFile::GetFullName(full, 261, TSTR("a/../b"));
    EXPECT_EQ(Narrow(full), "a/../b");
  });
}

TEST_F(FilesByName, AttributesAreReadAndSet) {
  const mode_t old = umask(002);
  const TString file = Name("file");
  const TString directory = Name("");
  const TString missing = Name("missing");
  EXPECT_TRUE(HFile().Create(file.c_str(), false));
  EXPECT_TRUE(HFile::Exists(file.c_str()) && HFile::Exists(directory.c_str()) && !HFile::Exists(missing.c_str()));
  EXPECT_TRUE(HFile::IsDirectory(directory.c_str()) && !HFile::IsDirectory(file.c_str()));
  EXPECT_TRUE(!HFile::IsDirectory(missing.c_str()) && !HFile::IsReadOnly(missing.c_str()));
  EXPECT_TRUE(!HFile::SetReadOnly(missing.c_str(), false) && !HFile::SetReadOnly(directory.c_str(), true));
  for (const bool readOnly : {false, true, true, false}) {
    struct stat status;
    EXPECT_TRUE(HFile::SetReadOnly(file.c_str(), readOnly) && HFile::IsReadOnly(file.c_str()) == readOnly);
    EXPECT_TRUE(stat(Path("file").c_str(), &status) == 0 && (status.st_mode & 07777) == (readOnly ? 0444u : 0664u));
  }
  umask(old);
}

TEST_F(FilesByName, MayHoldMoreThanTwoGiB) {
  Put("large", "");
  std::filesystem::resize_file(Path("large"), 3'000'000'000);
  const TString large = Name("large");
  EXPECT_TRUE(HFile::Exists(large.c_str()) && !HFile::IsReadOnly(large.c_str()));
  const HANDLE handle = host::CreateFileW(large.c_str(), host::GENERIC_READ, 0, host::OPEN_EXISTING, 0);
  ASSERT_NE(handle, INVALID_HANDLE_VALUE);
  HFile file(handle);
  char last[2];
  EXPECT_EQ(host::SetFilePointer(handle, -1, host::FILE_END), 2'999'999'999);
  EXPECT_EQ(file.ReadBytes(last, 2), 1);
  lseek(host::DescriptorFromHandle(handle), 5'000'000'000, SEEK_SET);
  EXPECT_EQ(file.GetPos(), 0);
}

TEST_F(FilesByName, TemporaryDirectoryIsTheFirstUsable) {
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

struct TemporaryFiles : FilesByName {
  bool Create(const TChar* prefix, const TChar* ext, const TChar* dir, bool seqWrite = false) {
    return HFile::CreateTempFile(file, name, 261, prefix, ext, dir, seqWrite);
  }
  HFile file;
  TChar name[261];
};

TEST_F(TemporaryFiles, HaveTheirNameAndArePrivate) {
  support::InChild([this] {
    setenv("TMP", Directory().c_str(), 1);
    std::filesystem::current_path(Directory());
    const std::string in = In("");
    const TString full = Name("");
    const TString bare = support::Units(Directory());
    const TString longText(80, 'x');
    // clang-format off
    const std::tuple<const TChar*, const TChar*, const TChar*, std::string, std::string> rows[] = {
        {nullptr, nullptr, nullptr, in + "~hf", ".tmp"}, {TSTR("p"), TSTR("t"), full.c_str(), in + "p", ".t"},
        {TSTR("p"), TSTR(".t"), full.c_str(), in + "p", ".t"}, {TSTR(""), TSTR("."), bare.c_str(), in, "."},
        {TSTR("p"), TSTR(""), TSTR(""), "p", ""},
        {longText.c_str(), longText.c_str(), nullptr, in + std::string(63, 'x'), "." + std::string(62, 'x')}};
    // clang-format on
    umask(022);
    for (const auto& [prefix, ext, dir, head, tail] : rows) {
      EXPECT_TRUE(Create(prefix, ext, dir) && file.IsOpen());
      file << "mine";
      file.Close();
      std::string text = Narrow(name);
      std::replace(text.begin(), text.end(), '\\', '/');
      EXPECT_TRUE(text.starts_with(head) && text.ends_with(tail) && text.size() <= head.size() + 8 + tail.size())
          << text;
      const std::size_t behind = std::min(text.find_first_not_of("0123456789", head.size()), text.size());
      EXPECT_EQ(behind, text.size() - tail.size()) << text;
      EXPECT_EQ(Content(std::filesystem::path(text).filename()), "mine");
      struct stat status;
      EXPECT_TRUE(stat(text.c_str(), &status) == 0 && (status.st_mode & 07777) == 0600) << text;
    }
    EXPECT_TRUE(Create(nullptr, nullptr, nullptr, true) && file.ReadBytes(name, 1) == 0 && file.res == resNoPermission);
  });
}

TEST_F(TemporaryFiles, TakeTheNextNumberForATakenNameAlone) {
  support::InChild([this] {
    const TString directory = support::Units(Directory());
    const TString none = Name("none");
    const TString broken(1, 0xD800);
    const TString tooLong(261, 'd');
    // Names of up to 255 bytes: beside 189 of the prefix and 62 of the extension three digits fit, beside 125 none.
    const TString wide(63, 0x20AC);
    const TString half(61, 'x');
    const std::tuple<const TChar*, const TChar*, const TChar*, std::int32_t> rows[] = {
        {nullptr, nullptr, none.c_str(), resIllegalPath},
        {TSTR("no/"), nullptr, directory.c_str(), resIllegalPath},
        {broken.c_str(), nullptr, directory.c_str(), resIllegalName},
        {nullptr, nullptr, tooLong.c_str(), resIllegalName},
        {wide.c_str(), wide.c_str(), directory.c_str(), resNotDone},
        {wide.c_str(), half.c_str(), directory.c_str(), resDone}};
    for (const auto& [prefix, ext, dir, res] : rows) {
      EXPECT_EQ(std::tuple(Create(prefix, ext, dir), file.res), std::tuple(res == resDone, res));
    }
    file.Close();
    EXPECT_TRUE(Create(nullptr, nullptr, directory.c_str()));
    file.Close();
    const auto exact = static_cast<std::uint32_t>(TString(name).size());
    EXPECT_FALSE(HFile::CreateTempFile(file, name, exact, nullptr, nullptr, directory.c_str(), false));
    EXPECT_EQ(file.res, resIllegalName);

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
