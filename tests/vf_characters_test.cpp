#include <gtest/gtest.h>

#include "hsys/Checked.h"
#include "support/Halts.h"
#include "support/Seed.h"
#include "support/Texts.h"
#include "vf/Characters.h"

using support::Count, support::Size, support::TextPeek;

namespace {

bool IsHigh(TChar unit) { return unit / 1024 == 54; }
bool IsLow(TChar unit) { return unit / 1024 == 55; }

/// Units with a place among them.
struct Model {
  TString units;
  std::size_t at = 0;

  bool IsPair(std::size_t place) const {
    return place + 1 < units.size() && IsHigh(units[place]) && IsLow(units[place + 1]);
  }
  char32_t Character(std::size_t place, bool isPair) const {
    return isPair ? (units[place] - 0xD7C0u) * 1024 + (units[place + 1] - 0xDC00u) : units[place];
  }
  bool Next(char32_t& character) {
    if (at == units.size()) return false;
    character = Character(at, IsPair(at));
    at += IsPair(at) ? 2 : 1;
    return true;
  }
  bool Previous(char32_t& character) {
    if (at == 0) return false;
    const bool isPair = at > 1 && IsPair(at - 2);
    at -= isPair ? 2 : 1;
    character = Character(at, isPair);
    return true;
  }
};

// Steps to and fro over pairs and halves of pairs, from where the reader has been put, and runs to both ends.
TEST(Characters, AreThoseOfAModel) {
  constexpr TChar kKinds[] = {'a', 0xE9, 0xFFFF, 0xD7FF, 0xE000, 0xD800, 0xD83D, 0xDBFF, 0xDC00, 0xDE00, 0xDFFF};
  std::minstd_rand random(support::Seed());
  for (int round = 0; round < 40; ++round) {
    // Of every kind, of surrogates alone, or of few.
    const unsigned skipped = round % 3 == 0 ? 5 : 0;
    const unsigned kinds = round % 3 == 1 ? 6 : 11 - skipped;
    Model model;
    for (auto left = random() % 3000; left > 0; --left) model.units += kKinds[skipped + random() % kinds];
    TextPeek text;
    if (round % 5 == 0) {
      support::FillInSmallBlocks(text, support::Bytes(model.units) + "\xD8", random);
    } else {
      text = model.units;
    }
    text.SetTCharPos(Count(model.units.size() / 2));
    const std::int32_t pos = text.pos;
    model.at = random() % (model.units.size() + 1);
    vf::CharacterReader reader(text, Count(model.at));
    for (int steps = 0; steps < 80; ++steps) {
      if (random() % 4 == 0) {
        model.at = random() % (model.units.size() + 1);
        reader.SetPosition(Count(model.at));
      }
      const bool forward = random() % 2 == 0;
      for (auto run = random() % 20 == 0 ? 2500 : random() % 100; run > 0; --run) {
        char32_t expected = 0x110000;
        char32_t character = 0x110000;
        const bool wanted = forward ? model.Next(expected) : model.Previous(expected);
        const bool got = forward ? reader.Next(character) : reader.Previous(character);
        ASSERT_EQ(std::tuple(got, character, reader.Position()), std::tuple(wanted, expected, Count(model.at)))
            << "round " << round << ", forward " << forward;
        if (!got) break;
      }
    }
    EXPECT_EQ(std::tuple(text.pos, text.res, text.eof), std::tuple(pos, resDone, false));
  }
}

TEST(Characters, BeyondTheTextAreItsEnds) {
  TCharVFile text;
  text = TSTR("ab");
  char32_t character = 0;
  vf::CharacterReader reader(text, -1);
  EXPECT_EQ(reader.Position(), 0);
  EXPECT_FALSE(reader.Previous(character));
  reader.SetPosition(INT32_MAX);
  EXPECT_EQ(reader.Position(), 2);
  EXPECT_FALSE(reader.Next(character));
  EXPECT_EQ(character, 0u);
  EXPECT_EQ(vf::CharacterReader(text, INT32_MAX).Position(), 2);
}

TEST(Characters, OfAChangedTextComeAfterSetPosition) {
  TCharVFile text;
  text = TSTR("old text");
  char32_t character = 0;
  vf::CharacterReader reader(text, 4);
  EXPECT_TRUE(reader.Next(character));
  text.DeleteTChars(2, 6);
  if constexpr (hsys::kChecked) {
    const char* message = "VFile, CharacterReader():\nthe text has changed";
    EXPECT_HALT(message, reader.Next(character));
    EXPECT_HALT(message, reader.Previous(character));
    const support::NoteHalts noting;
    EXPECT_FALSE(reader.Next(character));
  }
  reader.SetPosition(reader.Position());
  EXPECT_EQ(reader.Position(), 2);
  EXPECT_TRUE(reader.Previous(character));
  EXPECT_EQ(character, U'l');
  vf::CharacterReader copy = reader;
  EXPECT_TRUE(reader.Previous(character));
  EXPECT_TRUE(copy.Next(character));
  EXPECT_EQ(character, U'l');
}

TEST(Characters, GoBackIntoUnits) {
  // The low halves first, since one behind a high half would be a pair.
  constexpr std::pair<char32_t, char32_t> kRanges[] = {
      {0, 0xD7FF}, {0xDC00, 0xDFFF}, {0xD800, 0xDBFF}, {0xE000, 0x10FFFF}};
  TString units;
  for (const auto& [first, last] : kRanges) {
    for (char32_t character = first; character <= last; ++character) vf::AppendCharacter(units, character);
  }
  TCharVFile text;
  text = units;
  vf::CharacterReader reader(text);
  char32_t character = 0;
  for (const auto& [first, last] : kRanges) {
    for (char32_t expected = first; expected <= last; ++expected) {
      ASSERT_TRUE(reader.Next(character));
      ASSERT_EQ(character, expected);
    }
  }
  EXPECT_FALSE(reader.Next(character));
  TString none;
  vf::AppendCharacter(none, 0x110000);
  vf::AppendCharacter(none, 0xFFFFFFFF);
  EXPECT_TRUE(none == TSTR("\uFFFD\uFFFD"));
}

}  // namespace
