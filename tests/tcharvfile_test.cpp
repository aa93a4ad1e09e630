#include <gtest/gtest.h>
#include <thread>

#include "support/Halts.h"
#include "support/HugeString.h"
#include "support/Texts.h"

using support::I32, support::TextPeek;

namespace {

TEST(Units, AreTwoBytesEach) {
  TextPeek odd;
  odd.ReplaceBuf(0, 0, "a\0b\0c", 5);
  EXPECT_EQ(odd.TCharLength(), 2);
  EXPECT_EQ(odd.GetTCharPos(), 2);
  EXPECT_EQ(odd.pos, 5);
  // Where the byte then stands, or -1 for a refusal that left it at unit 1.
  const std::tuple<I32, I32, I32> moves[] = {{0x3FFFFFFF, 0, 5}, {0x40000000, 0, 5}, {-1, 0, -1}, {1, 1, 4},
                                             {-2, 1, -1},        {-1, 2, 3},         {0, 3, -1}};
  for (const auto& [offset, origin, to] : moves) {
    odd.SetPos(2);
    origin == 0 ? odd.SetTCharPos(offset) : odd.SetTCharPos(offset, origin);
    EXPECT_EQ(std::pair(odd.pos, odd.res), to < 0 ? std::pair(2, I32{resCallError}) : std::pair(to, I32{resDone}))
        << to;
  }
  EXPECT_EQ(TCharVFile(odd, 1, 1).ToString(), TSTR("b"));
  EXPECT_EQ(TCharVFile(odd, 0, 0x40000000).TCharLength(), 2);
  EXPECT_EQ(TCharVFile(odd, -1).res, resCallError);
  TChar unit = 0;
  TChar units[3] = {};
  odd.SetTCharPos(1);
  EXPECT_EQ(odd.ReadTChars(units, 0x40000000), 1);
  EXPECT_EQ(std::tuple(char(units[0]), odd.pos, odd.eof), std::tuple('b', 5, true));
  EXPECT_EQ(odd.ReadTChars(units, -1), 0);
  EXPECT_EQ(odd.res, resCallError);
  // clang-format off
  const std::tuple<int, int, int, int, int> rows[] = {
      {2, 0x62, 4, 0x61, 0}, {4, 0x1263, 5, 0x62, 2}, {5, 0x1234, 5, 0x6300, 3}, {1, 0x6200, 3, 0x6100, 0}, {0, 0x61, 2, 0, 0}};
  // clang-format on
  for (const auto& [from, next, to, prev, back] : rows) {
    odd.SetPos(from);
    unit = 0x1234;
    odd.ReadTChar(unit);
    EXPECT_EQ(std::tuple(int{unit}, odd.pos, odd.eof), std::tuple(next, to, from >= 4)) << from;
    odd.SetPos(from);
    odd.ReadPrevTChar(unit);
    EXPECT_EQ(std::tuple(int{unit}, odd.pos, odd.eof), std::tuple(prev, back, from < 2)) << from;
  }
}

#define EDIT(...) #__VA_ARGS__, [](TextPeek & t, [[maybe_unused]] const TCharVFile& o) { __VA_ARGS__; }

// On the text "abcd" with the position behind its first unit; `o` is "012". The outcome is the content with "." for U+0000,
// the position in bytes, `res`, and the calls through the slots.
const struct {
  const char* what;
  void (*edit)(TextPeek& t, const TCharVFile& o);
  const char* outcome;
} kEdits[] = {
    // clang-format off
    {EDIT(t.InsertTChar('x'); t.InsertTChar('y', 2)), "axyybcd 8 0 b2,0,2 b4,0,2 b6,0,2"},
    {EDIT(t.InsertTChar('x', 0); t.AppendTChar('x', -1)), "abcd 2 0"},
    {EDIT(t.InsertTChars(TSTR("xyz"), 2); t.InsertTChars(TString(3, TSTR('z')), 1)), "axyzbcd 8 0 b2,0,4 b6,0,2"},
    {EDIT(t.InsertTStr(TSTR("xy\0z")); t.InsertTStr(TString(1, 0))), "axy.bcd 8 0 b2,0,4 b6,0,2"},
    {EDIT(t.InsertTChars(o, 1, 2); t.InsertTChars(o, 2, MaxLen)), "a122bcd 8 0 t2,0,2,4 t6,0,4,max"},
    {EDIT(t.InsertTChars(t, 0, 4)), "aabcdbcd 10 0 t2,0,0,8"},
    {EDIT(t.AppendTChar('x'); t.AppendTChar('y', 2)), "abcdxyy 14 0 b8,0,2 b10,0,2 b12,0,2"},
    {EDIT(t.AppendTChars(TString(3, TSTR('z')), 1)), "abcdz 10 0 b8,0,2"},
    {EDIT(t.AppendTStr(TSTR("x")); t.AppendTStr(TString(1, 0))), "abcdx. 12 0 b8,0,2 b10,0,2"},
    {EDIT(t.AppendTChars(o, 0, 1)), "abcd0 10 0 t8,0,0,2"}, {EDIT(t.DeleteTChars(3, MaxLen)), "abc 6 0 b6,max,0"},
    {EDIT(t.DeleteTChars(0x40000000, 1)), "abcd 8 0 bmax,2,0"}, {EDIT(t.TruncateTChars()), "a 2 0 b2,max,0"},
    {EDIT(t.ReplaceTChar(MaxLen, 'x'); t.ReplaceTChar(2, 'y')), "abydx 6 0"},
    {EDIT(t = TChar{0}; t = TSTR("")), " 0 0"}, {EDIT(t = TSTR("xyz"); t = TString(2, 0)), ".. 4 0"},
    {EDIT(t = o; t = static_cast<TCharVFile&>(t)), "012 6 0"},
    {EDIT(t << TChar{'x'} << TSTR("y") << TString(1, 0)), "axy.bcd 8 0 b2,0,2 b4,0,2 b6,0,2"},
    {EDIT(t << o << -5), "a012-5bcd 12 0 t2,0,0,max b8,0,4"},
    {EDIT(t << short{-32768}; t.radix = 36; t << static_cast<unsigned short>(65535)), "a-327681ekfbcd 22 0 b2,0,12 b14,0,8"},
    {EDIT(t.radix = 16; t << short{-5} << -5), "afffffffbfffffffbbcd 34 0 b2,0,16 b18,0,16"},
    {EDIT(t << ~0ULL; t.radix = 8; t << ~0ULL), "a184467440737095516151777777777777777777777bcd 86 0 b2,0,40 b42,0,44"},
    {EDIT(t.InsertTChars(TSTR("x"), 0x40000000)), "abcd 2 2 b2,0,-2147483648"},
    {EDIT(t.InsertTChars(static_cast<TChar*>(nullptr), 1)), "abcd 2 2 b2,0,2"},
    {EDIT(t.InsertTChars(o, -1, 1)), "abcd 2 2 t2,0,-2,2"}, {EDIT(t.DeleteTChars(1, -1)), "abcd 2 2 b2,-2,0"},
    {EDIT(t.ReplaceTChar(-1, 'x')), "abcd 2 2"},
    // clang-format on
};

TEST(Editing, IsAChangeOfEachOperationsOwn) {
  TCharVFile other;
  other = TSTR("012");
  const auto outcome = [](const TextPeek& text) {
    std::string shown;
    for (const TChar unit : text.Units()) shown += unit == 0 ? '.' : static_cast<char>(unit);
    return shown + " " + std::to_string(text.pos) + " " + std::to_string(text.res) + text.log;
  };
  for (const auto& row : kEdits) {
    TextPeek text;
    text = TSTR("abcd");
    text.SetTCharPos(1);
    row.edit(text, other);
    EXPECT_EQ(outcome(text), row.outcome) << row.what;
  }
}

// The text "a" with half a unit behind it, then NUL, CR and half of one.
TEST(Lines, AreReadAndExported) {
  TextPeek text;
  text.ReplaceBuf(0, 0, "a", 1);
  EXPECT_EQ(text.ToString(), TString()) << "nothing to export";
  EXPECT_EQ(text.pos, 1);
  text.ReplaceBuf(1, 0, "\0\0\0\r\0\n", 6);
  EXPECT_EQ(text.ToString(), (TString{'a', 0, '\r'}));
  EXPECT_EQ(std::pair(text.pos, text.eof), std::pair(6, false));
  TChar line[5] = {};
  text.Reset();
  EXPECT_EQ(text.ReadLine(line, 5), 2) << "CR and half a unit";
  EXPECT_EQ(std::pair(text.pos, text.eof), std::pair(6, false));
  for (const auto& [buffer, size] : {std::pair(static_cast<TChar*>(nullptr), 5), {line, 0}}) {
    text.SetPos(0);
    EXPECT_EQ(text.ReadLine(buffer, size), 0);
    EXPECT_EQ(std::pair(text.pos, text.res), std::pair(0, I32{resCallError}));
    EXPECT_EQ(line[0], 'a');
  }
}

TEST(TextSearch, KnowsWhatItCannotFind) {
  TextPeek text;
  text.ReplaceBuf(0, 0, "a\0b\0b", 5);
  // clang-format off
  const std::tuple<bool, I32, TString, bool, bool, I32, I32> rows[] = {  // back, from, text, any case; found, to, res
      {false, MaxLen, TString{0, 'a'}, false, true, MaxLen, resDone}, {true, MaxLen, TSTR(""), false, true, MaxLen, resDone},
      {false, MaxLen, TSTR("a"), false, false, INT32_MIN, resDone}, {true, MaxLen, TString{'b', 0, 'x'}, false, true, 1, resDone},
      {false, 1, TSTR("b"), false, true, 2, resDone}, {false, 2, TSTR("b"), false, false, 3, resDone},
      {false, 0, TSTR("AB"), true, true, 2, resDone}, {false, 0, TSTR("{"), true, false, 3, resDone},
      {false, -1, TSTR("a"), false, false, -1, resCallError}, {true, -1, TSTR("a"), false, false, -1, resCallError}};
  // clang-format on
  for (const auto& [back, from, wanted, anyCase, found, to, res] : rows) {
    I32 at = from;
    text.Reset();
    EXPECT_EQ(back ? text.FindBackTChars(at, wanted, anyCase, false) : text.FindTChars(at, wanted, anyCase, false),
              found);
    EXPECT_EQ(std::pair(at, text.res), std::pair(to, res)) << &wanted;
  }
  I32 start = 0;
  EXPECT_TRUE(text.FindTChars(start, TSTR("ab"), false, true)) << "half a unit is no letter";
  TextPeek letters;
  letters = TSTR("a\u00C4[");
  for (const TChar* wanted : {TSTR("{"), TSTR("\u00E4")}) {
    I32 at = 0;
    EXPECT_FALSE(letters.FindTChars(at, wanted, true, false));
  }
  std::thread([&] {
    I32 at = 0;
    EXPECT_TRUE(text.FindTChars(at, TSTR(""), false, false));
    EXPECT_ASSERTION("VFile", text.FindBackTChars(at, TSTR("a"), false, false));
  }).join();
}

TEST(HugeStrings, AreTooLongAndNeverCut) {
  if (!support::kHasHugeStrings) GTEST_SKIP() << "no room for them";
  const support::HugeString huge;
  const char* bytes = huge.Bytes(support::HugeString::kNoCount);
  const TChar* units = huge.Units(support::HugeString::kNoCount);
  HFile file(support::OpenPipe(""));
  file.Write(bytes);
  EXPECT_EQ(file.res, resTooLong);
  EXPECT_EQ(VFile(bytes).res, resTooLong);
  const std::function<void(TextPeek&)> changes[] = {DO(f << units), DO(f = units),
                                                    DO(f.ReplaceGlobalTChars(TSTR("b"), units, false, false))};
  for (const auto& change : changes) {
    TextPeek text;
    text = TSTR("abc");
    change(text);
    EXPECT_EQ(text.res, resTooLong) << &change - changes;
    EXPECT_EQ(text.Units(), TSTR("abc")) << &change - changes;
  }
  const std::function<void(VFile&)> byteChanges[] = {DO(f.Insert(bytes)), DO(f = bytes),
                                                     DO(f.ReplaceGlobal("b", bytes, false, false))};
  for (const auto& change : byteChanges) {
    VFile content("abc");
    change(content);
    EXPECT_EQ(content.res, resTooLong) << &change - byteChanges;
    EXPECT_TRUE(content == "abc") << &change - byteChanges;
  }
  VFile content("axx");
  content.SetFlags(vfReadOnly);
  content.Append(bytes);
  EXPECT_EQ(content.res, resReadOnly);
  I32 at = 0;
  EXPECT_FALSE(content.Find(at, huge.Bytes(support::HugeString::kCutToOne), false, false));
  EXPECT_TRUE(content.eof);
  EXPECT_TRUE(content < bytes);
}

}  // namespace
