#include <gtest/gtest.h>

#include "support/Chains.h"

using support::Chain, support::I32, support::Peek;

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
  const std::function<I32(Peek&)> refused[] = {
      [](Peek& f) { return f.ReadBytes(nullptr, 1); },
      [](Peek& f) { return f.ReadLine(nullptr, 9); },
      [](Peek& f) { return f.ReadTxt(nullptr, 9, 0, 1); },
  };
  for (const auto& read : refused) {
    file.SetPos(1);
    EXPECT_EQ(read(file), 0) << &read - refused;
    EXPECT_EQ(std::pair(file.res, file.GetPos()), std::pair(I32{resCallError}, 1)) << &read - refused;
  }
}

}  // namespace
