#include "hsys/HSys.h"

#include <array>
#include <csignal>
#include <gtest/gtest.h>
#include <string>

#include "host/Host.h"
#include "host/posix/LocalTime.h"
#include "support/posix/Process.h"

namespace {

using host::SYSTEMTIME;

TEST(HaltDeathTest, TheDefaultShowsTheTextAndAborts) {
  static const TChar text[] = {'a', 0xE4, 0x20AC, 0xD83D, 0xDE00, 0xD800, 0};
  const TString longText(2000, 'x');
  InstallHaltProc([](const TChar*) { FAIL() << "replaced"; });
  for (int times = 0; times < 2; ++times) {
    DeinstallHaltProc();
    EXPECT_EXIT(Halt(longText.c_str()), testing::KilledBySignal(SIGABRT),
                testing::Eq("Program halted\n" + std::string(2000, 'x') + "\n"));
    EXPECT_EXIT(Halt(text), testing::KilledBySignal(SIGABRT),
                testing::Eq("Program halted\na\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD\n"));
  }
}

// By the conversion alone: no test sets the clock.
TEST(Clock, KnowsWhatNoClockShows) {
  // clang-format off
  const struct {
    std::uint16_t year, month, day, hour, minute, second, millisecond;
    std::int64_t moment;
  } rows[] = {
      {2026, 3, 29, 1, 59, 59, 999, 1774745999}, {2026, 3, 29, 3, 0, 0, 0, 1774746000}, {2026, 7, 1, 0, 0, 0, 0, 1782856800},
      {2024, 2, 29, 12, 0, 0, 0, 1709204400}, {2000, 2, 29, 12, 0, 0, 0, 951822000}, {1970, 1, 1, 0, 59, 59, 0, -1},
      {2040, 1, 1, 1, 0, 0, 0, 2208988800}};
  const SYSTEMTIME none[] = {
      {2026, 3, 0, 29, 2, 0, 0, 0}, {2026, 3, 0, 29, 2, 59, 59, 999}, {2026, 2, 0, 29, 0, 0, 0, 0},
      {1900, 2, 0, 29, 0, 0, 0, 0}, {2026, 4, 0, 31, 0, 0, 0, 0}, {2026, 4, 0, 0, 0, 0, 0, 0},
      {2026, 0, 0, 1, 0, 0, 0, 0}, {2026, 13, 0, 1, 0, 0, 0, 0}, {2026, 4, 0, 1, 24, 0, 0, 0},
      {2026, 4, 0, 1, 0, 60, 0, 0}, {2026, 4, 0, 1, 0, 0, 60, 0}, {2026, 4, 0, 1, 0, 0, 0, 1000},
      {1600, 12, 0, 31, 23, 59, 59, 0}, {30828, 1, 0, 1, 0, 0, 0, 0}};
  // clang-format on
  support::InChild([&] {
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    timespec moment;
    for (const auto& [year, month, day, hour, minute, second, millisecond, expected] : rows) {
      EXPECT_TRUE(host::posix::MomentOf({year, month, 0, day, hour, minute, second, millisecond}, moment));
      EXPECT_TRUE(moment.tv_sec == expected && moment.tv_nsec == millisecond * 1000000) << expected;
    }
    for (const SYSTEMTIME& time : none) EXPECT_FALSE(host::posix::MomentOf(time, moment)) << &time - none;
  });
}

TEST(Characters, AreThoseOfOneVersionOfUnicode) {
  // How many units, how many runs of them, and their sum.
  std::uint32_t letters[3] = {};
  std::uint32_t digits[3] = {};
  const auto count = [](std::uint32_t(&counts)[3], std::uint32_t unit, bool (*is)(TChar)) {
    if (!is(static_cast<TChar>(unit))) return;
    ++counts[0];
    if (unit == 0 || !is(static_cast<TChar>(unit - 1))) ++counts[1];
    counts[2] += unit;
  };
  for (std::uint32_t unit = 0; unit <= 0xFFFF; ++unit) {
    count(letters, unit, host::iswalnum);
    count(digits, unit, host::iswdigit);
  }
  EXPECT_EQ(std::to_array(letters), (std::array<std::uint32_t, 3>{49403, 403, 1542970260}));
  EXPECT_EQ(std::to_array(digits), (std::array<std::uint32_t, 3>{373, 39, 4915987}));
}

}  // namespace
