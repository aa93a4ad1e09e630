#include "hfile/HFileDir.h"

#include <gtest/gtest.h>
#include <tuple>
#include <vector>

#include "hfile/HFile.h"
#include "support/Walks.h"
#include "support/posix/Process.h"

namespace {

using support::Walks;

TEST_F(Walks, TellCasesApartAndTakeStarsInNames) {
  Put("B.TXT", "");
  Put("x*y", "");
  const std::pair<const char*, std::string> rows[] = {{"*.T?T", "B.TXT,"}, {"?*y", "x*y,"}, {"*.txt", ""}};
  for (const auto& [pattern, names] : rows) EXPECT_EQ(Matching(pattern), names) << pattern;
}

TEST_F(Walks, TakeTheDirectoryAsItStands) {
  for (const char* name : {"n1", "n2", "n3"}) Put(name, "");
  HFileDir dir(Name("n?").c_str());
  Put("n0", "");
  TChar name[261];
  for (int i = 0; i < 4; ++i) {
    EXPECT_TRUE(dir.FindNext(name, 261) && TString(name).back() == '0' + i && dir.Count() == i + 1);
    if (i != 1) continue;
    std::filesystem::remove(Path("n2"));
    Put("n9", "");
  }
  EXPECT_FALSE(dir.FindNext(name, 261));
}

TEST_F(Walks, RelativePatternsAndWhatLooksLikeADrive) {
  support::InChild([this] {
    std::filesystem::current_path(Directory());
    for (const char* name : {"c:one", "c:two", "cat"}) Put(name, "");
    for (const TChar* pattern : {TSTR("c:*"), TSTR("c:*.*"), TSTR("c:?*")}) {
      HFileDir dir(pattern);
      TChar name[261];
      EXPECT_TRUE(dir.FindNext(name, 261) && name == Name("c:one") && dir.FindNext(name, 261) && name == Name("c:two"));
      EXPECT_FALSE(dir.FindNext(name, 261));
    }
  });
}

TEST_F(Walks, ReachEveryFileAsItself) {
  std::filesystem::create_directory(Path("victim"));
  std::filesystem::create_directory(Path("sub"));
  Put("victim/important.tmp", "important");
  const std::vector<std::string> names = {"..\\victim\\important.tmp", "\\",   "a\\",
                                          "\\\xF0\x9F\x98\x80\\",      "\xFF", "f\x80\xC3\xA4\xC3"};
  for (const std::string& name : names) Put("sub/" + name, name);
  HFileDir dir(Name("sub/*").c_str());
  std::size_t removed = 0;
  for (TChar name[261]; dir.FindNext(name, 261);) {
    if (HFile::IsDirectory(name)) continue;
    HFile file;
    char content[64] = {};
    EXPECT_TRUE(file.Open(name) && file.ReadBytes(content, sizeof content) > 0);
    EXPECT_EQ(Content(std::string("sub/") + content), content);
    file.Close();
    EXPECT_TRUE(HFile::Remove(name) && !std::filesystem::exists(Path(std::string("sub/") + content))) << content;
    ++removed;
  }
  EXPECT_EQ(std::tuple(removed, Content("victim/important.tmp")), std::tuple(names.size(), "important"));
  support::InChild([this] {
    std::filesystem::create_directory(Path("a\\b"));
    std::filesystem::current_path(Path("a\\b"));
    TChar full[261];
    HFile::GetFullName(full, 261, TSTR("c"));
    EXPECT_TRUE(HFile().Create(full, false) && std::filesystem::exists(Path("a\\b/c")));
  });
}

}  // namespace
