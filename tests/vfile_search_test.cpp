#include <gtest/gtest.h>

#include "support/Chains.h"

using support::Chain, support::I32;

namespace {

// A word found or not from a place: forward the place behind it, backward its start; and where the file then stands.
TEST(Search, WantsWholeWordsOfAnyCase) {
  // clang-format off
  const std::tuple<std::string, const char*, bool, I32, bool, I32, I32> rows[] = {
      {"cat", "cat", false, 0, true, 3, 0}, {"(cat)", "cat", false, 0, true, 4, 0},
      {"cats cat_", "cat", false, 0, true, 8, 4}, {"concat cat1", "cat", false, 0, false, 12, 11},
      {"xaaa", "aa", false, 0, false, 5, 4}, {"x CaT", "cAt", false, 1, true, 5, 1},
      {"\xE9 \xC9", "\xC9", false, 0, true, 3, 1}, {"cat", "cat", true, 3, true, 0, 3},
      {"(cat)", "cat", true, 9, true, 1, 5}, {"_cat 1cat", "cat", true, 9, true, 1, 5},
      {"concat cat1", "cAT", true, 11, false, -1, 0}, {"aaax", "aa", true, 4, false, -1, 0},
      {"abc", "", false, 99, true, 99, 3}, {"abc", "", true, 99, true, 99, 3}, {"abc", "abc", false, 9, false, 10, 3}};
  // clang-format on
  for (const auto& [text, word, back, from, found, to, pos] : rows) {
    Chain file({2, static_cast<int>(text.size()) - 2}, text);
    const auto search = back ? &VFile::FindBack : &VFile::Find;
    I32 at = from;
    EXPECT_EQ((file.*search)(at, word, true, true), found) << text;
    EXPECT_EQ(std::pair(at, file.GetPos()), std::pair(to, pos)) << text;
  }
}

}  // namespace
