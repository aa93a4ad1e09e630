#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/Files.h"
#include "support/Texts.h"

using support::Hex;

namespace {

class TextFilesOnPosix : public support::InDirectory {
 protected:
  std::string Save(TCharVFile& text) const {
    text.SaveText(Name("saved"), true, TCharVFile::encAnsi, true);
    return Content("saved");
  }
};

TEST_F(TextFilesOnPosix, FailAsTheirDevicesDo) {
  TCharVFile text;
  text = TSTR("old");
  auto told = TCharVFile::encAnsi;
  text.LoadText(TSTR("/proc/self/mem"), told, 7);
  EXPECT_EQ(std::tuple(text.res, told, text.TCharLength()), std::tuple(resNotDone, TCharVFile::DefaultEncoding, 0));
}

TEST_F(TextFilesOnPosix, AreInTheCodePageOfTheEnvironment) {
  const TString other = {'a', 0, 0x20AC, 0x4E00, 0xD83D, 0xDE00, 0xD83D, 0xE9};
  const char* utf8 = "61 0 E2 82 AC E4 B8 80 F0 9F 98 80 3F C3 A9";
  // Longer than a piece, in one shift state and in the next.
  std::string shifted = "1B 24 42";
  std::string shiftedUnits;
  for (int i = 0; i < 800; ++i) {
    shifted += " 24 22";
    shiftedUnits += " 3042";
  }
  const struct {
    const char *all, *ctype, *lang;
    std::string bytes, units, saved;
  } rows[] = {{"de_DE.CP1252", "", "", "80 81 E9", "20AC FFFD E9", "61 0 80 3F 3F 3F E9"},
              {"", "x.ISO-8859-1@euro", "x.UTF-8", "80 81 E9", "80 81 E9", "61 0 3F 3F 3F 3F E9"},
              {"", "", "ja_JP.SJIS", "82 A0 82 20 88 EA 41", "3042 FFFD 20 4E00 41", "61 0 3F 88 EA 3F 3F 3F"},
              {"x.ISO-2022-JP", "", "", shifted + " 1B 28 42 41", shiftedUnits + " 41",
               "61 0 3F 1B 24 42 30 6C 1B 28 42 3F 3F 3F"},
              {"C", "", "x.CP1252", "E9 C3 A9", "FFFD E9", utf8},
              {"", "x.unknown", "x.CP1252", "E9 C3 A9", "FFFD E9", utf8},
              {nullptr, nullptr, nullptr, "E9 C3 A9", "FFFD E9", utf8}};
  testing::FLAGS_gtest_death_test_style = "threadsafe";  // settled at first use, so each in a process of its own
  for (const auto& row : rows) {
    const auto convert = [&] {
      for (const auto& [name, value] : {std::pair("LC_ALL", row.all), {"LC_CTYPE", row.ctype}, {"LANG", row.lang}}) {
        value == nullptr ? unsetenv(name) : setenv(name, value, 1);
      }
      std::string bytes;
      std::string saved;
      TString units;
      TCharVFile text;
      for (int i = 0; i < 3000; ++i) {
        bytes += Hex<std::string>(row.bytes);
        units += Hex<TString>(row.units);
        saved += Hex<std::string>(row.saved);
        text << other;
      }
      Put("loaded", bytes);
      TCharVFile loaded;
      loaded.LoadText(Name("loaded"), FILE_SHARE_READ);
      EXPECT_TRUE(loaded.ToString() == units);
      EXPECT_TRUE(Save(text) == saved);
      EXPECT_TRUE(row.units.find("FFFD") != std::string::npos || Save(loaded) == bytes);
      std::filesystem::remove_all(Directory());
      _exit(HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(convert(), testing::ExitedWithCode(0), "") << row.bytes;
  }
}

}  // namespace
