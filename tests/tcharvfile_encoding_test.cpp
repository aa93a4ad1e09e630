#include <cstdlib>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

#include "support/Files.h"
#include "support/FullDisk.h"
#include "support/Heap.h"
#include "support/Texts.h"

using support::TextPeek;

namespace {

using Encoding = TCharVFile::Encoding;
constexpr auto kAnsi = TCharVFile::encAnsi;
constexpr auto kUtf16 = TCharVFile::encUtf16;
constexpr auto kUtf16BE = TCharVFile::encUtf16BE;
constexpr Encoding kForms[] = {kAnsi, kUtf16, kUtf16BE, TCharVFile::encUtf8};
const std::string kMarks[] = {"", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB\xBF"};

// The ANSI form of the tests is UTF-8, whatever the environment says.
[[maybe_unused]] const int kCodePage = setenv("LC_ALL", "C.UTF-8", 1);

/// The bytes or units of a row of a table, in hexadecimal.
template <typename String>
String Hex(const std::string& row) {
  std::istringstream in(row);
  String values;
  for (unsigned value; in >> std::hex >> value;) values += static_cast<typename String::value_type>(value);
  return values;
}

std::string ToUtf8(const TString& text, const std::string& unpaired) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::uint32_t c = text[i];
    const bool pair = c >> 10 == 0x36 && i + 1 < text.size() && text[i + 1] >> 10 == 0x37;
    if (pair) c = 0x10000 + ((c & 0x3FF) << 10 | (text[++i] & 0x3FF));
    const int trails = c < 0x80 ? 0 : c < 0x800 ? 1 : c >> 11 == 0x1B ? -1 : c < 0x10000 ? 2 : 3;
    if (trails < 0) bytes += unpaired;
    if (trails >= 0) bytes += static_cast<char>((trails > 0 ? 0xFF00 >> (trails + 1) : 0) | c >> 6 * trails);
    for (int t = trails; t-- > 0;) bytes += static_cast<char>(0x80 | (c >> 6 * t & 0x3F));
  }
  return bytes;
}

/// What a text is in a file, without the mark.
std::string Body(TString text, Encoding form) {
  if (form != kUtf16 && form != kUtf16BE) return ToUtf8(text, form == kAnsi ? "?" : "\xEF\xBF\xBD");
  for (TChar& unit : text) unit = static_cast<TChar>(form == kUtf16 ? unit : unit << 8 | unit >> 8);
  return support::Bytes(text);
}

template <typename Call>
void Exhausted(int failing, Call call) {
  const support::FailingHeap heap(failing, support::FailingHeap::kAll);
  call();
}

class TextFiles : public support::InDirectory {
 protected:
  std::string Save(TCharVFile& text, Encoding form, bool withBom = true) const {
    text.SaveText(Name("saved"), true, form, withBom);
    return Content("saved");
  }
  /// The form and the units of a file with these bytes.
  std::pair<Encoding, TString> Load(const std::string& bytes) const {
    Put("loaded", bytes);
    TextPeek text;
    text = TSTR("old");
    text.res = resTooLong;
    Encoding form;
    text.LoadText(Name("loaded") + TChar{0}, form, FILE_SHARE_READ);
    EXPECT_EQ(text.res, resDone);
    EXPECT_EQ(text.pos, 0);
    EXPECT_FALSE(text.eof);
    EXPECT_EQ(text.length % 2, form == kUtf16 ? support::Count(bytes.size()) % 2 : 0);
    return {form, text.ToString()};
  }
};

TEST_F(TextFiles, AreToldByTheMarkAlone) {
  // bytes : form, units
  std::istringstream rows(
      ":0/FF:0 FFFD/FE:0 FFFD/EF:0 FFFD/EF BB:0 FFFD/EF BB 41:0 FFFD 41/FF 41:0 FFFD 41/FE FE:0 FFFD FFFD/C3 A9:0 "
      "E9/41 0 42 0:0 41/0 41:0/D A 41 D A:0 D A 41 D A/FF FE:1/FF FE 0 0:1 0/FF FE 41 0 42:1 41/FF FE FF FE:1 FEFF/FE "
      "FF:2/FE FF 0 0 0 D 0 A 42:2 0 D A/EF BB BF:3/EF BB BF EF BB BF D A 41 0 42:3 FEFF D A 41");
  for (std::string row; std::getline(rows, row, '/');) {
    const auto [form, units] = Load(Hex<std::string>(row));
    EXPECT_EQ(static_cast<TChar>(form) + units, Hex<TString>(row.substr(row.find(':') + 1))) << row;
  }
}

TEST_F(TextFiles, ComeBackAsTheyWereSaved) {
  TString all;
  TString pairs;
  for (std::uint32_t unit = 1; unit <= 0x10000; ++unit) all += static_cast<TChar>(unit);
  constexpr TChar kinds[] = {'a', 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0x7FF};
  for (std::size_t i = 0; i < 7 * 7 * 7; ++i) {
    pairs += TString(i % 10, u'a');
    pairs += {kinds[i % 7], kinds[i / 7 % 7], kinds[i / 49]};
  }
  for (const TString& units : {TString(), all, pairs, pairs + TChar{0xD83D}}) {
    for (const int value : {-1, 0, 1, 2, 3, 4}) {
      const auto asked = static_cast<Encoding>(value);
      const auto form = value < 0 || value > 3 ? kAnsi : asked;
      const std::string body = Body(units, form);
      const std::string odd = form == kUtf16 ? "x" : "";
      TextPeek text;
      text.ReplaceBuf(0, 0, (support::Bytes(units) + "x").data(), 2 * support::Count(units.size()) + 1);
      text.res = resTooLong;
      EXPECT_TRUE(Save(text, asked, false) == body + odd) << value;
      EXPECT_TRUE(Save(text, asked) == kMarks[form] + body + odd) << value;
      EXPECT_EQ(std::pair(text.pos, text.res), std::pair(text.length - (form == kUtf16 ? 0 : 1), std::int32_t{resDone}))
          << value;
      const auto [told, back] = Load(kMarks[form] + body);
      const bool converted = form != kUtf16 && form != kUtf16BE;
      EXPECT_EQ(told, form) << value;
      EXPECT_TRUE(converted ? ToUtf8(back, "!") == body.substr(0, body.find('\0')) : back == units) << value;
    }
  }
}

TEST_F(TextFiles, ReplaceEachMaximalIllFormedSequence) {
  // bytes : how many replacements
  const std::string rows =
      "80:1/BF BF:2/C0 AF:2/C1 80:2/C2:1/DF DF:2/E0 9F BF:3/E0 A0:1/E1 80 E2:2/EC BF:1/ED 9F:1/ED A0 80:3/EE 80:1/EF "
      "BF:1/F0 8F BF BF:4/F0 90:1/F0 90 80:1/F1 80 80:1/F3 BF C3:2/F4 8F BF:1/F4 90 80 80:4/F5 80:2/F8 88 80 80 "
      "80:5/FE FF:2/E2 82 F0 9F 98:2/F0 9F 98 E2:2";
  std::string bytes;
  TString units;
  for (std::size_t shift = 0; shift < 10; ++shift) {
    std::istringstream in(rows);
    for (std::string row; std::getline(in, row, '/');) {
      const std::string bad = std::string(shift, 'a') + Hex<std::string>(row);
      const TString replaced = TString(shift, u'a') + TString(support::Size(row.back() - '0'), 0xFFFD);
      bytes += bad + "A\xF0\x9F\x98\x80";
      units += replaced + TSTR("A\U0001F600");
      EXPECT_EQ(Load(kMarks[3] + bad).second, replaced) << row;
    }
  }
  EXPECT_TRUE(Load(kMarks[3] + bytes).second == units);
  EXPECT_TRUE(Load("a" + bytes).second == u'a' + units);
}

TEST_F(TextFiles, FailToLoadAsTheirStepsDo) {
  Put("file", "new");
  const TString file = Name("file");
  const TString missing = Name("missing");
  const TString memory = TSTR("/proc/self/mem");
  const TString old = TSTR("old");
  const TString none;
  HFile reader;
  EXPECT_TRUE(reader.OpenSeqRead(file.c_str()));
  // clang-format off
  const std::tuple<TString, int, int, int, int, TString> rows[] = {
      {missing, 0, 0, -1, resNotFound, none}, {file, 0, 0, -1, resNoPermission, none}, {memory, 7, 0, -1, resNotDone, none},
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
  const TString units(3000, u'x');
  TCharVFile::SetMaxCacheSize(1);
  for (const Encoding form : kForms) {
    const std::string bytes = kMarks[form] + Body(units, form);
    Put("file", bytes);
    const TString file = Name("file");
    const TString saved = Name("saved");
    std::set<std::pair<Encoding, std::string>> outcomes, all{{kUtf16, ""}, {form, support::Bytes(units)}};
    if (form != kUtf16) all.insert({{form, ""}, {form, bytes}});
    for (int failing = 1, failed = true; failed; ++failing) {
      TCharVFile text;
      text = TSTR("old");
      auto told = kAnsi;
      Exhausted(failing, [&] { text.LoadText(file, told, 0); });
      failed = support::FailingHeap::HasFailed();
      EXPECT_EQ(text.res, failed ? resHeapOverflow : resDone);
      outcomes.insert({told, Save(text, kUtf16, false)});
      if (failed) continue;
      for (int k = 1, lacked = true; lacked; ++k) {
        Exhausted(k, [&] { text.SaveText(saved, true, form, true); });
        lacked = support::FailingHeap::HasFailed();
        EXPECT_EQ(text.res, lacked ? resHeapOverflow : resDone) << k;
        EXPECT_EQ(Content("saved"), lacked ? kMarks[form] : bytes) << k;
      }
    }
    EXPECT_TRUE(outcomes == all) << form;
  }
  TCharVFile::SetMaxCacheSize(70);
}

TEST_F(TextFiles, AreSavedAsFarAsTheDiskTakesThem) {
  const TString units = TString(1200, u'x') + TSTR("\u00E9\u20AC\U0001F600");
  for (const Encoding form : kForms) {
    const std::string whole = kMarks[form] + Body(units, form);
    TCharVFile empty;
    TCharVFile text;
    text = units;
    for (const std::size_t limit :
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
    for (TCharVFile* file : {&text, &empty}) file->SaveText(TSTR("/dev/full"), true, form, true);
    EXPECT_EQ(text.res, resDiskFull) << form;
    EXPECT_EQ(empty.res, form == kAnsi ? resDone : resDiskFull) << form;
  }
}

TEST_F(TextFiles, AreInTheCodePageOfTheEnvironment) {
  const TString other = {'a', 0, 0x20AC, 0x4E00, 0xD83D, 0xDE00, 0xD83D, 0xE9};
  const char* utf8 = "61 0 E2 82 AC E4 B8 80 F0 9F 98 80 3F C3 A9";
  const struct {
    const char *all, *ctype, *lang, *bytes, *units, *saved;
  } rows[] = {
      {"de_DE.CP1252", "", "", "80 81 E9", "20AC FFFD E9", "61 0 80 3F 3F 3F E9"},
      {"", "x.ISO-8859-1@euro", "x.UTF-8", "80 81 E9", "80 81 E9", "61 0 3F 3F 3F 3F E9"},
      {"", "", "ja_JP.SJIS", "82 A0 82 20 88 EA", "3042 FFFD 20 4E00", "61 0 3F 88 EA 3F 3F 3F"},
      {"C", "", "x.CP1252", "E9 C3 A9", "FFFD E9", utf8},
      {"", "x.unknown", "x.CP1252", "E9 C3 A9", "FFFD E9", utf8},
      {nullptr, nullptr, nullptr, "E9 C3 A9", "FFFD E9", utf8},
  };
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
      EXPECT_TRUE(Load(bytes) == std::pair(kAnsi, units));
      EXPECT_TRUE(Save(text, kAnsi) == saved);
      std::filesystem::remove_all(Directory());
      _exit(HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(convert(), testing::ExitedWithCode(0), "") << row.bytes;
  }
}

}  // namespace
