#include <gtest/gtest.h>
#include <random>
#include <ranges>

#include "support/Disk.h"
#include "support/Halts.h"
#include "support/Seed.h"
#include "support/Texts.h"
#include "vf/Ranges.h"

using support::Bytes, support::Chain, support::Count, support::I32, support::Pattern, support::Pipe, support::Size,
    support::TextPeek;

namespace {

/// A file of odd blocks whose scratch buffer is newer than its page, and a text of the same bytes in small blocks.
struct Sources {
  Sources() {
    file.ReplaceBuf(1100, 2, "##", 2);
    file.SetPos(1101);
    content = Bytes(file);
    std::mt19937 random(support::Seed());
    support::FillInSmallBlocks(text, content, random);
    units = text.Units();
    I32 base = 0;
    for (const int len : support::Lens(file)) {
      base += len;
      borders.insert(borders.end(), {base - 1, base, base + 1});
    }
  }

  Chain file{{3, 1, 1024, 1, 700, 5, 1024, 1023, 1, 3}};
  TextPeek text;
  std::string content;
  TString units;
  std::vector<I32> borders{0, -1, INT32_MIN, MaxLen};
};

/// The part from a place up to another, if both are clamped.
template <typename String>
String Part(const String& all, I32 from, I32 to) {
  const auto clamped = [&](I32 place) { return Size(std::clamp(place, 0, Count(all.size()))); };
  return all.substr(clamped(from), clamped(std::max(from, to)) - clamped(from));
}

template <typename Read, typename String>
void ExpectRead(const Read& read, const String& part) {
  String into(5000, '.');
  EXPECT_EQ(read(into.data()), Count(part.size()));
  EXPECT_EQ(into, part + String(5000 - part.size(), '.'));
}

TEST(ReadAt, ReadsAnywhereAndMovesNothing) {
  Sources s;
  s.file.eof = true;
  s.file.res = resNotFound;
  const auto state = [&] { return std::tuple(s.file.pos, s.file.eof, s.file.res, s.file.cur.ptr, s.file.bufValid); };
  const auto before = state();
  for (const I32 at : s.borders) {
    for (const I32 count : {-1, 0, 1, 2, 700, 1025, 2049, MaxLen}) {
      SCOPED_TRACE(testing::Message() << at << ", " << count);
      const I32 to = at < 0 ? at : count > MaxLen - at ? MaxLen : at + count;
      ExpectRead([&](char* into) { return s.file.ReadAt(at, into, count); }, Part(s.content, at, to));
      ExpectRead([&](TChar* into) { return s.text.ReadTCharsAt(at, into, count); }, Part(s.units, at, to));
    }
  }
  EXPECT_EQ(s.file.ReadAt(0, nullptr, 1) + s.text.ReadTCharsAt(0, nullptr, 1), 0);
  EXPECT_EQ(state(), before);
}

/// Reads all of itself in its hooks.
struct Watched : support::Peek {
  std::string All() const {
    std::string bytes(Size(length), '?');
    EXPECT_EQ(ReadAt(0, bytes.data(), MaxLen), length);
    return bytes;
  }
  I32 PreChange(I32, I32, I32) const override {
    EXPECT_EQ(All(), model);
    return resDone;
  }
  void PostChange(I32 at, I32 del, I32 ins) override {
    const std::string now = All();
    EXPECT_EQ(now.substr(0, Size(at)) + now.substr(Size(at + ins)), model.erase(Size(at), Size(del)));
    model = now;
  }
  std::string model;
};

TEST(ReadAt, ReadsInHooksWhatStandsAtThatMoment) {
  std::mt19937 random(support::Seed());
  const auto below = [&](I32 bound) { return static_cast<I32>(random() % static_cast<unsigned>(bound)); };
  Watched file;
  for (int i = 0; i < 300; ++i) file.AppendFromFile(Pipe(Pattern(520 + i, i)).Handle(), 520 + i);
  for (int i = 0; i < 200 && !HasFailure(); ++i) {
    file.ReplaceTxt(below(file.length + 1), below(i % 9 == 0 ? 5000 : 40), file, below(file.length), below(3000));
  }
}

/// Whether the range has the elements, and so do the pieces one after another, of which none is empty.
template <typename Range, typename Pieces, typename String>
void ExpectElements(const Range& range, const Pieces& pieces, const String& elements) {
  EXPECT_TRUE(std::ranges::equal(range, elements));
  EXPECT_EQ(std::pair(range.size(), range.empty()), std::pair(elements.size(), elements.empty()));
  String joined;
  for (const auto piece : pieces) {
    EXPECT_FALSE(piece.empty());
    joined += piece;
  }
  EXPECT_EQ(joined, elements);
}

TEST(Ranges, AreThePartsOfTheFile) {
  const Sources s;
  for (const I32 from : s.borders) {
    for (const I32 to : s.borders) {
      SCOPED_TRACE(testing::Message() << from << " to " << to);
      ExpectElements(vf::Bytes(s.file, from, to), vf::Pieces(s.file, from, to), Part(s.content, from, to));
      ExpectElements(vf::Units(s.text, from, to), vf::Pieces(s.text, from, to), Part(s.units, from, to));
    }
  }
}

TEST(Ranges, GoWithTheAlgorithms) {
  std::string content = Pattern(3000);
  std::sort(content.begin(), content.end());
  const Chain file({700, 1024, 1, 800, 475}, content);
  vf::Bytes made(file);
  const auto first = made.begin();
  const vf::Bytes bytes = std::move(made);
  EXPECT_EQ(*first, content[0]) << "an iterator of a range that was moved";
  EXPECT_EQ(std::ranges::lower_bound(bytes, 'c') - first, std::ranges::lower_bound(content, 'c') - content.begin());
  EXPECT_TRUE(std::ranges::equal(bytes | std::views::reverse, content | std::views::reverse));
  auto at = first + 5;
  EXPECT_TRUE(at == 5 + first && first < at && at - 5 == first);
  EXPECT_EQ((at++).Position() + (at--).Position() + (--at).Position() + (++at).Position(), 5 + 6 + 4 + 5);
}

TEST(Ranges, EndWithAChangeOfTheFile) {
  const std::function<void(Chain&)> changes[] = {
    DO(f.ReplaceBuf(9, 1, "x", 1)),
    DO(f.Delete(100, MaxLen)),
    DO(VFile other; f.Exchange(other)),
    DO(const VFile moved(std::move(f)))
  };
  for (const auto& change : changes) {
    Sources s;
    const vf::Bytes bytes(s.file);
    const auto pieces = vf::Pieces(s.file);
    EXPECT_EQ(bytes[3700] + bytes[4], s.content[3700] + s.content[4]);
    for (const auto piece : pieces) EXPECT_FALSE(piece.empty());
    s.file.SetPos(2);
    s.file.SetFlags(vfInsert);
    EXPECT_EQ(bytes[3700], s.content[3700]) << "nothing of this is a change";
    change(s.file);
    if (hsys::kChecked) {
      const std::string halt = support::HaltOf([&] { (void)bytes[4]; });
      EXPECT_TRUE(halt.ends_with("the file has changed")) << halt;
      EXPECT_HALT(halt, (void)pieces.begin());
    } else {
      EXPECT_TRUE(bytes[4] == 0 || bytes[4] == s.content[4]);
      EXPECT_EQ(bytes[2000], 0);
      EXPECT_TRUE(pieces.begin() == pieces.end());
    }
  }
}

TEST(Ranges, ReadZeroesWhereAPageIsRefused) {
  VFile::SetMaxCacheSize(0);
  const Chain file({1024, 1024, 1024, 1024, 1024, 1024});
  const vf::Bytes bytes(file);
  const auto pieces = vf::Pieces(file);
  VFile::ReleaseCache();
  {
    const support::FailingDisk disk(1, support::FailingDisk::kReads);
    const support::NoteHalts noting;
    char byte = '.';
    EXPECT_EQ(file.ReadAt(1500, &byte, 1) + bytes[1500], 0);
    EXPECT_TRUE(pieces.begin() == pieces.end());
  }
  EXPECT_EQ(bytes[1500], Pattern(1, 1500)[0]);
  EXPECT_EQ(std::ranges::distance(pieces.begin(), pieces.end()), 6);
  EXPECT_EQ(file.res, resDone);
  VFile::SetMaxCacheSize(70);
}

static_assert(std::ranges::random_access_range<const vf::Bytes> && std::ranges::random_access_range<const vf::Units>);
static_assert(std::same_as<decltype(std::ranges::find(std::declval<vf::Bytes>(), 'x')), std::ranges::dangling>);

template <typename File>
constexpr int kRanges = std::is_constructible_v<vf::Bytes, File> + std::is_constructible_v<vf::Units, File> +
                        requires(File&& file) {
  vf::Pieces(std::forward<File>(file));
};
static_assert(kRanges<VFile&> == 2 && kRanges<const TCharVFile&> == 2 && kRanges<Chain&> == 2);
static_assert(kRanges<VFile> + kRanges<const VFile> + kRanges<TCharVFile> + kRanges<Chain> == 0);

}  // namespace
