// What texts in the active code page 1252 lose, by the system's tables.

#include "support/Losses.h"

#include <gtest/gtest.h>

#include "host/Host.h"
#include "support/CodePage1252.h"
#include "support/Files.h"

using support::Losses, support::NumbersOf;

namespace {

class CodePageLosses : public support::InDirectory {
 protected:
  void SetUp() override {
    if (host::GetACP() != 1252) GTEST_SKIP() << "the active code page is " << host::GetACP();
  }
  Losses Saving(const TString& units) const {
    TCharVFile text;
    text = units;
    return NumbersOf(vf::SaveText(text, Path("saved"), true, TCharVFile::encAnsi, false));
  }
};

TEST_F(CodePageLosses, AreTheUnitsThatDoNotComeBack) {
  TString lost;
  for (unsigned code = 0; code <= 0xFFFF; ++code) {
    const TString unit(1, static_cast<TChar>(code));
    const bool isLost = support::From1252(support::To1252(unit)) != unit;
    // Many a time alone, so that each is looked at; the rest as one text.
    if (code < 0x200 || code % 97 == 0) {
      EXPECT_EQ(Saving(unit), isLost ? Losses(1, 0, 0) : Losses(0, 0, -1)) << std::hex << code;
    }
    if (isLost && code / 2048 != 27) lost += unit;
  }
  EXPECT_EQ(Saving(TSTR("ab") + lost), Losses(lost.size(), 0, 2));
}

TEST_F(CodePageLosses, CountAPairAsOneWhereverAPieceEnds) {
  for (std::size_t before = 500; before < 530; ++before) {
    const TString text = TString(before, TSTR('a')) + TSTR("\U0001F600\U0001F600") + TChar{0xD800};
    EXPECT_EQ(Saving(text), Losses(3, 0, before)) << before;
    EXPECT_EQ(Content("saved"), std::string(before, 'a') + "?????");
  }
}

// The system converts less at once than a piece may have.
TEST_F(CodePageLosses, AreCountedFromTheStartOfAPiece) {
  const TString units = TString(1000, TSTR('a')) + TSTR("\u4E00");
  host::LossRecord losses;
  losses.units = 7;
  host::CodePageConversion conversion(host::CodePageConversion::kToBytes, &losses);
  const char* in = reinterpret_cast<const char*>(units.data());
  std::size_t left = units.size() * sizeof(TChar);
  char bytes[2000];
  char* out = bytes;
  std::size_t room = sizeof bytes;
  EXPECT_TRUE(conversion.Convert(in, left, out, room, true));
  EXPECT_EQ(losses.replaced, 1);
  EXPECT_EQ(losses.first, 1007);
}

}  // namespace
