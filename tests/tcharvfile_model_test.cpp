#include <gtest/gtest.h>
#include <random>

#include "support/Seed.h"
#include "support/Texts.h"

using support::Count, support::NaiveFind, support::Size, support::TextPeek;

namespace {

TEST(TextModel, ATextIsAStringWithAPosition) {
  std::mt19937 random(support::Seed());
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
    const int kind = below(13);
    const int place = below(Count(model.size()) + 3);
    const int most = kind % 3 == 0 ? below(300) : MaxLen - below(9);
    const std::size_t start = std::min(Size(place), model.size());
    const std::size_t n = std::min(Size(most), model.size() - start);
    const TString units = make(TSTR("aabA \r\n\u00E9\u20AC\u2028"), kind > 2 ? 9 : 1500);
    const TString unit(1, units[0]);
    const auto edit = [&](bool chosen, std::size_t where, std::size_t del, const TString& ins, const auto& call) {
      if (!chosen) return;
      call();
      put(where, del, ins);
    };
    const std::size_t end = model.size();
    const TString part = model.substr(start, n);
    edit(kind == 0, at, 0, units, [&] { text.InsertTStr(units); });
    edit(kind == 1, end, 0, units, [&] { text.AppendTStr(units); });
    edit(kind == 2, at, 0, unit, [&] { text << unit[0]; });
    edit(kind == 3, at, 0, part, [&] { text.InsertTChars(text, place, most); });
    edit(kind == 4 && n < 999, end, 0, part, [&] { text.AppendTChars(text, place, most); });
    edit(kind == 6 || (kind == 5 && end > 5000), start, n, {}, [&] { text.DeleteTChars(place, most); });
    edit(kind == 7, start, std::min<std::size_t>(1, n), unit, [&] { text.ReplaceTChar(place, unit[0]); });
    edit(kind == 8 && end > 9000, at, TString::npos, {}, [&] { text.TruncateTChars(); });
    if (kind == 9) {
      text.SetTCharPos(place);
      at = start;
    }
    if (kind == 10) {
      // Any units, or what stands somewhere, with one of its units changed.
      TString wanted = make(TSTR("aaaaA \u00E4"), 5);
      if (below(2) == 0 && start + 2 < end) {
        wanted = model.substr(start, Size(2 + below(40)));
        wanted[Size(below(Count(wanted.size())))] = unit[0];
      }
      const TString with = make(wanted, 2);
      const bool ignoreCase = step % 2 == 0;
      const bool whole = step % 3 == 0;
      for (int i = 2 * place; i < 2 * place + 40; ++i) {
        const bool back = i % 2 != 0;
        const int from = NaiveFind(model, wanted, i / 2, back, ignoreCase, whole);
        const int behindIt = from + Count(wanted.size());
        std::int32_t found = i / 2;
        ASSERT_EQ(back ? text.FindBackTChars(found, wanted.c_str(), ignoreCase, whole)
                       : text.FindTChars(found, wanted, ignoreCase, whole),
                  from >= 0);
        // The last read took the unit on one side of the match, or met the end.
        const bool behind = from < 0 ? !back : back == whole;
        const bool eof = from < 0 || (behind ? behindIt == text.TCharLength() : from == 0);
        ASSERT_TRUE(from < 0 || found == (back ? from : behindIt)) << found << " from " << i / 2;
        ASSERT_EQ(std::pair(text.eof, text.pos),
                  std::pair(eof, eof ? (behind ? text.length : 0) : 2 * (behind ? behindIt + 1 : from - 1)));
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
      TChar line[8];
      const std::size_t eol = model.find_first_of(TSTR("\r\n"), at);
      ASSERT_EQ(TString(line, Size(text.ReadLine(line, 8))), model.substr(at, std::min<std::size_t>(7, eol - at)));
      ASSERT_EQ(text.eof, eol == TString::npos);
      at = text.eof ? model.size() : eol + (model.compare(eol, 2, TSTR("\r\n")) == 0 ? 2 : 1);
    }
    if (kind == 12) {
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
