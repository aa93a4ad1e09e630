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

// Each text in blocks of every length: the text, the bytes that each character took, the lines cut to two characters.
TEST(Reading, TextFoldsLineEnds) {
  const std::tuple<std::string, std::string, std::string, std::string> rows[] = {
      {"\r", "\n", "1", "|"},
      {"\rx\r\r\n\n\ry", "\nx\n\n\n\ny", "1112111", "|x||||y|"},
      {"abc\r\nde\rfg\n", "abc\nde\nfg\n", "1112111111", "ab|de|fg|"}};
  for (const auto& [text, folded, consumed, lines] : rows) {
    for (std::size_t n = 1; n <= text.size(); ++n) {
      Lengths lens(text.size() / n, static_cast<int>(n));
      if (text.size() % n > 0) lens.push_back(static_cast<int>(text.size() % n));
      Chain file(lens, text);
      std::string readFolded;
      std::string readConsumed;
      char ch;
      file.Reset();
      while (const I32 got = file.Read(ch)) {
        readFolded += ch;
        readConsumed += std::to_string(got);
      }
      EXPECT_EQ(readFolded, folded);
      EXPECT_EQ(readConsumed, consumed);
      EXPECT_TRUE(file.eof);
      EXPECT_EQ(ch, '\0');
      std::string readLines;
      file.Reset();
      while (!file.Eof()) {
        char line[3];
        EXPECT_LE(file.ReadLine(line, 3), 2);
        readLines += line;
        readLines += "|";
      }
      EXPECT_EQ(readLines, lines);
      file.SetPos(-1, 2);
      file.Read(ch);
      EXPECT_FALSE(file.eof);
      file.Reset();
      ch = 'x';
      EXPECT_EQ(file.ReadLine(&ch, 1), 0);
      EXPECT_EQ(ch, '\0');
      EXPECT_FALSE(file.Bof());
      EXPECT_EQ(file.res, resDone);
      EXPECT_EQ(file.ReadLine(&ch, 0), 0);
      EXPECT_EQ(file.res, resCallError);
    }
  }
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
    EXPECT_EQ(file.res, resCallError) << &read - refused;
    EXPECT_EQ(file.GetPos(), 1) << &read - refused;
  }
}

}  // namespace
