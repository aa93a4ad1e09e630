#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

#include "support/Files.h"
#include "support/Texts.h"

using support::Count, support::NaiveFind, support::Size, support::TextPeek;

namespace {

using TextModel = support::InDirectory;

TEST_F(TextModel, ATextIsAStringWithAPosition) {
  const char* given = std::getenv("VFILE_SEED");
  const unsigned seed =
      given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
  std::printf("VFILE_SEED=%u\n", seed);
  std::mt19937 random(seed);
  const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  const auto make = [&](const TString& alphabet, int most) {
    TString units(Size(1 + below(most)), 0);
    for (TChar& unit : units) unit = alphabet[random() % alphabet.size()];
    return units;
  };
  constexpr std::int16_t limits[] = {0, 1, 2, 3, 70};
  TextPeek text;
  TString model;
  std::size_t at = 0;
  const auto put = [&](std::size_t where, std::size_t del, const TString& ins) {
    model.replace(where, del, ins);
    at = where + ins.size();
  };
  for (int step = 0; step < 5000; ++step) {
    if (step % 300 == 299) {  // the same in blocks that cut units
      at = 0;
      model = make(TSTR("aaaaA \u6100\u00E4\u00C4"), 200);
      text = TSTR("");
      support::FillInSmallBlocks(text, support::Bytes(model), random);
    }
    if (step % 500 == 0) TCharVFile::SetMaxCacheSize(std::int16_t{limits[step / 500 % 5]});
    const int kind = below(14);
    const int place = below(Count(model.size()) + 3);
    const int most = kind % 3 == 0 ? below(300) : MaxLen - below(9);
    const std::size_t start = std::min(Size(place), model.size());
    const std::size_t n = std::min(Size(most), model.size() - start);
    const TString units = make(TSTR("aabA \r\n\u00E9\u20AC\u2028"), kind > 2 ? 9 : 1500);
    const TString unit(1, units[0]);
    if (kind == 0) {
      text.InsertTStr(units);
      put(at, 0, units);
    }
    if (kind == 1) {
      text.AppendTStr(units);
      put(model.size(), 0, units);
    }
    if (kind == 2) {
      text << unit[0];
      put(at, 0, unit);
    }
    if (kind == 3) {
      text.InsertTChars(text, place, most);
      put(at, 0, model.substr(start, n));
    }
    if (kind == 4 && n < 999) {
      text.AppendTChars(text, place, most);
      put(model.size(), 0, model.substr(start, n));
    }
    if (kind == 6 || (kind == 5 && model.size() > 5000)) {
      text.DeleteTChars(place, most);
      put(start, n, {});
    }
    if (kind == 7) {
      text.ReplaceTChar(place, unit[0]);
      put(start, std::min<std::size_t>(1, n), unit);
    }
    if (kind == 8 && model.size() > 9000) {
      text.TruncateTChars();
      put(at, TString::npos, {});
    }
    if (kind == 9) {
      text.SetTCharPos(place);
      at = start;
    }
    if (kind == 10) {
      const TString wanted = make(TSTR("aaaaA \u00E4"), 5);
      const TString with = make(wanted, 2);
      const bool ignoreCase = step % 2 == 0;
      const bool whole = step % 3 == 0;
      for (int i = 2 * place; i < 2 * place + 40; ++i) {
        const bool back = i % 2 != 0;
        const int from = NaiveFind(model, wanted, i / 2, back, ignoreCase, whole);
        const int end = from + Count(wanted.size());
        std::int32_t found = i / 2;
        ASSERT_EQ(back ? text.FindBackTChars(found, wanted.c_str(), ignoreCase, whole)
                       : text.FindTChars(found, wanted, ignoreCase, whole),
                  from >= 0);
        // The last read took the unit on one side of the match, or met the end.
        const bool behind = from < 0 ? !back : back == whole;
        const bool eof = from < 0 || (behind ? end == text.TCharLength() : from == 0);
        ASSERT_TRUE(from < 0 || found == (back ? from : end)) << found << " from " << i / 2;
        ASSERT_EQ(std::pair(text.eof, text.pos),
                  std::pair(eof, eof ? (behind ? text.length : 0) : 2 * (behind ? end + 1 : from - 1)));
      }
      std::int32_t count = 0;
      text.Reset();
      at = 0;
      for (int from = 0; (from = NaiveFind(model, wanted, from, false, ignoreCase, whole)) >= 0; ++count) {
        put(Size(from), wanted.size(), with);
        from += Count(with.size());
      }
      ASSERT_EQ(text.ReplaceGlobalTChars(wanted.c_str(), with.c_str(), ignoreCase, whole), count);
      text.SetTCharPos(Count(at));
    }
    if (kind == 11) {
      const auto form = static_cast<TCharVFile::Encoding>(step % 4);
      auto loaded = TCharVFile::encAnsi;
      text.SaveText(Name("text"), true, form, true);
      text.LoadText(Name("text"), loaded, 0);
      ASSERT_TRUE(loaded == form);
      at = 0;
    }
    if (kind == 12) {
      TChar line[8];
      const std::size_t end = model.find_first_of(TSTR("\r\n"), at);
      ASSERT_EQ(TString(line, Size(text.ReadLine(line, 8))), model.substr(at, std::min<std::size_t>(7, end - at)));
      ASSERT_EQ(text.eof, end == TString::npos);
      at = text.eof ? model.size() : end + (model.compare(end, 2, TSTR("\r\n")) == 0 ? 2 : 1);
    }
    if (kind == 13) {
      TChar read[50];
      ASSERT_EQ(TString(read, Size(text.ReadTChars(read, 50))), model.substr(at, 50));
      at = std::min(at + 50, model.size());
    }
    ASSERT_TRUE(text.GetTCharPos() == Count(at) && text.res == resDone && text.Units() == model)
        << kind << " at " << step;
  }
  TCharVFile::SetMaxCacheSize(70);
}

}  // namespace
