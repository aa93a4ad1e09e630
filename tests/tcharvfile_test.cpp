#include <gtest/gtest.h>
#include <thread>

#include "support/Halts.h"
#include "support/Heap.h"
#include "support/HugeString.h"
#include "support/Texts.h"

using support::TextPeek;

namespace {

TEST(Units, AreTwoBytesEach) {
  TextPeek odd;
  odd.ReplaceBuf(0, 0, "a\0b\0c", 5);
  EXPECT_EQ(odd.TCharLength(), 2);
  EXPECT_EQ(odd.GetTCharPos(), 2);
  EXPECT_EQ(odd.pos, 5);
  // From unit 1: the byte where it then stands, or -1 for a refusal that left it there.
  const auto move = [&](auto... where) {
    odd.SetPos(2);
    odd.SetTCharPos(where...);
    return odd.res == resDone ? odd.pos : odd.res == resCallError && odd.pos == 2 ? -1 : -2;
  };
  EXPECT_EQ(move(0x3FFFFFFF), 5);
  EXPECT_EQ(move(0x40000000), 5);
  EXPECT_EQ(move(-1), -1);
  EXPECT_EQ(move(-0x3FFFFFFF), -1);
  EXPECT_EQ(move(0x40000000, 0), 5);
  EXPECT_EQ(move(1, 1), 4);
  EXPECT_EQ(move(-2, 1), -1);
  EXPECT_EQ(move(-1, 2), 3);
  EXPECT_EQ(move(0, 3), -1);
  EXPECT_EQ(TCharVFile(odd, 1, 1).ToString(), TSTR("b"));
  EXPECT_EQ(TCharVFile(odd, 0, 0x40000000).TCharLength(), 2);
  EXPECT_TRUE(TCharVFile(odd, 0x40000000).Eof());
  EXPECT_EQ(TCharVFile(odd, -1).res, resCallError);
  TChar unit = 0;
  TChar units[3] = {};
  move(1);
  EXPECT_EQ(odd.ReadTChars(units, 0x40000000), 1);
  EXPECT_EQ(units[0], 'b');
  EXPECT_TRUE(odd.eof);
  EXPECT_EQ(odd.pos, 5);
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
    {EDIT(t.InsertTChars(TSTR("xyz"), 2); t.InsertTChars(TString(3, u'z'), 1)), "axyzbcd 8 0 b2,0,4 b6,0,2"},
    {EDIT(t.InsertTStr(TSTR("xy\0z")); t.InsertTStr(TString(1, 0))), "axy.bcd 8 0 b2,0,4 b6,0,2"},
    {EDIT(t.InsertTChars(o, 1, 2); t.InsertTChars(o, 2, MaxLen)), "a122bcd 8 0 t2,0,2,4 t6,0,4,max"},
    {EDIT(t.InsertTChars(t, 0, 4)), "aabcdbcd 10 0 t2,0,0,8"},
    {EDIT(t.AppendTChar('x'); t.AppendTChar('y', 2)), "abcdxyy 14 0 b8,0,2 b10,0,2 b12,0,2"},
    {EDIT(t.AppendTChars(TString(3, u'z'), 1)), "abcdz 10 0 b8,0,2"},
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
    {EDIT(t << ~0UL; t.radix = 8; t << ~0ULL), "a184467440737095516151777777777777777777777bcd 86 0 b2,0,40 b42,0,44"},
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

TEST(Lines, AreReadAndExported) {
  TextPeek text;
  text.ReplaceBuf(0, 0, "a", 1);
  text.res = resTooLong;
  EXPECT_EQ(text.ToString(), TString()) << "nothing to export";
  EXPECT_EQ(text.pos, 1);
  EXPECT_EQ(text.res, resTooLong);
  text.res = resDone;
  text.ReplaceBuf(1, 0, "\0\0\0\r\0\n", 6);
  text.res = resTooLong;
  EXPECT_EQ(text.ToString(), (TString{'a', 0, '\r'}));
  EXPECT_EQ(text.res, resDone);
  EXPECT_EQ(text.pos, 6);
  EXPECT_FALSE(text.eof);
  TChar line[5] = {};
  text.Reset();
  EXPECT_EQ(text.ReadLine(line, 5), 2) << "CR and half a unit";
  EXPECT_FALSE(text.eof);
  EXPECT_EQ(text.pos, 6);
  EXPECT_EQ(text.ReadLine(nullptr, 5), 0);
  EXPECT_EQ(text.res, resCallError);
  EXPECT_EQ(text.pos, 6);
  text.SetPos(0);
  EXPECT_EQ(text.ReadLine(line, 0), 0);
  EXPECT_EQ(text.res, resCallError);
  EXPECT_EQ(text.pos, 0);
  EXPECT_EQ(line[0], 'a');
}

TEST(Lines, AreNotExportedWithoutMemory) {
  TextPeek text;
  text = TString(100, u'x').c_str();
  text.SetTCharPos(7);
  TString exported;
  {
    const support::FailingHeap heap(1, support::FailingHeap::kAll);
    exported = text.ToString();
  }
  EXPECT_EQ(exported, TString());
  EXPECT_EQ(text.res, resHeapOverflow);
  EXPECT_EQ(text.GetTCharPos(), 7);
}

TEST(TextSearch, KnowsWhatItCannotFind) {
  TextPeek text;
  text.ReplaceBuf(0, 0, "a\0b\0b", 5);
  std::int32_t at = MaxLen;
  EXPECT_TRUE(text.FindTChars(at, TString{0, 'a'}, false, true)) << "empty";
  EXPECT_TRUE(text.FindBackTChars(at, TSTR(""), false, false)) << "empty";
  EXPECT_EQ(at, MaxLen);
  EXPECT_EQ(text.pos, 5);
  EXPECT_FALSE(text.FindTChars(at, TSTR("a"), false, false));
  EXPECT_TRUE(text.eof);
  at = MaxLen;
  EXPECT_TRUE(text.FindBackTChars(at, TString{'b', 0, 'x'}, false, false));
  EXPECT_EQ(at, 1);
  EXPECT_FALSE(text.FindTChars(at, TSTR("b"), false, true));
  at = 0;
  EXPECT_TRUE(text.FindTChars(at, TSTR("ab"), false, true));
  std::thread([&] {
    EXPECT_TRUE(text.FindTChars(at, TSTR(""), false, false));
    EXPECT_ASSERTION("VFile", text.FindBackTChars(at, TSTR("a"), false, false));
  }).join();
  at = -1;
  EXPECT_FALSE(text.FindTChars(at, TSTR("a"), false, false));
  EXPECT_EQ(text.res, resCallError);
  text.Reset();
  EXPECT_FALSE(text.FindBackTChars(at, TSTR("a"), false, false));
  EXPECT_EQ(text.res, resCallError);
  EXPECT_EQ(at, -1);
  EXPECT_EQ(text.ReplaceGlobalTChars(TSTR("c"), TSTR("x"), false, false), 0);
  EXPECT_EQ(text.res, resDone);
  text = TSTR("aaa\u00C4[");
  for (const auto& [wanted, found] : {std::pair(TSTR("AaA"), true), {TSTR("{"), false}, {TSTR("\u00E4"), false}}) {
    at = 0;
    EXPECT_EQ(text.FindTChars(at, wanted, true, false), found);
  }
  text.allowed = 2;
  EXPECT_EQ(text.ReplaceGlobalTChars(TSTR("a"), TSTR("b"), false, false), 2);
  EXPECT_EQ(text.res, resNotSupported);
  EXPECT_EQ(text.Units(), TSTR("bba\u00C4["));
}

TEST(TextSearch, ReplacesInAnyCaseUpToTheEndByAChangeOfItsOwn) {
  TextPeek text;
  text = TSTR("xaBabAb");
  EXPECT_EQ(text.ReplaceGlobalTChars(TSTR("Ab"), TSTR("ab\u00E9"), true, false), 3);
  EXPECT_EQ(text.Units(), TSTR("xab\u00E9ab\u00E9ab\u00E9"));
  EXPECT_EQ(text.log, "");
}

TEST(HugeStrings, AreTooLongAndNeverCut) {
  if (!support::kHasHugeStrings) GTEST_SKIP() << "no room for them";
  const support::HugeString huge;
  const TChar* units = huge.Units(support::HugeString::kNoCount);
  const std::function<void(TextPeek&)> changes[] = {
      DO(f << units),
      DO(f = units),
      DO(f.ReplaceGlobalTChars(TSTR("b"), units, false, false)),
  };
  for (const auto& change : changes) {
    TextPeek text;
    text = TSTR("abc");
    change(text);
    EXPECT_EQ(text.res, resTooLong) << &change - changes;
    EXPECT_EQ(text.Units(), TSTR("abc")) << &change - changes;
  }
}

}  // namespace
