#include <gtest/gtest.h>

#include "support/Chains.h"

using support::Chain, support::I32, support::Lengths, support::Peek;

namespace {

TEST(Reading, ValuesAreLittleEndianAndTheRestStays) {
  Chain file({3, 4, 6}, "\xF1\xF2\xF3\xF4\xF5\xF6\xF7\xF8\xF9\xFA\xFB\xFC\xFD");
  std::int64_t quad = 0, rest = 0x1111;
  std::uint32_t dword = 0;
  std::int16_t word = 0;
  file.Reset();
  file.ReadWord(word);
  file.ReadDWord(dword);
  file.SetPos(4);
  file.ReadQWord(quad);
  file.ReadQWord(rest);
  EXPECT_EQ(word, static_cast<std::int16_t>(0xF2F1));
  EXPECT_EQ(dword, 0xF6F5F4F3);
  EXPECT_EQ(static_cast<std::uint64_t>(quad), 0xFCFBFAF9F8F7F6F5);
  EXPECT_EQ(rest, 0x11FD);
  EXPECT_TRUE(file.eof);
  EXPECT_EQ(file.res, resDone);
}

TEST(Reading, TakesWhatTheBufferHolds) {
  Chain file({2, 3}, "abcde");
  char byte = 'x';
  EXPECT_EQ(file.ReadTxt(&byte, 1, 1, 4), 0);
  EXPECT_EQ(byte, '\0');
  EXPECT_EQ(file.GetPos(), 1);
  EXPECT_EQ(file.ReadBytes(nullptr, 0), 0);
  EXPECT_EQ(file.res, resDone);
  const std::function<I32(Peek&)> refused[] = {DO(return f.ReadBytes(nullptr, 1)), DO(return f.ReadLine(nullptr, 9)),
                                               DO(return f.ReadTxt(nullptr, 9, 0, 1))};
  for (const auto& read : refused) {
    file.SetPos(1);
    EXPECT_EQ(read(file), 0) << &read - refused;
    EXPECT_EQ(std::pair(file.res, file.GetPos()), std::pair(I32{resCallError}, 1)) << &read - refused;
  }
}

/// The six relations of two sides, in the order == != < <= > >=.
template <typename Left, typename Right>
std::vector<bool> Relations(const Left& l, const Right& r) {
  return {l == r, l != r, l<r, l <= r, l> r, l >= r};
}

TEST(Comparison, IsThatOfByteStringsAndLeavesTheFiles) {
  VFile changed("abc");
  changed.SetPos(2);
  changed.ReplaceByte('d');  // in the scratch buffer alone
  EXPECT_TRUE(changed == "abd");
  EXPECT_TRUE(changed > "abc");
  const std::string k(1023, 'k');
  // clang-format off
  const std::string texts[] = {"", "a", "B", "abc", "abd", "abcd", "\xC8", k, k + "a", k + "\xC8", k + "ab",
                               k + "a" + k + "a", k + "a" + k + "b", std::string("a\0b", 3), std::string("\0", 1)};
  // clang-format on
  for (const std::string& left : texts) {
    for (const std::string& right : texts) {
      const auto size = static_cast<int>(left.size());
      Chain chain(size < 2 ? Lengths(left.size(), 1) : Lengths{1, (size - 1) / 2, size / 2}, left);
      VFile& f = chain;
      VFile g;
      g.AppendBytes(right.data(), support::Count(right.size()));
      f.SetPos(1);
      f.res = resDiskFull;
      f.eof = true;
      EXPECT_EQ(Relations(f, g), Relations(left, right)) << left << " " << right;
      EXPECT_EQ(Relations(f, right.c_str()), Relations(left, std::string(right.c_str()))) << left << " " << right;
      EXPECT_EQ(Relations(left.c_str(), g), Relations(std::string(left.c_str()), right)) << left << " " << right;
      EXPECT_EQ(std::tuple(f.GetPos(), f.res, f.eof, g.Eof()),
                std::tuple(std::min(1, size), I32{resDiskFull}, true, true));
    }
  }
}

// The page that was read last is the first in the cache.
TEST(Comparison, ReadsLeftThenRight) {
  struct Cache : VMem {
    using VMem::cacheHead;
  };
  const Chain left({9});
  const Chain right({9});
  VFile::ReleaseCache();
  EXPECT_TRUE(left <= right);
  const auto* newest = left.vm->*(&Cache::cacheHead);
  EXPECT_EQ(newest->addr, right.first->addr);
}

}  // namespace
