#include <gtest/gtest.h>

#include "hsys/Checked.h"
#include "support/Halts.h"
#include "support/Seed.h"
#include "support/Texts.h"
#include "vf/Characters.h"

using support::Count, support::Size, support::TextPeek;

namespace {

constexpr char32_t kNone = 0x110000;

/// Units with a place among them.
struct Model {
  TString units;
  std::size_t at = 0;

  /// The character on that side of the place, which it passes.
  char32_t Step(bool forward) {
    const TString near =
        forward ? units.substr(at, 2) : units.substr(at < 2 ? 0 : at - 2, std::min<std::size_t>(at, 2));
    if (near.empty()) return kNone;
    const bool isPair = near.size() == 2 && near[0] / 1024 == 54 && near[1] / 1024 == 55;
    const std::size_t count = isPair ? 2 : 1;
    at = forward ? at + count : at - count;
    if (isPair) return (near[0] - 0xD7C0u) * 1024 + (near[1] - 0xDC00u);
    return forward ? near.front() : near.back();
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
        char32_t character = kNone;
        const char32_t expected = model.Step(forward);
        const bool got = forward ? reader.Next(character) : reader.Previous(character);
        ASSERT_EQ(std::tuple(got, character, reader.Position()),
                  std::tuple(expected != kNone, expected, Count(model.at)))
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
}

TEST(Characters, OfAChangedTextComeAfterSetPosition) {
  TCharVFile text;
  text = TSTR("old text");
  char32_t character = 0;
  vf::CharacterReader reader(text, 4);
  text.DeleteTChars(2, 6);
  if constexpr (hsys::kChecked) {
    const char* message = "VFile, CharacterReader():\nthe text has changed";
    EXPECT_HALT(message, reader.Next(character));
    EXPECT_HALT(message, reader.Previous(character));
  }
  reader.SetPosition(reader.Position());
  EXPECT_EQ(reader.Position(), 2);
  EXPECT_TRUE(reader.Previous(character));
  EXPECT_EQ(character, U'l');
}

TEST(Characters, GoBackIntoUnits) {
  for (char32_t character = 0; character <= kNone; ++character) {
    Model model;
    vf::AppendCharacter(model.units, character);
    ASSERT_EQ(model.Step(true), character < kNone ? character : 0xFFFD);
    ASSERT_EQ(model.at, model.units.size());
  }
}

}  // namespace
