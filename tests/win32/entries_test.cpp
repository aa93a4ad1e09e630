#include "support/Entries.h"

#include <gtest/gtest.h>

#include "support/win32/Wine.h"

namespace {

using support::Entries;

TEST_F(Entries, AreRefusedByTheRulesOfThisHost) {
  const Refusal rows[] = {{"file", "FILE", 80, 32, 0},
                          {"file", "new*", 123, 123, 123},
                          {"file", "dir\\", 80, 5, 183},
                          {"FILE", "LOCKED", 80, 5, 183},
                          {"new*", "none", 123, 123, 123}};
  CheckRefusals(rows);
  EXPECT_EQ(Delete("fil*"), 123u);
  EXPECT_TRUE(Delete("FILE") == 0 && Content("file").empty());
}

TEST_F(Entries, ChangeTheCaseOfTheirNames) {
  SKIP_UNDER_WINE("the file keeps the case of its name");
  EXPECT_EQ(Move("file", "FILE"), 0u);
  int found = 0;
  for (const auto& entry : std::filesystem::directory_iterator(Directory())) {
    if (entry.path().filename() == L"FILE") ++found;
  }
  EXPECT_EQ(found, 1);
}

struct OpenEntry {
  std::uint32_t access;
  std::uint32_t share;
  /// Of a copy from it, a copy onto it, a move of it and its deletion.
  std::uint32_t from, onto, move, remove;
};

TEST_F(Entries, ThatAreOpenAllowWhatTheirSharingSays) {
  constexpr std::uint32_t kRead = host::GENERIC_READ;
  constexpr std::uint32_t kWrite = host::GENERIC_WRITE;
  constexpr std::uint32_t kOpen = ~0u;  // not settled, so not tried
  const OpenEntry rows[] = {{kRead, 0, 32, 32, 32, 32},
                            {kRead, FILE_SHARE_READ, 0, 32, 32, 32},
                            {kWrite, FILE_SHARE_READ | FILE_SHARE_WRITE, 0, kOpen, 32, 32},
                            {kRead, FILE_SHARE_READ | FILE_SHARE_WRITE, 0, 0, 32, 32},
                            {kRead, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, 0, 0, 0, 0}};
  for (const auto& row : rows) {
    Put("old", "old");
    std::filesystem::remove(Path("new"));
    std::filesystem::remove(Path("moved"));
    const HANDLE held = host::CreateFileW(Name("old").c_str(), row.access, row.share, host::OPEN_EXISTING, 0);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_EQ(Copy("old", "new", true), row.from) << row.share;
    if (row.onto != kOpen) {
      EXPECT_EQ(Copy("file", "old", false), row.onto) << row.share;
    }
    EXPECT_EQ(Move("old", "moved"), row.move) << row.share;
    EXPECT_EQ(Delete(row.move == 0 ? "moved" : "old"), row.remove) << row.share;
    host::CloseHandle(held);
    EXPECT_EQ(Content("old"), row.remove == 0 ? "" : row.onto == 0 ? "content" : "old") << row.share;
  }
}

TEST_F(Entries, ADirectoryThatHoldsAnOpenFileStays) {
  SKIP_UNDER_WINE("the directory is moved");
  const HANDLE held = host::CreateFileW(Name("dir/inner").c_str(), host::GENERIC_READ, 7, host::OPEN_EXISTING, 0);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  EXPECT_EQ(Move("dir", "other"), 5u);
  host::CloseHandle(held);
  EXPECT_EQ(Move("dir", "other"), 0u);
}

}  // namespace
