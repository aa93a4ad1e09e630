#include "hfile/HFileDir.h"

#include <gtest/gtest.h>

#include "host/Host.h"
#include "support/Halts.h"
#include "support/Walks.h"

namespace {

using support::Walks;

TEST_F(Walks, GoWhereThePathOfThePatternLeads) {
  Put("a", "");
  Put("B.TXT", "");
  Put("xy", "");
  std::filesystem::create_directory(Path("dir"));
  // clang-format off
  const std::pair<const char*, std::string> rows[] = {
      {"dir/../*.T?T", "B.TXT,"}, {"dir/..\\?*y", "xy,"}, {"dir", "dir,"}, {"dir\\*z", ""}, {"none/*", ""},
      {"a/*", ""}, {"d*r/*", ""}, {"dir/", ""}};
  // clang-format on
  for (const auto& [pattern, names] : rows) EXPECT_EQ(Matching(pattern), names) << pattern;
  host::_wfinddata64i32_t record;
  for (const TChar* bad : {TSTR(""), static_cast<const TChar*>(nullptr)})
    EXPECT_EQ(host::_wfindfirst64i32(bad, &record), -1);
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

}  // namespace
