#include <gtest/gtest.h>
#include <set>

#include "hfile/HFileDir.h"
#include "support/Files.h"
#include "support/Texts.h"
#include "vf/Names.h"

namespace fs = std::filesystem;

using support::Hex, support::I32;

namespace {

constexpr bool kNamesAreBytes = std::is_same_v<fs::path::value_type, char>;

TEST(Utf8, BecomesUnitsAndComesBack) {
  // clang-format off
  const std::tuple<const char*, const char*, const char*> rows[] = {  // UTF-8, units, UTF-8 again
      {"", "", ""}, {"61 0 62", "61 0 62", "61 0 62"}, {"C3 A9 EF BF BF", "E9 FFFF", "C3 A9 EF BF BF"},
      {"F0 9F 98 80", "D83D DE00", "F0 9F 98 80"}, {"61 FF 62", "61 FFFD 62", "61 EF BF BD 62"},
      {"E2 82 41", "FFFD 41", "EF BF BD 41"}, {"ED A0 80", "FFFD FFFD FFFD", "EF BF BD EF BF BD EF BF BD"}};
  // clang-format on
  for (const auto& [utf8, units, again] : rows) {
    EXPECT_EQ(vf::UnitsOf(Hex<std::string>(utf8)), Hex<TString>(units)) << utf8;
    EXPECT_EQ(vf::Utf8Of(Hex<TString>(units)), Hex<std::string>(again)) << utf8;
  }
  EXPECT_EQ(vf::Utf8Of(Hex<TString>("DE00 D83D 41")), Hex<std::string>("EF BF BD EF BF BD 41"));
}

TEST(Names, GoThereAndBack) {
  // clang-format off
  const std::tuple<const char*, const char*, bool> rows[] = {  // bytes, units where these are the system's, whether UTF-8
      {"", "", true}, {"61 2F C3 A9", "61 2F E9", true}, {"F0 9F 98 80", "D83D DE00", true},
      {"61 5C 62", "61 DC5C 62", true}, {"FF 61 C3", "DCFF 61 DCC3", false}, {"ED B0 80", "DCED DCB0 DC80", false}};
  // clang-format on
  for (const auto& [row, units, isUtf8] : rows) {
    const std::string bytes = Hex<std::string>(row);
    const vf::Name name(bytes);
    EXPECT_EQ(name.Utf8(), bytes) << row;
    EXPECT_TRUE(!isUtf8 || name.Path() == fs::path(std::u8string(bytes.begin(), bytes.end()))) << row;
    EXPECT_EQ(vf::Name(name.Path()), name) << row;
    if (!kNamesAreBytes) continue;
    EXPECT_EQ(name.Units(), Hex<TString>(units)) << row;
    EXPECT_EQ(name.Path(), fs::path(bytes)) << row;
  }
  const vf::Name separated(TSTR("a\\b"));
  EXPECT_EQ(separated.Units(), TSTR("a\\b"));
  EXPECT_EQ(separated.Utf8(), kNamesAreBytes ? "a/b" : "a\\b");
}

TEST(Names, AreMadeOfAllThatNames) {
  const TString units = TSTR("a\u00E9");
  const std::string utf8 = "a\xC3\xA9";
  for (const vf::Name& name : {vf::Name(utf8), vf::Name(utf8.c_str()), vf::Name(u8"a\u00E9"),
                               vf::Name(fs::path(u8"a\u00E9")), vf::Name(units), vf::Name(units.c_str())}) {
    EXPECT_EQ(name.Units(), units);
  }
  const std::set<vf::Name> ordered{"b", "a", "b"};
  EXPECT_EQ(std::vector<vf::Name>(ordered.begin(), ordered.end()), (std::vector<vf::Name>{"a", "b"}));
  EXPECT_EQ(vf::Name(), vf::Name(static_cast<const TChar*>(nullptr)));
  EXPECT_EQ(TString(vf::Name(std::string("a\0b", 3))), TSTR("a"));
}

template <typename... Source>
constexpr int kNames = (0 + ... + std::is_constructible_v<vf::Name, Source>);
static_assert(kNames<std::nullptr_t, int, long, bool, char, TChar, double, std::vector<int>> == 0);

using NamedFiles = support::InDirectory;

TEST_F(NamedFiles, AreReachedByNames) {
  const fs::path path = Directory() / (kNamesAreBytes ? fs::path("\xFF\\b") : fs::path(u8"\u00E9 \U0001F600"));
  TCharVFile text;
  text.SaveText(vf::Name(path), false, TCharVFile::encUtf16, true);
  EXPECT_TRUE(HFile::Exists(vf::Name(path)) && fs::exists(path));
  HFileDir dir;
  TChar found[261];
  EXPECT_TRUE(dir.FindFirst(found, 261, vf::Name(path)));
  EXPECT_EQ(vf::Name(found).Path(), path);
}

TEST(Results, HaveTheTextsOfTheLibrary) {
  for (I32 code = -1; code < 40; ++code) {
    TChar text[300];
    GetTextResMsg(text, 300, code);
    EXPECT_EQ(vf::UnitsOf(vf::MessageOf(code)), TString(text)) << code;
  }
  vf::Check(resDone, "name");
  HFile closed;
  closed.Close();
  EXPECT_THROW(vf::Check(closed), vf::Error);
  EXPECT_EQ(closed.res, resDone);
  try {
    vf::Check(resNotFound, "n\xC3\xA9");
    ADD_FAILURE() << "nothing was thrown";
  } catch (const vf::Error& error) {
    EXPECT_EQ(error.Res(), resNotFound);
    EXPECT_EQ(error.what(), "n\xC3\xA9: " + vf::MessageOf(resNotFound));
  }
}

}  // namespace
