#include <gtest/gtest.h>
#include <limits>
#include <tuple>

#include "hfile/HFile.h"
#include "support/Files.h"

namespace {

struct HFileText : support::InDirectory {
  const TString name = Name("file");
  HFile file;
  char buffer[16];

  /// What `write` puts into a new file.
  template <typename Write>
  std::string Written(Write write) {
    EXPECT_TRUE(file.Create(name.c_str(), true));
    write();
    EXPECT_EQ(file.res, resDone);
    file.Close();
    return Content("file");
  }
  void Open(const std::string& content) {
    Put("file", content);
    EXPECT_TRUE(file.Open(name.c_str()));
  }
};

TEST_F(HFileText, ValuesTravelAsTheirBytes) {
  EXPECT_EQ(Written([this] {
              file.WriteByte(0xF1), file.WriteChar('c'), file.WriteChar(static_cast<signed char>(-2));
              file.WriteChar(static_cast<unsigned char>(0xF3)), file.WriteWord(static_cast<short>(-2));
              file.WriteWord(static_cast<unsigned short>(0x0102)), file.WriteDWord(0x01020304), file.WriteDWord(~2u);
              file.WriteQWord(0x0102030405060708LL), file.WriteQWord(~2ULL), file.WriteQWord(-2L), file.WriteQWord(7UL);
            }),
            std::string("\xF1"
                        "c\xFE\xF3\xFE\xFF\2\1\4\3\2\1\xFD\xFF\xFF\xFF\10\7\6\5\4\3\2\1\xFD") +
                std::string(7, '\xFF') + "\xFE" + std::string(7, '\xFF') + "\7" + std::string(7, '\0'));
  EXPECT_TRUE(file.Open(name.c_str()));
  unsigned char byte, last;
  char ch;
  signed char schar;
  short word;
  unsigned short uword;
  int dword;
  unsigned int udword;
  long long qword;
  unsigned long long uqword;
  long lqword;
  unsigned long ulqword;
  file.ReadByte(byte), file.ReadChar(ch), file.ReadChar(schar), file.ReadChar(last), file.ReadWord(word);
  file.ReadWord(uword), file.ReadDWord(dword), file.ReadDWord(udword), file.ReadQWord(qword), file.ReadQWord(uqword);
  file.ReadQWord(lqword), file.ReadQWord(ulqword);
  EXPECT_TRUE(byte == 0xF1 && ch == 'c' && schar == -2 && last == 0xF3 && word == -2 && uword == 0x0102);
  EXPECT_TRUE(dword == 0x01020304 && udword == ~2u && qword == 0x0102030405060708 && uqword == ~2ULL);
  EXPECT_TRUE(lqword == -2 && ulqword == 7 && !file.eof && file.res == resDone);
  file.SetPos(-2, 2), file.ReadDWord(udword);
  EXPECT_TRUE(udword == 0xFFFF0000 && file.eof && file.res == resDone);
  file.SetPos(1), file >> ch >> schar >> byte;
  EXPECT_TRUE(ch == 'c' && schar == -2 && byte == 0xF3);
}

TEST_F(HFileText, NumbersGoOutAsTextAndCharactersAsThemselves) {
  EXPECT_EQ(
      Written([this] {
        file << 'A' << static_cast<signed char>('B') << static_cast<unsigned char>('C') << ""
             << " text ";
        file << static_cast<short>(-12) << ' ' << static_cast<unsigned short>(65535) << ' ' << INT_MIN << ' ' << ~0u;
        file << ' ' << LONG_MIN << ' ' << ULONG_MAX << ' ' << LLONG_MIN << ' ' << ULLONG_MAX;
        file.WriteLn(), file.Write(static_cast<signed char>('s'), 2), file.Write(static_cast<unsigned char>('u'), 1);
        file.radix = 16, file << ' ' << -1 << ' ' << -1LL, file.radix = 2, file << ' ' << ULLONG_MAX;
      }),
      "ABC text -12 65535 -2147483648 4294967295 -9223372036854775808 18446744073709551615 "
      "-9223372036854775808 18446744073709551615\r\nssu ffffffff ffffffffffffffff " +
          std::string(64, '1'));
}

TEST_F(HFileText, StretchesAreCutToFile_CountAndBuffer) {
  Open("0123456789");
  const std::tuple<int, int, int, std::string> rows[] = {{4, 0, 100, "012"},  {4, 0, 3, "012"},       {4, 0, 4, "012"},
                                                         {4, 7, 2, "78"},     {9, 7, INT_MAX, "789"}, {9, 10, 5, ""},
                                                         {9, INT_MAX, 5, ""}, {1, 3, 5, ""}};
  for (const auto& [size, position, count, text] : rows) {
    file.eof = true;
    EXPECT_EQ(file.ReadTxt(buffer, size, position, count), static_cast<int>(text.size()));
    EXPECT_TRUE(buffer == text && file.res == resDone && !file.eof) << position << " " << count;
    EXPECT_EQ(file.GetPos(), std::min(position, 10) + static_cast<int>(text.size()));
  }
  const std::tuple<char*, int, int, int> bad[] = {
      {nullptr, 4, 0, 1}, {buffer, 0, 0, 1}, {buffer, 4, -1, 1}, {buffer, 4, 0, -1}};
  for (const auto& [to, size, position, count] : bad) {
    file.SetPos(0), buffer[0] = 'x';
    EXPECT_TRUE(file.ReadTxt(to, size, position, count) == 0 && file.res == resCallError && buffer[0] == 'x');
    EXPECT_TRUE(file.ReadTxt(buffer, 4, 0, 1) == 0 && file.ReadLine(buffer, 4) == 0 && buffer[0] == 'x');
  }
  file.Close();
  EXPECT_TRUE(file.ReadTxt(buffer, 4, 0, 1) == 0 && file.res == resCallError && buffer[0] == '\0');
  file.res = resDone, buffer[0] = 'x';
  EXPECT_TRUE(file.ReadLine(buffer, 4) == 0 && file.res == resCallError && buffer[0] == '\0');
}

TEST_F(HFileText, LinesEndInAnyMix) {
  const std::tuple<std::string, int, std::string> rows[] = {
      {"a\rb", 9, "a|b!"}, {"a\r\nb", 9, "a|b!"},     {"\n\r", 9, "||!"},       {"\r\r\n\n\r", 9, "||||!"},
      {"", 9, "!"},        {"abcd\nef", 3, "ab|ef!"}, {"abc\r\nd\n", 1, "||!"}, {std::string("a\0b\n", 4), 9, "a|!"}};
  for (const auto& [content, size, lines] : rows) {
    Open(content);
    std::string read;
    do {
      EXPECT_LT(file.ReadLine(buffer, size), size);
      read += buffer, read += file.eof ? '!' : '|';
    } while (!file.eof);
    EXPECT_TRUE(read == lines && file.res == resDone) << read << " of " << content;
    file.Close();
  }
  Open("x");
  EXPECT_TRUE(file.ReadLine(nullptr, 4) == 0 && file.res == resCallError);
  file.SetPos(0);
  EXPECT_TRUE(file.ReadLine(buffer, 0) == 0 && file.res == resCallError && file.GetPos() == 0);
}

}  // namespace
