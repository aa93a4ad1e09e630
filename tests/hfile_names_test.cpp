#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tuple>

#include "hfile/HFile.h"
#include "support/Files.h"
#include "support/Halts.h"
#include "support/Process.h"

using support::Narrow;

namespace {

using Texts = std::vector<std::string>;

TString Wide(const std::string& text) { return TString(text.begin(), text.end()); }

TEST(Names, AreSplitAndPutTogether) {
  const Texts rows[] = {{"", "", "", "", ""},
                        {"a.txt", "", "", "a", ".txt"},
                        {"..", "", "", ".", "."},
                        {".profile", "", "", "", ".profile"},
                        {"a.tar.gz", "", "", "a.tar", ".gz"},
                        {"\\", "", "\\", "", ""},
                        {"a/b\\c.txt", "", "a/b\\", "c", ".txt"},
                        {"a.d\\b", "", "a.d\\", "b", ""},
                        {"a\\.x", "", "a\\", "", ".x"},
                        {"C:a.txt", "C:", "", "a", ".txt"},
                        {"z:/a.b/c", "z:", "/a.b/", "c", ""},
                        {"1:\\a", "", "1:\\", "a", ""},
                        {"a:b.c:d", "a:", "", "b", ".c:d"},
                        {"//srv/shr/f.t", "", "//srv/shr/", "f", ".t"},
                        {"C:", "C:", "", "", ""}};
  for (const Texts& row : rows) {
    TChar part[4][32], joined[32], dir[32], name[32];
    const TString path = Wide(row[0]);
    HFile::SplitName(part[0], 32, part[1], 32, part[2], 32, part[3], 32, path.c_str());
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(Narrow(part[i]), row[i + 1]) << row[0];
    HFile::SplitName(dir, 32, name, 32, path.c_str());
    EXPECT_TRUE(Narrow(dir) == row[1] + row[2] && Narrow(name) == row[3] + row[4]) << row[0];
    HFile::BuildName(joined, 32, part[0], part[1], part[2], part[3]);
    EXPECT_EQ(Narrow(joined), row[0]);
    HFile::BuildName(joined, 32, dir, name);
    EXPECT_EQ(Narrow(joined), row[0]);
    // Exact fit, then one unit less, then the last part alone.
    const auto size = static_cast<std::uint32_t>(row[2].size() + 1);
    HFile::SplitName(nullptr, 0, dir, size, nullptr, 0, nullptr, 0, path.c_str());
    EXPECT_EQ(Narrow(dir), row[2]);
    if (size == 1) continue;
    HFile::SplitName(nullptr, 0, dir, size - 1, nullptr, 0, part[3], 32, path.c_str());
    EXPECT_TRUE(dir[0] == 0 && part[3][0] == 0) << row[0];
  }
  const Texts joins[] = {{"C", "dir", "f", "x", "C:dir\\f.x"},
                         {"C:\\zzz", "dir/", "f", ".x", "C:dir/f.x"},
                         {"", "", "f", "", "f"},
                         {"", "dir\\", "", "t", "dir\\.t"},
                         {"", "", "f.", ".t", "f..t"}};
  for (const Texts& row : joins) {
    TChar joined[32];
    const auto size = static_cast<std::uint32_t>(row[4].size() + 1);
    for (const std::uint32_t room : {size, size - 1}) {
      HFile::BuildName(joined, room, Wide(row[0]).c_str(), Wide(row[1]).c_str(), Wide(row[2]).c_str(),
                       Wide(row[3]).c_str());
      EXPECT_EQ(Narrow(joined), room == size ? row[4] : "");
    }
  }
}

TEST(Names, GetOneSeparatorIfItFits) {
  const std::tuple<std::string, std::uint32_t, std::string> rows[] = {
      {"", 8, ""}, {"a", 8, "a\\"}, {"a/", 8, "a/"}, {"a\\", 8, "a\\"}, {"abc", 5, "abc\\"}, {"abc", 4, "abc"}};
  for (const auto& [name, size, expected] : rows) {
    TChar buffer[8];
    AssignStr(buffer, 8, Wide(name).c_str());
    HFile::CondAppendDirSep(buffer, size);
    EXPECT_EQ(Narrow(buffer), expected);
  }
  EXPECT_TRUE(HFile::EqualName(TSTR("a/B"), TSTR("A/b")) && !HFile::EqualName(TSTR("a/b"), TSTR("a\\b")));
  TChar small[4];
  HFile::BuildName(small, 4, TSTR("ab"), TSTR("cd"));
  EXPECT_EQ(Narrow(small), "abc");
}

TEST(Names, StepThroughTheBackupExtensions) {
  const Texts series[] = {{"", ".~", ".~1", ".~2"}, {".", ".~"},        {".txt", ".~xt", ".~1t", ".~2t"},
                          {"txt", "~xt"},           {".~9t", ".~10"},   {".~9tu", ".~10u"},
                          {".~9", ".~10", ".~11"},  {".~19", ".~20"},   {".~99", ".~99"},
                          {".~99x", ".~99x"},       {".~89x", ".~90x"}, {".a1", ".~"},
                          {".ab1", ".~"},           {".abc1", ".~bc1"}, {".a", ".~"},
                          {".~x5", ".~1"},          {".~x", ".~1"},     {".~1", ".~2"}};
  for (const Texts& steps : series) {
    TChar ext[16];
    AssignStr(ext, 16, Wide(steps[0]).c_str());
    for (std::size_t i = 1; i < steps.size(); ++i) {
      EXPECT_EQ(HFile::GetNextBackupExt(ext, 16), !steps[0].starts_with(".~99")) << steps[i];
      EXPECT_EQ(Narrow(ext), steps[i]);
    }
  }
}

TEST(Names, HaltWithoutARoomOrAName) {
  TChar b[8] = {};
  HFile open(host::HandleFromDescriptor(dup(0)));
  const auto* name = TSTR("n");
  for (const std::uint32_t size : {0u, 8u}) {
    TChar* to = size == 0 ? b : nullptr;
    EXPECT_ASSERTION("HFile", HFile::CondAppendDirSep(to, size));
    EXPECT_ASSERTION("HFile", HFile::BuildName(to, size, name, name));
    EXPECT_ASSERTION("HFile", HFile::BuildName(to, size, name, name, name, name));
    EXPECT_ASSERTION("HFile", HFile::GetTempDir(to, size));
    EXPECT_ASSERTION("HFile", HFile::GetNextBackupExt(to, size));
    EXPECT_ASSERTION("HFile", HFile::GetFullName(to, size, name));
    EXPECT_ASSERTION("HFile", HFile::SplitName(to, size, b, 8, name));
    EXPECT_ASSERTION("HFile", HFile::SplitName(b, 8, to, size, name));
    EXPECT_ASSERTION("HFile", HFile::SplitName(b, 8, b, 8, b, 8, to, size, name));
    HFile file;
    EXPECT_ASSERTION("HFile", HFile::CreateTempFile(file, to, size, nullptr, nullptr, nullptr, false));
  }
  EXPECT_ASSERTION("HFile", HFile::GetFullName(b, 8, nullptr));
  EXPECT_ASSERTION("HFile", HFile::SplitName(b, 8, b, 8, nullptr));
  EXPECT_ASSERTION("HFile", HFile::SplitName(b, 8, nullptr, 0, nullptr, 0, nullptr, 0, nullptr));
  EXPECT_ASSERTION("HFile", HFile::Exists(nullptr));
  EXPECT_ASSERTION("HFile", HFile::CreateTempFile(open, b, 8, nullptr, nullptr, nullptr, false));
  const support::NoteHalts noting;
  EXPECT_TRUE(!HFile::Exists(nullptr) && !HFile::GetNextBackupExt(nullptr, 8));
}

struct FilesByName : support::InDirectory {
  /// The full name of a relative one.
  static std::string Full(const std::string& name) {
    TChar full[261];
    HFile::GetFullName(full, 261, Wide(name).c_str());
    return std::filesystem::path(full).string();
  }
  std::string In(const std::string& name) const { return Path(name).string(); }
};

TEST_F(FilesByName, FullNamesAreResolvedAsText) {
  support::InChild([this] {
    std::filesystem::create_directory(Path("sub"));
    std::filesystem::current_path(Path("sub"));
    const std::pair<const char*, std::string> rows[] = {{"", In("sub")},
                                                        {".", In("sub")},
                                                        {"a", In("sub/a")},
                                                        {"..", In("")},
                                                        {"..\\a/", In("a")},
                                                        {"a//b\\c", In("sub/a/b/c")},
                                                        {"a/../..\\./b", In("b")},
                                                        {"...", In("sub/...")},
                                                        {"/", "/"},
                                                        {"\\..\\x", "/x"},
                                                        {"/a/b/../../..", "/"},
                                                        {"C:\\x", In("sub/C:/x")}};
    for (const auto& [name, full] : rows) {
      EXPECT_EQ(Full(name) + (name == std::string("..") ? "/" : ""), full) << name;
    }
    std::filesystem::current_path("/");
    EXPECT_EQ(Full("a/."), "/a");
    TChar fits[5] = TSTR("abc"), small[4];
    HFile::GetFullName(fits, 5, fits);
    HFile::GetFullName(small, 4, TSTR("abcde"));
    EXPECT_TRUE(Narrow(fits) == "/abc" && Narrow(small) == "abc");
    std::filesystem::current_path(Path("sub"));
    std::filesystem::remove(Path("sub"));
    EXPECT_EQ(Full("a/../b"), "a/../b");
  });
}

TEST_F(FilesByName, AttributesAreReadAndSet) {
  Put("file", "abc");
  chmod(Path("file").c_str(), 0664);
  const TString file = Name("file"), directory = Name(""), missing = Name("missing");
  EXPECT_TRUE(HFile::Exists(file.c_str()) && HFile::Exists(directory.c_str()) && !HFile::Exists(missing.c_str()));
  EXPECT_TRUE(HFile::IsDirectory(directory.c_str()) && !HFile::IsDirectory(file.c_str()));
  EXPECT_TRUE(!HFile::IsDirectory(missing.c_str()) && !HFile::IsReadOnly(missing.c_str()));
  for (const bool set : {false, true}) EXPECT_FALSE(HFile::SetReadOnly(missing.c_str(), set));
  const mode_t old = umask(002);
  struct stat status;
  for (const bool readOnly : {false, true, true, false}) {
    EXPECT_TRUE(HFile::SetReadOnly(file.c_str(), readOnly) && HFile::IsReadOnly(file.c_str()) == readOnly);
    EXPECT_TRUE(stat(Path("file").c_str(), &status) == 0 && (status.st_mode & 07777) == (readOnly ? 0444u : 0664u));
  }
  umask(old);
  EXPECT_TRUE(HFile::SetReadOnly(directory.c_str(), false) && !HFile::SetReadOnly(directory.c_str(), true));
}

TEST_F(FilesByName, FailuresOfCopyRenameAndRemoveAreCodes) {
  std::int32_t code = -1;
  Put("a", "content"), Put("b", "old");
  const TString a = Name("a"), b = Name("b"), c = Name("c"), far = Name("no/where");
  EXPECT_TRUE(!HFile::Copy(a.c_str(), b.c_str(), code, false) && code == resAlreadyExists && Content("b") == "old");
  EXPECT_TRUE(HFile::Copy(a.c_str(), b.c_str(), code, true) && code == resDone && Content("b") == "content");
  EXPECT_TRUE(!HFile::Rename(a.c_str(), b.c_str(), code) && code == resAlreadyExists);
  EXPECT_TRUE(!HFile::Rename(a.c_str(), far.c_str(), code) && code == resIllegalPath);
  EXPECT_TRUE(HFile::Rename(a.c_str(), c.c_str(), code) && code == resDone && Content("c") == "content");
  EXPECT_TRUE(!HFile::Remove(a.c_str(), code) && code == resNotFound);
  EXPECT_TRUE(HFile::Remove(b.c_str(), code) && code == resDone && !HFile::Exists(b.c_str()));
  EXPECT_TRUE(HFile::Copy(c.c_str(), a.c_str(), false) && !HFile::Copy(c.c_str(), a.c_str(), false));
  EXPECT_TRUE(HFile::Remove(c.c_str()) && !HFile::Remove(c.c_str()));
  EXPECT_TRUE(HFile::Rename(a.c_str(), c.c_str()) && !HFile::Rename(a.c_str(), c.c_str()) && Content("c") == "content");
}

TEST_F(FilesByName, TemporaryDirectoryIsTheFirstUsable) {
  support::InChild([this] {
    for (const char* name : {"one", "two", "last"}) std::filesystem::create_directory(Path(name));
    Put("file", "");
    // "TMP", "TEMP", "TMPDIR", and which of them it is.
    const std::tuple<const char*, const char*, const char*, std::string> rows[] = {
        {"one", "two", "last", In("one") + "\\"},  {"one/", "two", "last", In("one/")},
        {"no", "two", "last", In("two") + "\\"},   {"file", "two", "last", In("two") + "\\"},
        {"no", "file", "last", In("last") + "\\"}, {"no", "no", "no", "/var/tmp/"}};
    for (const auto& [tmp, temp, tmpdir, expected] : rows) {
      setenv("TMP", In(tmp).c_str(), 1), setenv("TEMP", In(temp).c_str(), 1), setenv("TMPDIR", In(tmpdir).c_str(), 1);
      TChar dir[261];
      HFile::GetTempDir(dir, 261);
      EXPECT_EQ(Narrow(dir), expected);
      HFile::GetTempDir(dir, 5);
      EXPECT_EQ(Narrow(dir), expected.substr(0, 4));
    }
  });
}

TEST_F(FilesByName, TemporaryFilesAreNewAndStayOpen) {
  support::InChild([this] {
    setenv("TMP", Directory().c_str(), 1);
    std::filesystem::current_path(Directory());
    const std::string in = In("");
    const TString directory = Name(""), bare = support::Units(Directory()), longText(80, 'x');
    const auto make = [&](const TChar* prefix, const TChar* ext, const TChar* dir) {
      HFile file;
      TChar name[261];
      EXPECT_TRUE(HFile::CreateTempFile(file, name, 261, prefix, ext, dir, false) && file.IsOpen());
      file << "mine";
      file.Close();
      std::string text = Narrow(name);
      std::replace(text.begin(), text.end(), '\\', '/');
      EXPECT_EQ(Content(text.substr(text.rfind('/') + 1)), "mine");
      // The number, whatever it is.
      const std::size_t digit = text.find_first_of("0123456789", text.rfind('/') == std::string::npos ? 0 : in.size());
      return text.replace(digit, text.find_first_not_of("0123456789", digit) - digit, "#");
    };
    EXPECT_EQ(make(nullptr, nullptr, nullptr), in + "~hf#.tmp");
    for (const TChar* ext : {TSTR("t"), TSTR(".t")}) EXPECT_EQ(make(TSTR("p"), ext, directory.c_str()), in + "p#.t");
    EXPECT_EQ(make(TSTR(""), TSTR("."), bare.c_str()), in + "#.");
    EXPECT_EQ(make(TSTR("p"), TSTR(""), TSTR("")), "p#");
    EXPECT_EQ(make(longText.c_str(), longText.c_str(), bare.c_str()),
              in + std::string(63, 'x') + "#." + std::string(62, 'x'));

    HFile file;
    TChar name[261];
    const TString missing = Name("missing"), tooLong(261, 'd');
    EXPECT_TRUE(!HFile::CreateTempFile(file, name, 261, nullptr, nullptr, missing.c_str(), true) &&
                file.res == resIllegalPath);
    EXPECT_TRUE(!HFile::CreateTempFile(file, name, 261, nullptr, nullptr, tooLong.c_str(), true) &&
                file.res == resIllegalName);
    EXPECT_TRUE(!HFile::CreateTempFile(file, name, 8, nullptr, nullptr, nullptr, true) && file.res == resIllegalName);
    EXPECT_TRUE(!HFile::CreateTempFile(file, name, 261, TSTR("no/"), nullptr, nullptr, true) &&
                file.res == resIllegalPath);
    EXPECT_TRUE(HFile::CreateTempFile(file, name, 261, nullptr, nullptr, nullptr, true));
    char byte;
    EXPECT_TRUE(file.ReadBytes(&byte, 1) == 0 && file.res == resNoPermission);
  });
}

}  // namespace
