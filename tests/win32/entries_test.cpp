#include "support/Entries.h"

#include <gtest/gtest.h>

#include "support/win32/Wine.h"

namespace {

using support::Entries;

TEST_F(Entries, AreRefusedByTheRulesOfThisHost) {
  const Refusal rows[] = {
      {"file", "FILE", 80, 32, 0}, {"file", "new*", 123, 123, 123}, {"new*", "none", 123, 123, 123}};
  CheckRefusals(rows);
  EXPECT_EQ(Delete("fil*"), 123u);
  const HANDLE held = host::CreateFileW(Name("old").c_str(), host::GENERIC_READ, 7, host::OPEN_EXISTING, 0);
  EXPECT_TRUE(Copy("file", "OLD", false) == 0 && Move("old", "new") == 0 && Delete("new") == 0);
  EXPECT_TRUE(host::CloseHandle(held) && Content("new").empty());
}

TEST_F(Entries, ChangeTheCaseOfTheirNamesAndStayWithAnOpenFile) {
  SKIP_UNDER_WINE("a file keeps the case of its name, and a directory that holds an open file is moved");
  EXPECT_EQ(Move("old", "OLD"), 0u);
  EXPECT_EQ(std::filesystem::canonical(Path("old")).filename(), L"OLD");
  const HANDLE held = host::CreateFileW(Name("dir/inner").c_str(), host::GENERIC_READ, 7, host::OPEN_EXISTING, 0);
  EXPECT_EQ(Move("dir", "other"), 5u);
  host::CloseHandle(held);
  EXPECT_EQ(Move("dir", "other"), 0u);
}

}  // namespace
