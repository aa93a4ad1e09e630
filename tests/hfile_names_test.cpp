#include <functional>
#include <gtest/gtest.h>
#include <tuple>
#include <vector>

#include "hfile/HFile.h"
#include "host/Host.h"
#include "support/HFiles.h"
#include "support/Halts.h"

namespace {

using support::Narrow;
using support::TemporaryFiles;
using FilesByName = support::InDirectory;
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

TEST(Names, AreSplitIntoTheirParts) {
  // clang-format off
  const Texts rows[] = {
      {"", "", "", "", ""}, {"a.txt", "", "", "a", ".txt"}, {"a.", "", "", "a", "."}, {".", "", "", "", "."},
      {"..", "", "", ".", "."}, {"...", "", "", "..", "."}, {".a.b", "", "", ".a", ".b"}, {"\\", "", "\\", "", ""},
      {"/a.txt", "", "/", "a", ".txt"}, {"a\\", "", "a\\", "", ""}, {"a/b\\c.txt", "", "a/b\\", "c", ".txt"},
      {"a.d/b", "", "a.d/", "b", ""}, {"a\\..", "", "a\\", ".", "."}, {"../x.y", "", "../", "x", ".y"},
      {"C:", "C:", "", "", ""}, {"C:a.txt", "C:", "", "a", ".txt"}, {"C:/a.b\\c", "C:", "/a.b\\", "c", ""},
      {"c:..", "c:", "", ".", "."}, {":a", "", "", ":a", ""}, {"CC:\\a.b", "", "CC:\\", "a", ".b"},
      {"a:b.c:d", "a:", "", "b", ".c:d"}, {"\\\\srv\\shr\\f.txt", "", "\\\\srv\\shr\\", "f", ".txt"},
      {"C:\\\\a//b.c", "C:", "\\\\a//", "b", ".c"}, {" a.txt ", "", "", " a", ".txt "}, {"C:\\x\\a?c*", "C:", "\\x\\", "a?c*", ""}};
  // clang-format on
  for (const Texts& row : rows) {
    TChar parts[4][32];
    const TString path = Wide(row[0]);
    HFile::SplitName(parts[0], 32, parts[1], 32, parts[2], 32, parts[3], 32, path.c_str());
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(Narrow(parts[i]), row[i + 1]) << row[0];
    TChar some[2][32];
    HFile::SplitName(nullptr, 0, some[0], 32, nullptr, 0, some[1], 32, path.c_str());
    EXPECT_EQ(Narrow(some[0]) + Narrow(some[1]), row[2] + row[4]) << row[0];
    for (const std::uint32_t room : {32u, 3u}) {
      HFile::SplitName(some[0], room, some[1], room, path.c_str());
      EXPECT_EQ(Narrow(some[0]), (row[1] + row[2]).substr(0, room - 1)) << row[0];
      EXPECT_EQ(Narrow(some[1]), (row[3] + row[4]).substr(0, room - 1)) << row[0];
    }
    // One unit too few for one part empties all.
    for (std::size_t small = 0; small < 4; ++small) {
      std::uint32_t sizes[4];
      for (std::size_t i = 0; i < 4; ++i)
        sizes[i] = static_cast<std::uint32_t>(row[i + 1].size() + (i == small ? 0 : 1));
      if (sizes[small] == 0) continue;
      HFile::SplitName(parts[0], sizes[0], parts[1], sizes[1], parts[2], sizes[2], parts[3], sizes[3], path.c_str());
      for (const auto& part : parts) EXPECT_EQ(Narrow(part), "") << row[0];
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

TEST(Names, OfBackupsGoUpToTheLastOfTheirSeries) {
  // clang-format off
  const std::pair<std::string, std::string> rows[] = {
      {"", ".~"}, {".", ".~"}, {"txt", "~xt"}, {".txt", ".~xt"}, {".~txt", ".~1xt"}, {".~", ".~1"}, {".~9", ".~10"},
      {".~9t", ".~10"}, {".~9x1", ".~101"}, {".~9:", ".~10"}, {".~19", ".~20"}, {".~08", ".~09"}, {".~89x", ".~90x"},
      {".~99", ""}, {".~99x", ""}, {".12", ".~"}, {".t1x", ".~"}, {".tx0", ".~"}, {".t:/", ".~:/"}, {".~x0", ".~1"},
      {".~:/", ".~1/"}, {"~", "~1"}, {"9", "~"}, {".abc1", ".~bc1"}};
  // clang-format on
  for (const auto& [ext, next] : rows) {
    TString buffer = Wide(ext) + TChar{0} + TSTR("##");
    EXPECT_EQ(HFile::GetNextBackupExt(buffer.data(), static_cast<std::uint32_t>(buffer.size())), !next.empty()) << ext;
    EXPECT_EQ(Narrow(buffer.c_str()), next.empty() ? ext : next);
  }
}

TEST_F(FilesByName, HaltWithoutRoomOrName) {
  TChar b[8] = {};
  HFile file;
  HFile open;
  ASSERT_TRUE(open.Create(Name("open").c_str(), false));
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

TEST_F(FilesByName, AttributesAreReadAndSet) {
  const TString file = Name("file");
  const TString directory = Name("");
  const TString missing = Name("missing");
  EXPECT_TRUE(HFile().Create(file.c_str(), false));
  EXPECT_TRUE(HFile::Exists(file.c_str()) && HFile::Exists(directory.c_str()) && !HFile::Exists(missing.c_str()));
  EXPECT_TRUE(HFile::IsDirectory(directory.c_str()) && !HFile::IsDirectory(file.c_str()));
  EXPECT_TRUE(!HFile::IsDirectory(missing.c_str()) && !HFile::IsReadOnly(missing.c_str()));
  EXPECT_TRUE(!HFile::SetReadOnly(missing.c_str(), false));
  for (const bool readOnly : {false, true, true, false}) {
    EXPECT_TRUE(HFile::SetReadOnly(file.c_str(), readOnly) && HFile::IsReadOnly(file.c_str()) == readOnly);
    EXPECT_EQ(HFile().Open(file.c_str()), !readOnly);
  }
}

TEST_F(FilesByName, MayHoldMoreThanTwoGiB) {
  const TString large = Name("large");
  const HANDLE handle =
      host::CreateFileW(large.c_str(), host::GENERIC_READ | host::GENERIC_WRITE, 0, host::CREATE_NEW, 0);
  ASSERT_NE(handle, INVALID_HANDLE_VALUE);
  HFile file(handle);
  host::SetFilePointer(handle, 2'000'000'000, host::FILE_BEGIN);
  EXPECT_EQ(host::SetFilePointer(handle, 1'000'000'000, host::FILE_CURRENT), 3'000'000'000);
  ASSERT_TRUE(host::SetEndOfFile(handle));
  EXPECT_TRUE(HFile::Exists(large.c_str()) && !HFile::IsReadOnly(large.c_str()));
  char last[2];
  EXPECT_EQ(host::SetFilePointer(handle, -1, host::FILE_END), 2'999'999'999);
  EXPECT_EQ(file.ReadBytes(last, 2), 1);
}

TEST_F(TemporaryFiles, HaveTheirName) {
  const support::CurrentDirectory here(Directory());
  HFile::GetTempDir(name, 261);
  const TString temporary = name;
  const TString full = Name("");
  const TString bare = support::Units(Directory());
  const TString longText(80, 'x');
  const TString cutText(63, 'x');
  const std::tuple<const TChar*, const TChar*, const TChar*, TString, TString> rows[] = {
      {nullptr, nullptr, nullptr, temporary + TSTR("~hf"), TSTR(".tmp")},
      {TSTR("p"), TSTR("t"), full.c_str(), full + TSTR("p"), TSTR(".t")},
      {TSTR("p"), TSTR(".t"), full.c_str(), full + TSTR("p"), TSTR(".t")},
      {TSTR(""), TSTR("."), bare.c_str(), bare + TSTR("\\"), TSTR(".")},
      {TSTR("p"), TSTR(""), TSTR(""), TSTR("p"), TSTR("")},
      {longText.c_str(), longText.c_str(), bare.c_str(), bare + TSTR("\\") + cutText, TSTR(".") + cutText.substr(1)}};
  for (const auto& [prefix, ext, dir, head, tail] : rows) {
    EXPECT_TRUE(Create(prefix, ext, dir) && file.IsOpen());
    file << "mine";
    file.Close();
    const TString text = name;
    ASSERT_TRUE(text.starts_with(head) && text.ends_with(tail)) << Narrow(name);
    const TString number = text.substr(head.size(), text.size() - head.size() - tail.size());
    EXPECT_TRUE(number.size() <= 8 && number.find_first_not_of(TSTR("0123456789")) == TString::npos) << Narrow(name);
    EXPECT_TRUE(file.Open(name) && file.Length() == 4);
    file.Close();
    EXPECT_TRUE(HFile::Remove(name));
  }
  EXPECT_TRUE(Create(nullptr, nullptr, bare.c_str(), true) && file.ReadBytes(name, 1) == 0);
  EXPECT_EQ(file.res, resNoPermission);
}

TEST_F(TemporaryFiles, AreRefusedWithAReason) {
  const TString directory = support::Units(Directory());
  const TString none = Name("none");
  const TString tooLong(261, 'd');
  const std::tuple<const TChar*, const TChar*, std::int32_t> rows[] = {{nullptr, none.c_str(), resIllegalPath},
                                                                       {TSTR("no/"), directory.c_str(), resIllegalPath},
                                                                       {nullptr, tooLong.c_str(), resIllegalName}};
  for (const auto& [prefix, dir, res] : rows) {
    EXPECT_FALSE(Create(prefix, nullptr, dir));
    EXPECT_EQ(file.res, res);
  }
  EXPECT_TRUE(Create(nullptr, nullptr, directory.c_str()));
  file.Close();
  const auto exact = static_cast<std::uint32_t>(TString(name).size());
  EXPECT_FALSE(HFile::CreateTempFile(file, name, exact, nullptr, nullptr, directory.c_str(), false));
  EXPECT_EQ(file.res, resIllegalName);
}

}  // namespace
