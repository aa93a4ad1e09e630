#include "hfile/HFileDir.h"

#include <gtest/gtest.h>
#include <tuple>
#include <vector>

#include "hfile/HFile.h"
#include "host/Host.h"
#include "support/Files.h"
#include "support/Halts.h"
#include "support/Process.h"

namespace {

struct Walks : support::InDirectory {
  /// The names that match, each with a comma.
  std::string Matching(const std::string& pattern) const {
    HFileDir dir;
    std::string names;
    TChar name[261];
    const TString start = Name("");
    for (bool found = dir.FindFirst(name, 261, Name(pattern).c_str()); found; found = dir.FindNext(name, 261)) {
      EXPECT_TRUE(TString(name).starts_with(start));
      names += std::filesystem::path(name + start.size()).string() + ",";
    }
    EXPECT_TRUE(name[0] == 0 && !dir.FindNext(name, 261));
    return names;
  }
};

TEST_F(Walks, GoWhereThePathOfThePatternLeads) {
  Put("a", "");
  Put("B.TXT", "");
  Put("x*y", "");
  std::filesystem::create_directory(Path("dir"));
  const std::pair<const char*, std::string> rows[] = {{"dir/../*.T?T", "B.TXT,"},
                                                      {"dir/..\\?*y", "x*y,"},
                                                      {"dir", "dir,"},
                                                      {"dir\\*z", ""},
                                                      {"none/*", ""},
                                                      {"a/*", ""},
                                                      {"d*r/*", ""},
                                                      {"dir/", ""},
                                                      {"*.txt", ""}};
  for (const auto& [pattern, names] : rows) EXPECT_EQ(Matching(pattern), names) << pattern;
  host::_wfinddata64i32_t record;
  for (const TChar* bad : {TSTR(""), static_cast<const TChar*>(nullptr)})
    EXPECT_EQ(host::_wfindfirst64i32(bad, &record), -1);
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

TEST_F(Walks, AreInOneOfFourStates) {
  for (const char* name : {"n1", "n2", "n3"}) Put(name, "");
  TChar name[261] = TSTR("x");
  HFileDir idle;
  EXPECT_TRUE(!idle.FindNext(name, 261) && name[0] == 0 && idle.Count() == 0);
  HFileDir dir(Name("n?").c_str());
  Put("n0", "");
  EXPECT_TRUE(dir.Count() == 0 && !dir.FindNext(nullptr, 0));
  for (int i = 0; i < 4; ++i) {
    EXPECT_TRUE(dir.FindNext(name, 261) && TString(name).back() == '0' + i && dir.Count() == i + 1);
    if (i == 1) {
      std::filesystem::remove(Path("n2"));
      Put("n9", "");
    }
    EXPECT_TRUE(!dir.FindNext(nullptr, 261) && dir.Count() == i + 1);
  }
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(!dir.FindNext(name, 261) && name[0] == 0 && dir.Count() == 4);
  // A name that does not fit is cut, and the walk goes on.
  EXPECT_TRUE(dir.FindFirst(name, 5, Name("n*").c_str()) && TString(name) == Name("n0").substr(0, 4));
  EXPECT_TRUE(dir.FindNext(name, 261) && name == Name("n1") && dir.Count() == 2);
  EXPECT_TRUE(!dir.FindFirst(name, 261, Name("none").c_str()) && name[0] == 0 && dir.Count() == 0);
  Put("none", "");
  EXPECT_TRUE(!dir.FindNext(name, 261) && dir.Count() == 0) << "a walk that found nothing has ended";
  EXPECT_TRUE(dir.FindFirst(name, 261, Name("n*").c_str()) && !dir.FindFirst(name, 261, TSTR("")) && dir.Count() == 0);
  EXPECT_TRUE(dir.FindFirst(name, 261, Name("n*").c_str()) && !dir.FindFirst(nullptr, 261, Name("n*").c_str()));
  EXPECT_TRUE(dir.Count() == 0 && !dir.FindNext(name, 261));
  dir.Start(Name("n*").c_str());
  EXPECT_ASSERTION("HFile", dir.FindNext(name, 0));
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
