#include "hsys/HSys.h"

#include <chrono>
#include <cmath>
#include <ctime>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <tuple>

#include "hfile/HFile.h"
#include "host/Host.h"
#include "hsys/TempNumbers.h"
#include "support/Halts.h"

namespace {

using support::Narrow;
using support::NoteHalts;

TEST(Halts, HaveTheirText) {
  EXPECT_HALT("VMem: text", Halt(TSTR("VMem"), TSTR("text")));
  EXPECT_HALT("VMem, Alloc():\ntext", Halt(TSTR("VMem"), TSTR("Alloc"), TSTR("text")));
  EXPECT_HALT("HSys, line 17:\nAssertion failure", HaltA(TSTR("HSys"), 17));
  EXPECT_HALT("HFile, Close(), line -2147483648:\nAssertion failure", HaltA(TSTR("HFile"), TSTR("Close"), INT32_MIN));
  EXPECT_HALT("Fatal Error -3 in module HSys ", Fatal(TSTR("HSys"), -3));
  EXPECT_HALT("M: " + std::string(252, 'x'), Halt(TSTR("M"), TString(300, 'x').c_str()));
  static const TChar* const text = TSTR("text");
  InstallHaltProc([](const TChar*) { FAIL() << "replaced"; });
  InstallHaltProc([](const TChar* message) { EXPECT_EQ(message, text); });
  Halt(text);
  DeinstallHaltProc();
}

/// `copy` behind a string of `held` units, or in its place, in every relation of room and lengths; lastly from null.
template <typename Char>
void Check(void (*copy)(Char*, std::uint32_t, const Char*), bool appends) {
  using Text = std::basic_string<Char>;
  const NoteHalts returning;
  for (std::uint32_t i = 0; i < 6 * 4 * 6; ++i) {
    const std::uint32_t size = i % 6, held = i / 6 % 4, kept = appends ? held : 0;
    const Text source(i / 24 % 5, 'b'), whole = Text(kept, 'a') + source;
    Text dest = Text(held, 'a') + Char{0} + Text(7, '#'), expected = dest;
    if (kept < size)
      expected.replace(0, std::min<std::size_t>(size, whole.size() + 1), whole.substr(0, size - 1) + Char{0});
    NoteHalts::Noted().clear();
    copy(dest.data(), size, i / 24 < 5 ? source.c_str() : nullptr);
    EXPECT_TRUE(dest == expected && NoteHalts::Noted().size() == (kept >= size ? 1u : 0u)) << i;
    copy(nullptr, 0, source.c_str());
  }
}

TEST(Strings, BoundedCopiesCutAndTerminate) {
  for (const auto copy : {AssignStr, AssignStrW, CondAssignStr}) Check(copy, false);
  for (const auto copy : {AppendStr, AppendStrW, CondAppendStr}) Check(copy, true);
  Check(AssignStrA, false);
  Check(AppendStrA, true);
  for (const auto copy : {AssignStr, AppendStr}) EXPECT_ASSERTION("HSys", copy(nullptr, 4, TSTR("a")));
  for (const auto copy : {CondAssignStr, CondAppendStr}) EXPECT_HALT("", copy(nullptr, 0, TSTR("a")));
}

TEST(Strings, TrimmingBlanksAndComparison) {
  const auto changed = [](void (*change)(TChar*), const std::string& text) {
    TString units(text.begin(), text.end());
    change(nullptr);
    change(units.data());
    return Narrow(units.c_str());
  };
  for (const auto trim : {Trim, TrimLeft, TrimRight}) EXPECT_EQ(changed(trim, "\va\xA0"), "\va\xA0");
  const std::string blanks = "\t\n\f\r ";
  for (const std::string text : {"", "a", "a b"}) {
    EXPECT_EQ(changed(Trim, blanks + text + blanks), text);
    EXPECT_EQ(changed(TrimLeft, blanks + text + "x "), text + "x ");
    EXPECT_EQ(changed(TrimRight, " x" + text + blanks), " x" + text);
    EXPECT_EQ(changed(TrimLeft, blanks) + changed(TrimRight, blanks), "");
  }
  EXPECT_TRUE(IsBlank(TSTR("")) && IsBlank(TSTR("\t\n\f\r ")) && !IsBlank(TSTR(" \v")) && !IsBlank(TSTR("a ")));
  const char* numbers[] = {"1.500", "1.000", "100", "100.", "0.0", ".", ".000", "", "-1.50", "1.0050"};
  const char* trimmed[] = {"1.5", "1", "100", "100", "0", "0", "0", "0", "-1.5", "1.005"};
  for (int i = 0; i < 10; ++i) EXPECT_EQ(changed(TrimZeroes, numbers[i]), trimmed[i]);
  for (int unit = 0; unit <= 0xFFFF; ++unit)
    EXPECT_EQ(IsBlank(static_cast<TChar>(unit)), unit == 9 || unit == 10 || unit == 12 || unit == 13 || unit == 32);
  EXPECT_TRUE(EqualStr(TSTR("ab"), TSTR("ab")) && !EqualStr(TSTR("ab"), TSTR("aB")) &&
              !EqualStr(TSTR("a"), TSTR("ab")));
  EXPECT_TRUE(EqualStrI(TSTR("AbcZ"), TSTR("aBCz")) && !EqualStrI(TSTR("@"), TSTR("`")));
  const TChar umlauts[] = {0xC4, 0, 0xE4, 0};
  EXPECT_TRUE(host::_wcsicmp(umlauts, umlauts + 2) < 0 && host::_wcsicmp(TSTR("_"), TSTR("Z")) < 0);
}

TEST(Results, OfHostErrorsAndTheirTexts) {
  std::map<std::uint32_t, std::int32_t> known = {
      {0, 0},    {1, 2},    {2, 14},   {3, 9},   {4, 20},  {5, 17},   {6, 2},    {8, 5},   {12, 17},
      {14, 5},   {15, 8},   {19, 4},   {20, 8},  {23, 22}, {32, 17},  {33, 17},  {36, 20}, {39, 15},
      {50, 18},  {51, 21},  {52, 10},  {53, 13}, {54, 24}, {55, 21},  {65, 17},  {80, 6},  {87, 2},
      {112, 15}, {120, 19}, {123, 10}, {161, 9}, {183, 6}, {267, 13}, {1006, 11}};
  for (std::uint32_t error = 0; error <= 0xFFFF; ++error) {
    host::SetLastError(0x80070000 | error);
    EXPECT_EQ(GetFileRes(), known.contains(error) ? known[error] : resNotDone) << error;
  }
  TChar text[32];
  GetTextResMsg(text, 11, 5);
  EXPECT_EQ(Narrow(text), "not enough");
  HFile::GetResMsg(text, 32, 5);
  EXPECT_EQ(Narrow(text), "heap overflow");
  for (const std::int32_t code : {-1, 25}) {
    HFile::GetResMsg(text, 32, code);
    EXPECT_EQ(Narrow(text), "unknown error code");
  }
}

TEST(Numbers, HaveOrderSignWordsAndBytes) {
  EXPECT_TRUE(MaxS(-32768, 1) == 1 && MinS(-32768, 1) == -32768 && SignS(-32768) == -1 && Max(-2, -1) == -1);
  EXPECT_TRUE(Min(-2, -1) == -2 && Sign(0) == 0 && MaxL(INT32_MIN, 1) == 1 && MinL(INT32_MIN, 1) == INT32_MIN);
  EXPECT_TRUE(SignL(7) == 1 && MaxQ(INT64_MIN, 1) == 1 && MinQ(INT64_MIN, 1) == INT64_MIN && SignQ(INT64_MIN) == -1);
  EXPECT_TRUE(MaxR(1, 2) == 2 && MinR(1, 2) == 1 && MaxR(NAN, 2) == 2 && MinR(1, NAN) != 1 && SignR(-0.5) == -1);
  std::uint16_t hi, lo;
  char b[6];
  Short2(0x12345678, hi, lo);
  Extract2(0x0102, b[0], b[1]);
  Extract4(0x03040506, b[2], b[3], b[4], b[5]);
  EXPECT_TRUE(hi == 0x1234 && lo == 0x5678 && HI(-2) == 0xFFFF && LO(-2) == 0xFFFE && Long2(hi, lo) == 0x12345678);
  EXPECT_TRUE(std::string(b, 6) == "\1\2\3\4\5\6" && Build2(-1, 2) == -254 && Build4(1, 2, 3, -4) == 0x010203FC);
  EXPECT_TRUE(Long(-3) == -3 && LongC(~0u) == -1 && Int(~0u) == -1 && Card(-1) == ~0u && GetEolKind() == eolCrLf);
}

TEST(TemporaryNumbers, GoRoundOnceOverTheirBound) {
  // Each start with all its numbers below 5, and with those that are left when the first is skipped.
  const std::tuple<std::int32_t, std::string, std::string> rows[] = {
      {0, "0,1,2,3,4,", "0,"}, {3, "3,4,0,1,2,", "3,0,1,2,"}, {-2, "-2,-1,0,1,2,", "-2,0,1,2,"}};
  for (const auto& [start, all, shortest] : rows) {
    std::string seen;
    hsys::TempNumbers numbers(start, 5);
    do seen += std::to_string(numbers.Number()) + ",";
    while (numbers.Step());
    EXPECT_EQ(seen, all);
    EXPECT_FALSE(numbers.SkipToShortest());
    hsys::TempNumbers skipping(start, 5);
    seen = std::to_string(start) + ",";
    for (bool left = skipping.SkipToShortest(); left; left = skipping.Step()) {
      seen += std::to_string(skipping.Number()) + ",";
    }
    EXPECT_EQ(seen, shortest);
  }
}

/// To the microsecond: clocks of whole seconds run behind.
std::time_t SecondsNow() { return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()); }

TEST(Clock, IsTheHostsInLocalTime) {
  std::tm now = {};
  std::int32_t day, month, year, hour, minute, second, millisecond;
  const std::time_t before = SecondsNow();
  do {
    GetDate(day, month, year);
    GetTime(hour, minute, second, millisecond);
    GetDate(now.tm_mday, now.tm_mon, now.tm_year);
  } while (now.tm_mday != day);
  now.tm_mon = month - 1;
  now.tm_year = year - 1900;
  now.tm_hour = hour;
  now.tm_min = minute;
  now.tm_sec = second;
  now.tm_isdst = -1;
  const std::time_t told = std::mktime(&now);
  EXPECT_TRUE(told >= before && told <= SecondsNow() && millisecond >= 0 && millisecond < 1000);
}

TEST(Characters, HaveTheirClassesInAnyLocale) {
  constexpr TChar kLetters[] = {'0',   '9',   'A',   'Z',    'a',    'z',    0xC4,   0xE4,
                                0x391, 0x410, 0x660, 0x3042, 0x4E00, 0xAC00, 0xFF10, 0xFF21};
  constexpr TChar kOthers[] = {0,    '/',  ':',    '@',    '[',    '`',    '{',    '_',    ' ',
                               0xD7, 0xF7, 0x2014, 0x3000, 0xD800, 0xDC00, 0xDFFF, 0xE000, 0xFFFD};
  for (const TChar unit : kLetters) EXPECT_TRUE(host::iswalnum(unit)) << std::uint32_t{unit};
  for (const TChar unit : kOthers) EXPECT_FALSE(host::iswalnum(unit)) << std::uint32_t{unit};
  constexpr TChar kDigits[] = {'0', '9', 0xB2, 0xB9, 0x660, 0x96F, 0xFF10, 0xFF19};
  for (const TChar unit : kDigits) EXPECT_TRUE(host::iswdigit(unit)) << std::uint32_t{unit};
  constexpr TChar kNoDigits[] = {'/', ':', 'A', 0xBD, 0x2070, 0x2160, 0x4E00, 0xD800};
  for (const TChar unit : kNoDigits) EXPECT_FALSE(host::iswdigit(unit)) << std::uint32_t{unit};
}

TEST(Numbers, AreHeldToTheirRange) {
  EXPECT_TRUE(Short(65535) == -1 && Short(40000) == -25536 && Short(-65536) == 0 && ShortC(65535) == 65535);
  EXPECT_HALT("Fatal Error 1 in module HSys ", Short(65536));
  EXPECT_HALT("Fatal Error 2 in module HSys ", Short(-65537));
  for (const std::int32_t value : {65536, -1}) EXPECT_HALT("Fatal Error 3 in module HSys ", ShortC(value));
  const NoteHalts returning;
  EXPECT_TRUE(Short(65537) == 1 && ShortC(-2) == 65534 && LongFloat(INT32_MIN) == -2147483648.0);
  const double reals[] = {9999.9, 10000, -0.5, -10000.9, 2147483646.9, 2147483647.5, 1e300, -2147483648.0, -1e300, NAN};
  const std::int32_t whole[] = {9999, 10000, 0, -10000, 2147483646, INT32_MAX, INT32_MAX, -INT32_MAX, -INT32_MAX, 0};
  for (int i = 0; i < 10; ++i) EXPECT_EQ(LongTrunc(reals[i]), whole[i]);
}

}  // namespace
