#include <gtest/gtest.h>
#include <tuple>

#include "hfile/HFile.h"
#include "support/Files.h"

namespace {

struct HFileText : support::InDirectory {
  const TString name = Name("file");
  HFile file;
  char buffer[16];

  void Open(const std::string& content) {
    if (file.IsOpen()) file.Close();
    Put("file", content);
    EXPECT_TRUE(file.Open(name.c_str()));
  }
  template <typename Value>
  void Travels(void (HFile::*write)(Value), void (HFile::*read)(Value&)) {
    Open("");
    const Value written = static_cast<Value>(0xF1F2F3F4F5F6F7F8);
    Value value = 0;
    (file.*write)(written);
    file.Reset();
    (file.*read)(value);
    EXPECT_TRUE(value == written && file.Length() == sizeof(Value) && !file.eof && file.res == resDone);
    file.SetPos(sizeof(Value) - 1);
    (file.*read)(value);
    EXPECT_EQ(file.eof, sizeof(Value) > 1);
    file.Close();
    EXPECT_EQ(Content("file")[0], '\xF8');
  }
};

/// `long` belongs to the forms of its width.
template <typename Long, typename File>
constexpr auto WriterOf() -> void (File::*)(Long) {
  if constexpr (sizeof(Long) == 8) return &File::WriteQWord;
  if constexpr (sizeof(Long) == 4) return &File::WriteDWord;
}
template <typename Long, typename File>
constexpr auto ReaderOf() -> void (File::*)(Long&) {
  if constexpr (sizeof(Long) == 8) return &File::ReadQWord;
  if constexpr (sizeof(Long) == 4) return &File::ReadDWord;
}

TEST_F(HFileText, ValuesTravelAsTheirBytes) {
  Travels<unsigned char>(&HFile::WriteByte, &HFile::ReadByte);
  Travels<signed char>(&HFile::WriteChar, &HFile::ReadChar);
  Travels<char>(&HFile::WriteChar, &HFile::ReadChar);
  Travels<unsigned char>(&HFile::WriteChar, &HFile::ReadChar);
  Travels<short>(&HFile::WriteWord, &HFile::ReadWord);
  Travels<unsigned short>(&HFile::WriteWord, &HFile::ReadWord);
  Travels<int>(&HFile::WriteDWord, &HFile::ReadDWord);
  Travels<unsigned int>(&HFile::WriteDWord, &HFile::ReadDWord);
  Travels<long long>(&HFile::WriteQWord, &HFile::ReadQWord);
  Travels<unsigned long long>(&HFile::WriteQWord, &HFile::ReadQWord);
  Travels<long>(WriterOf<long, HFile>(), ReaderOf<long, HFile>());
  Travels<unsigned long>(WriterOf<unsigned long, HFile>(), ReaderOf<unsigned long, HFile>());
  Open("\1\2\3");
  unsigned int rest = ~0u;
  char ch;
  signed char schar;
  unsigned char byte;
  file.SetPos(1);
  file.ReadDWord(rest);
  file.Reset();
  file >> ch >> schar >> byte;
  EXPECT_TRUE(rest == 0xFFFF0302 && ch == 1 && schar == 2 && byte == 3);
}

TEST_F(HFileText, NumbersGoOutAsTextAndCharactersAsThemselves) {
  Open("");
  file << 'A' << static_cast<signed char>('B') << static_cast<unsigned char>('C') << ""
       << " text ";
  file << static_cast<short>(-12) << ' ' << static_cast<unsigned short>(65535) << ' ' << INT_MIN << ' ' << ~0u << ' ';
  file << LONG_MIN << ' ' << ULONG_MAX << ' ' << LLONG_MIN << ' ' << ULLONG_MAX;
  file.WriteLn();
  file.Write(static_cast<signed char>('s'), 2);
  file.Write(static_cast<unsigned char>('u'), 1);
  file.radix = 2;
  file << ' ' << -1 << ' ' << ULLONG_MAX;
  for (const std::int32_t none : {1, 37}) {
    file.radix = none;
    file << 5;
  }
  file.Close();
  EXPECT_EQ(Content("file"), "ABC text -12 65535 -2147483648 4294967295 " + std::to_string(LONG_MIN) + ' ' +
                                 std::to_string(ULONG_MAX) + " -9223372036854775808 18446744073709551615\r\nssu " +
                                 std::string(32, '1') + ' ' + std::string(64, '1'));
}

TEST_F(HFileText, StretchesAreCutToFileCountAndBuffer) {
  Open("0123456789");
  // clang-format off
  const std::tuple<int, int, int, std::string> rows[] = {
      {4, 0, 100, "012"}, {4, 0, 3, "012"}, {4, 0, 4, "012"}, {4, 7, 2, "78"}, {9, 7, INT_MAX, "789"}, {9, 10, 5, ""},
      {9, INT_MAX, 5, ""}, {1, 3, 5, ""}};
  const std::tuple<char*, int, int, int> bad[] = {
      {nullptr, 4, 0, 1}, {buffer, 0, 0, 1}, {buffer, 4, -1, 1}, {buffer, 4, 0, -1}};
  // clang-format on
  for (const auto& [size, position, count, text] : rows) {
    file.eof = true;
    EXPECT_EQ(file.ReadTxt(buffer, size, position, count), static_cast<int>(text.size()));
    EXPECT_TRUE(buffer == text && file.res == resDone && !file.eof) << position << " " << count;
    EXPECT_EQ(file.GetPos(), std::min(position, 10) + static_cast<int>(text.size()));
  }
  for (const auto& [to, size, position, count] : bad) {
    file.SetPos(0);
    buffer[0] = 'x';
    EXPECT_TRUE(file.ReadTxt(to, size, position, count) == 0 && file.res == resCallError && buffer[0] == 'x');
    EXPECT_TRUE(file.ReadTxt(buffer, 4, 0, 1) == 0 && file.ReadLine(buffer, 4) == 0 && buffer[0] == 'x');
  }
  file.Close();
  for (const bool line : {false, true}) {
    file.res = resDone;
    buffer[0] = 'x';
    EXPECT_EQ(line ? file.ReadLine(buffer, 4) : file.ReadTxt(buffer, 4, 0, 1), 0);
    EXPECT_TRUE(file.res == resCallError && buffer[0] == '\0');
  }
}

TEST_F(HFileText, LinesEndInAnyMix) {
  // clang-format off
  const std::tuple<std::string, int, std::string> rows[] = {
      {"a\rb", 9, "a|b!"}, {"a\r\nb", 9, "a|b!"}, {"\n\r", 9, "||!"}, {"\r\r\n\n\r", 9, "||||!"}, {"", 9, "!"},
      {"abcd\nef", 3, "ab|ef!"}, {"abc\r\nd\n", 1, "||!"}, {std::string("a\0b\n", 4), 9, "a|!"}};
  // clang-format on
  for (const auto& [content, size, lines] : rows) {
    Open(content);
    std::string read;
    do {
      EXPECT_LT(file.ReadLine(buffer, size), size);
      read += buffer;
      read += file.eof ? '!' : '|';
    } while (!file.eof);
    EXPECT_TRUE(read == lines && file.res == resDone) << read << " of " << content;
  }
  for (char* to : {buffer, static_cast<char*>(nullptr)}) {
    file.Reset();
    EXPECT_TRUE(file.ReadLine(to, to == nullptr ? 4 : 0) == 0 && file.res == resCallError && file.GetPos() == 0);
  }
}

}  // namespace
