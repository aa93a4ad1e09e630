// What texts lose in the code page of the environment.

#include "support/Losses.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/Files.h"
#include "support/Texts.h"

using support::Hex, support::Losses, support::NumbersOf;

namespace {

/// A text that a form repeats: how many of its characters are lost, and which unit is the first.
struct Row {
  const char* locale;
  std::string loaded;
  int lostInLoading;
  int firstLoaded;
  std::string saved;
  int lostInSaving;
  int firstSaved;
};

class LossesOnPosix : public support::InDirectory {
 protected:
  void CheckLoading(const Row& row, int before) const {
    std::string bytes(support::Size(before), 'a');
    for (int i = 0; i < kTimes; ++i) bytes += Hex<std::string>(row.loaded);
    Put("loaded", bytes + std::string("\0x", 2));
    TCharVFile text;
    TCharVFile::Encoding form;
    const vf::Losses losses = vf::LoadText(text, Name("loaded"), form, FILE_SHARE_READ);
    const int first = row.firstLoaded < 0 ? text.TCharLength() : before + row.firstLoaded;
    EXPECT_EQ(NumbersOf(losses), Losses(kTimes * row.lostInLoading, 2, first)) << before;
  }
  /// All that is lost is a "?", and nothing else is.
  void CheckSaving(const Row& row, int before) const {
    TString units(support::Size(before), TSTR('a'));
    for (int i = 0; i < kTimes; ++i) units += Hex<TString>(row.saved);
    TCharVFile text;
    text = units;
    const vf::Losses losses = vf::SaveText(text, Name("saved"), true, TCharVFile::encAnsi, false);
    const int first = row.firstSaved < 0 ? -1 : before + row.firstSaved;
    EXPECT_EQ(NumbersOf(losses), Losses(kTimes * row.lostInSaving, 0, first)) << before;
    EXPECT_EQ(std::ranges::count(Content("saved"), '?'), losses.replaced + std::ranges::count(units, TChar{'?'}));
  }

 private:
  static constexpr int kTimes = 200;
};

TEST_F(LossesOnPosix, AreThoseOfTheCodePage) {
  const Row rows[] = {{"de_DE.CP1252", "80 81 E9 3F", 1, 1, "61 3F 20AC 4E00 D83D DE00 D83D E9", 3, 3},
                      {"x.ISO-8859-1", "80 81 E9", 0, -1, "E9 DB40 DC41 D800 DB40 DC01 3F DB40 DD01 DB41 DC41", 5, 1},
                      {"ja_JP.SJIS", "82 A0 82 20 88 EA 41", 1, 1, "3042 DE00 3F 4E00", 1, 1},
                      {"x.ISO-2022-JP", "1B 24 42 24 22 1B 28 42 FF 41", 1, 1, "3042 E9 41 DB40 DC41", 2, 1},
                      {"x.GB18030", "81 30 FF 41", 2, 0, "DB40 DC41 4041 41DB 41DC D83D DE00 E9 DC00", 1, 8},
                      {"x.UTF-8", "C3 A9 C3 41", 1, 1, "DB40 DC41 E9 DC00", 1, 3},
                      {"x.CP1252//IGNORE", "C3 A9 C3 41", 1, 1, "20AC D800 4E00", 1, 1}};
  testing::FLAGS_gtest_death_test_style = "threadsafe";  // settled at first use, so each in a process of its own
  for (const Row& row : rows) {
    const auto convert = [&] {
      setenv("LC_ALL", row.locale, 1);
      for (int before = 0; before < 24 && !HasFailure(); ++before) {
        CheckLoading(row, before);
        CheckSaving(row, before);
      }
      std::filesystem::remove_all(Directory());
      _exit(HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(convert(), testing::ExitedWithCode(0), "") << row.locale;
  }
}

// A text that may not fit is converted twice.
TEST_F(LossesOnPosix, AreCountedOnceOfAHugeText) {
  const auto save = [] {
    setenv("LC_ALL", "x.CP1252", 1);
    const TString part(std::size_t{1} << 20, TSTR('a'));
    TCharVFile text;
    text = TSTR("a\u4E00");
    for (int i = 0; i < 129; ++i) text.AppendTStr(part);
    const vf::Losses losses = vf::SaveText(text, "/dev/null", true, TCharVFile::encAnsi, false);
    EXPECT_EQ(text.res, resDone);
    EXPECT_EQ(NumbersOf(losses), Losses(1, 0, 1));
    _exit(HasFailure() ? 1 : 0);
  };
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(save(), testing::ExitedWithCode(0), "");
}

}  // namespace
