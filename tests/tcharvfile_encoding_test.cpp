#include <gtest/gtest.h>
#include <set>
#include <sstream>

#include "fuzz/Forms.h"
#include "support/Environment.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "support/Heap.h"

using fuzz::kMarks, support::Hex, support::TextPeek;

namespace {

using Encoding = TCharVFile::Encoding;
constexpr auto kAnsi = TCharVFile::encAnsi;
constexpr auto kUtf16 = TCharVFile::encUtf16;
constexpr auto kUtf16BE = TCharVFile::encUtf16BE;
constexpr Encoding kForms[] = {kAnsi, kUtf16, kUtf16BE, TCharVFile::encUtf8};

// Where the environment names the ANSI form, it is UTF-8 in the tests.
const support::Variable kCodePage("LC_ALL", "C.UTF-8");

class TextFiles : public support::InDirectory {
 protected:
  std::string Save(TCharVFile& text, Encoding form, bool withBom = true) const {
    text.SaveText(Name("saved"), true, form, withBom);
    return Content("saved");
  }
};

// Marks and pieces of them, every unit, all sequences of three kinds of units, and ill-formed UTF-8.
TEST_F(TextFiles, AreAsByADecoderOfTheirOwn) {
  TString all;
  for (int unit = 1; unit <= 0xFFFF; ++unit) all += static_cast<TChar>(unit);
  TString kinds;
  constexpr TChar kinds7[] = {'a', 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0x7FF};
  for (std::size_t i = 0; i < 7 * 7 * 7; ++i) {
    kinds += TString(i % 10, TSTR('a')) + kinds7[i % 7] + kinds7[i / 7 % 7] + kinds7[i / 49];
  }
  std::vector<std::string> files;
  for (const TString& units : {all, kinds, kinds + TChar{0xD83D}}) files.push_back(kMarks[1] + support::Bytes(units));
  std::istringstream rows(
      "/FF/FE/EF/EF BB/EF BB 41/FF 41/FE FE/FE FF FF/C3 A9/41 0 42 0/0 41/D A 41 D A/FF FE/FF FE 0 0/FF FE 41 0 42/EF "
      "BB "
      "BF/80/BF BF/C0 AF/C1 80/C2/DF DF/E0 9F BF/E0 A0/E1 80 E2/EC BF/ED 9F/ED A0 80/EE 80/EF BF/F0 8F BF BF/F0 90/F0 "
      "90 "
      "80/F1 80 80/F3 BF C3/F4 8F BF/F4 90 80 80/F5 80/F8 88 80 80 80/E2 82 F0 9F 98/F0 9F 98 E2");
  for (std::string row; std::getline(rows, row, '/');) files.push_back(Hex<std::string>(row));
  for (std::size_t i = 4; i < 44; ++i) files.push_back(files[i] + "aaaaaaa\xF0\x9F\x98\x80");
  int number = 0;
  for (const std::string& bytes : files) {
    ++number;
    for (const int form : {-1, 0, 1, 2, 3, 4}) {
      EXPECT_NO_THROW(fuzz::CheckForm(Path("text"), bytes, form, (number + form) % 2 == 0)) << number << " " << form;
    }
  }
}

// Texts that are converted piece by piece: every byte of what matters comes to lie at every border of a piece or a block.
TEST_F(TextFiles, AreTheSameWhereverAPieceEnds) {
  const std::string characters = Hex<std::string>(
      "C3 A4 E2 82 AC F0 9F 98 80 D A 41 D EF BB BF E2 82 F0 9F 98 41 C3 E2 80 C0 AF ED A0 80 ED B0 80 F4 8F BF BF F4 "
      "90 80 "
      "80 F0 80 E0 9F BF C3 A4 80 80 F5 A C3 A9");
  const TString units = {0xE9,   0x20AC, 0xD83D, 0xDE00, 0xD83D, 0xD83D, 0xDE00, 0xDE00, 'a',    0xDBFF,
                         0xDFFF, 0xD800, 13,     10,     0xFEFF, 0xDC00, 0x7FF,  0x800,  0xFFFF, 13};
  const auto check = [&](const std::string& bytes, int form, bool inSmallBlocks) {
    EXPECT_NO_THROW(fuzz::CheckForm(Path("text"), bytes, form, form % 2 == 0, inSmallBlocks))
        << testing::PrintToString(bytes.substr(0, 3)) << " of " << bytes.size() << " bytes in form " << form;
  };
  for (const std::size_t border : {512u, 1024u, 2048u, 4096u}) {
    for (std::size_t i = 0; i <= characters.size() + 4 && !HasFailure(); ++i) {
      const std::string text = std::string(border - i, 'a') + characters;
      const bool small = border == 1024 && i % 3 == 0;
      check(text, static_cast<int>(i % 4), small);
      check(kMarks[3] + text + "\xC3", static_cast<int>(i / 4 % 4), small);
      check(text + std::string("\0\xC3", 2) + text, TCharVFile::encUtf8, false);
      check(text.substr(0, border + 1), kAnsi, false);
    }
    for (std::size_t i = 0; i <= units.size() + 1 && !HasFailure(); ++i) {
      const TString text = TString(border / 2 - i, TSTR('a')) + units + TChar{0} + units;
      std::string swapped = support::Bytes(text);
      for (std::size_t at = 0; at < swapped.size(); at += 2) std::swap(swapped[at], swapped[at + 1]);
      for (const int form : {0, 1, 2, 3}) {
        check(kMarks[1] + support::Bytes(text) + "x", form, false);
        check(kMarks[1] + support::Bytes(text), form, border == 1024);
        check(kMarks[2] + swapped + "x", form, border == 2048);
      }
    }
  }
}

TEST_F(TextFiles, FailToLoadAsTheirStepsDo) {
  Put("file", "new");
  const TString file = Name("file");
  const TString missing = Name("missing");
  const TString old = TSTR("old");
  const TString none;
  HFile reader;
  EXPECT_TRUE(reader.OpenSeqRead(file.c_str()));
  // clang-format off
  const std::tuple<TString, int, int, int, int, TString> rows[] = {
      {missing, 0, 0, -1, resNotFound, none}, {file, 0, 0, -1, resNoPermission, none},
      {file, 1, 0, 1, resNotSupported, none}, {file, 1, 0, 0, resNotSupported, old},
      {missing, 1, vfReadOnly, -1, resReadOnly, old}, {missing, 1, vfLocked | vfReadOnly, -1, resContextError, old}};
  // clang-format on
  for (const auto& [name, share, flags, allowed, res, content] : rows) {
    TextPeek text;
    text = old;
    text.flags |= flags;
    text.allowed = allowed;
    auto form = kAnsi;
    text.LoadText(name.c_str(), form, static_cast<std::uint32_t>(share));
    EXPECT_EQ(std::tuple(text.res, form, text.Units()), std::tuple(res, TCharVFile::DefaultEncoding, content));
  }
}

TEST_F(TextFiles, AreLoadedInThreeChanges) {
  const char* last[] = {" ?0,4,8 !0,4,8", " b0,2,0 ?0,2,0 !0,2,0", " ?0,6,4 !0,6,4", " ?0,7,8 !0,7,8"};
  for (const Encoding form : kForms) {
    const std::string size = std::to_string(kMarks[form].size() + 4);
    Put("file", kMarks[form] + "abcd");
    TextPeek text;
    text = TSTR("old");
    text.notesHooks = true;
    text.LoadText(Name("file"), 0);
    EXPECT_EQ(text.log, " b0,max,0 ?0,6,0 !0,6,0 f0,-2147483648,max ?0,0," + size + " !0,0," + size + last[form]);
  }
}

TEST_F(TextFiles, MeetAnExhaustedHeap) {
  // More blocks than one slab of descriptors has.
  const TString units(40000, TSTR('x'));
  const TString file = Name("saved");
  TCharVFile::SetMaxCacheSize(1);
  for (const Encoding form : kForms) {
    const std::string bytes = Save(*std::make_unique<TCharVFile>() = units, form);
    std::set<std::pair<Encoding, std::string>> outcomes, all{{kUtf16, ""}, {form, support::Bytes(units)}};
    if (form != kUtf16) all.insert({form, bytes});
    for (int k = 1, lacked = true; lacked; ++k) {
      TCharVFile text;
      text = TSTR("old");
      auto told = kAnsi;
      {
        const support::FailingHeap heap(k, support::FailingHeap::kAll);
        text.LoadText(file, told, 0);
      }
      lacked = support::FailingHeap::HasFailed();
      // Reading ahead is done without where there is no memory for it.
      EXPECT_EQ(text.res, lacked && text.res != resDone ? resHeapOverflow : resDone);
      text.SaveText(Name("units"), true, kUtf16, false);
      outcomes.insert({told, Content("units")});
    }
    EXPECT_TRUE(outcomes == all) << form;
    TCharVFile whole;
    whole = units;
    {
      const support::FailingHeap heap(1, support::FailingHeap::kAll);
      whole.SaveText(file, true, form, true);
    }
    EXPECT_EQ(whole.res, resDone);
    EXPECT_EQ(Content("saved"), bytes);
  }
  TCharVFile::SetMaxCacheSize(70);
}

TEST_F(TextFiles, AreSavedAsFarAsTheDiskTakesThem) {
  for (const Encoding form : kForms) {
    TCharVFile empty;
    TCharVFile text;
    text = TString(1200, TSTR('x')) + TSTR("\u00E9\u20AC\U0001F600");
    const std::string whole = Save(text, form);
    for (const unsigned limit :
         {0u, 1u, 2u, 3u, 4u, 1024u, 1025u, 1026u, 1027u, 2049u, 2050u, 2051u, 2410u, 2411u, 3000u}) {
      {
        const support::FullDisk disk(limit);
        text.SaveText(Name("file"), true, form, true);
      }
      EXPECT_EQ(text.res, limit < whole.size() ? resDiskFull : resDone) << form << " " << limit;
      EXPECT_TRUE(Content("file") == whole.substr(0, limit)) << form << " " << limit;
    }
    text.SaveText(Name("file"), false, form, true);
    EXPECT_EQ(text.res, resAlreadyExists) << form;
    EXPECT_TRUE(Content("file") == whole) << form;
    {
      const support::FullDisk disk(0);
      empty.SaveText(Name("empty"), true, form, true);
    }
    EXPECT_EQ(empty.res, form == kAnsi ? resDone : resDiskFull) << form;
  }
}

}  // namespace
