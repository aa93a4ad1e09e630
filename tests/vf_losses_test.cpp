#include <sstream>

#include "fuzz/Forms.h"
#include "support/Environment.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "support/Losses.h"
#include "support/Seed.h"
#include "vf/Losses.h"

using fuzz::kMarks, support::Count, support::Hex, support::Losses, support::NumbersOf, support::Size, support::TextPeek;

namespace {

using Encoding = TCharVFile::Encoding;
constexpr auto kAnsi = TCharVFile::encAnsi;
constexpr auto kUtf16 = TCharVFile::encUtf16;
constexpr auto kUtf16BE = TCharVFile::encUtf16BE;
constexpr auto kUtf8 = TCharVFile::encUtf8;
constexpr Encoding kForms[] = {kAnsi, kUtf16, kUtf16BE, kUtf8};

// Where the environment names the ANSI form, it is UTF-8 in the tests.
const support::Variable kCodePage("LC_ALL", "C.UTF-8");

/// What loading loses, by the decoder of the tests. U+FFFD that stand in the file are others to it.
Losses LossesOfLoading(const std::string& file) {
  std::size_t form = 3;
  while (!file.starts_with(kMarks[form])) --form;
  std::string bytes = file.substr(kMarks[form].size());
  if (form == kUtf16) return {0, 0, -1};
  if (form == kUtf16BE) {
    const auto units = Count(bytes.size() / 2);
    return bytes.size() % 2 == 0 ? Losses(0, 0, -1) : Losses(0, 1, units);
  }
  const std::size_t end = std::min(bytes.find('\0'), bytes.size());
  const std::size_t leftOut = bytes.size() - end;
  bytes.resize(end);
  if (form == kAnsi && !fuzz::IsUtf8Active()) return {0, leftOut, leftOut > 0 ? Count(end) : -1};
  for (std::size_t at = 0; (at = bytes.find("\xEF\xBF\xBD", at)) != std::string::npos;) bytes[at + 2] = '\xBC';
  const TString units = fuzz::FromUtf8(bytes);
  const std::size_t first = std::min(units.find(TChar{0xFFFD}), units.size());
  const auto replaced = std::count(units.begin(), units.end(), TChar{0xFFFD});
  return {replaced, leftOut, replaced > 0 || leftOut > 0 ? Count(first) : -1};
}

/// What saving loses: each unpaired surrogate, or what does not come back from the code page. A pair is one character.
Losses LossesOfSaving(const TString& units, bool isOdd, Encoding form) {
  if (form == kUtf16) return {0, 0, -1};
  TString kept = units;
  if (form == kUtf8 || (form == kAnsi && fuzz::IsUtf8Active())) kept = fuzz::WithoutUnpaired(units, 0);
  if (form == kAnsi && !fuzz::IsUtf8Active()) kept = support::From1252(support::To1252(units));
  std::int64_t replaced = 0;
  int first = -1;
  for (std::size_t at = 0; at < units.size(); ++at) {
    const bool isSecond = at > 0 && units[at] / 1024 == 55 && units[at - 1] / 1024 == 54;
    if (kept[at] == units[at] || isSecond) continue;
    ++replaced;
    if (first < 0) first = Count(at);
  }
  if (isOdd && first < 0) first = Count(units.size());
  return {replaced, isOdd ? 1 : 0, first};
}

class TextLosses : public support::InDirectory {
 protected:
  /// Loads a file of these bytes in both ways, and compares.
  void CheckLoading(const std::string& bytes) const {
    Put("text", bytes);
    TextPeek plain;
    TextPeek text;
    Encoding plainForm = kUtf8;
    Encoding form = kAnsi;
    plain.LoadText(Name("text"), plainForm, FILE_SHARE_READ);
    EXPECT_EQ(NumbersOf(vf::LoadText(text, Name("text"), form, FILE_SHARE_READ)), LossesOfLoading(bytes));
    EXPECT_EQ(std::tuple(text.res, form, text.pos, text.length),
              std::tuple(plain.res, plainForm, plain.pos, plain.length));
    EXPECT_TRUE(text.Units() == plain.Units());
  }

  /// Saves a text of these units, and of a byte if it is odd, in both ways and every form, and compares.
  void CheckSaving(const TString& units, bool isOdd) const {
    Put("text", kMarks[kUtf16] + support::Bytes(units) + (isOdd ? "x" : ""));
    TextPeek text;
    text.LoadText(Name("text"), FILE_SHARE_READ);
    for (const Encoding form : kForms) {
      text.SaveText(Name("plain"), true, form, isOdd);
      const std::int32_t pos = text.pos;
      text.SetPos(0);
      const vf::Losses losses = vf::SaveText(text, Name("saved"), true, form, isOdd);
      EXPECT_EQ(NumbersOf(losses), LossesOfSaving(units, isOdd, form)) << form;
      EXPECT_EQ(std::tuple(text.res, text.pos), std::tuple(resDone, pos));
      EXPECT_TRUE(Content("saved") == Content("plain")) << form;
    }
  }
};

TEST_F(TextLosses, AreCountedFromTheFirstOneOn) {
  const std::pair<const char*, Losses> rows[] = {{"EF BB BF 41 EF BF BD", {0, 0, -1}},
                                                 {"EF BB BF F0 9F 98 80 E2 82 41 ED A0 80", {4, 0, 2}},
                                                 {"EF BB BF EF BF BD FF EF BF", {2, 0, 1}},
                                                 {"EF BB BF C3 0 42", {1, 2, 0}},
                                                 {"FE FF 0 41 D8 0 0", {0, 1, 2}},
                                                 {"FF FE 41 0 0 D8 0", {0, 0, -1}},
                                                 {"61 3F 0", {0, 1, 2}}};
  for (const auto& [file, losses] : rows) {
    Put("text", Hex<std::string>(file));
    TCharVFile text;
    Encoding form;
    const vf::Losses lost = vf::LoadText(text, Path("text"), form, FILE_SHARE_READ);
    EXPECT_EQ(NumbersOf(lost), losses) << file;
    EXPECT_EQ(static_cast<bool>(lost), losses != Losses(0, 0, -1)) << file;
  }
  TCharVFile text;
  text = TSTR("?\uFFFD\U0001F600?") + TString{0xDC00, 'a', 0, 0xD800};
  EXPECT_EQ(NumbersOf(vf::SaveText(text, Path("saved"), true, kUtf8, false)), Losses(2, 0, 5));
}

// Every byte of what matters comes to lie at the border of a piece.
TEST_F(TextLosses, AreWhereTheyAreWhereverAPieceEnds) {
  const std::string characters =
      Hex<std::string>("E2 82 AC F0 9F 98 80 E2 82 F0 9F 98 41 C3 ED A0 80 F4 90 EF BF BD E0 9F");
  const TString units = {0xD83D, 0xDE00, 0xD83D, 0xD83D, 0xDE00, 0xDE00, 'a', 0x20AC, 0xFFFD, 0x141, 0xD800};
  for (const std::size_t border : {512u, 1024u, 2048u}) {
    for (std::size_t i = 0; i <= characters.size() && !HasFailure(); ++i) {
      const std::string text = std::string(border - i, 'a') + characters;
      CheckLoading(kMarks[kUtf8] + text);
      CheckLoading(text + std::string("\0\xC3", 2) + text);
      if (i <= units.size()) CheckSaving(TString(border - i, TSTR('a')) + units, i % 2 != 0);
    }
  }
}

TEST_F(TextLosses, AreThoseOfAModel) {
  const char* parts[] = {"61", "C3 A4", "E2 82 AC", "F0 9F 98 80", "EF BF BD", "C3", "E2 82", "F0 9F 98", "80", "FF"};
  const TString units[] = {{'a'}, {0xE9}, {0x20AC}, {0xD83D, 0xDE00}, {0xFFFD}, {0xD83D}, {0xDE00}, {0x141}};
  std::minstd_rand random(support::Seed());
  for (int round = 0; round < 100 && !HasFailure(); ++round) {
    std::string bytes = kMarks[random() % 4];
    TString text;
    const auto run = [&] { return random() % 3 == 0 ? random() % 600 : 0; };
    // One round in two has nothing but what comes through in every form.
    const bool isWhole = round % 2 == 0;
    for (auto left = random() % 40; left > 0; --left) {
      bytes += std::string(run(), 'a') + Hex<std::string>(parts[random() % (isWhole ? 5 : std::size(parts))]);
      text += TString(run(), TSTR('a')) + units[random() % (isWhole ? 4 : std::size(units))];
    }
    if (random() % 4 == 0) bytes += std::string(1 + random() % 3, '\0') + bytes;
    CheckLoading(bytes);
    CheckSaving(text, random() % 2 == 0);
  }
}

TEST_F(TextLosses, AreThoseUpToAFailure) {
  Put("file", kMarks[kUtf8] + "a\xFF" + std::string("b\0c", 3));
  Encoding form = kAnsi;
  TextPeek text;
  EXPECT_EQ(NumbersOf(vf::LoadText(text, Path("missing"), form, 0)), Losses(0, 0, -1));
  EXPECT_EQ(std::tuple(text.res, form), std::tuple(resNotFound, kUtf16));
  // The second change, by the converted text, is refused.
  text.allowed = 1;
  EXPECT_EQ(NumbersOf(vf::LoadText(text, Path("file"), form, 0)), Losses(1, 0, 1));
  EXPECT_EQ(std::tuple(text.res, form), std::tuple(resNotSupported, kUtf8));
  TCharVFile lossy;
  lossy = TString(2000, TChar{0xD800});
  const support::FullDisk disk(2000);
  const vf::Losses lost = vf::SaveText(lossy, Path("file"), true, kUtf8, true);
  EXPECT_EQ(std::tuple(lossy.res, lost.first), std::tuple(resDiskFull, 0));
  EXPECT_TRUE(lost.replaced > 600 && lost.replaced < 1800) << lost.replaced;
}

}  // namespace
