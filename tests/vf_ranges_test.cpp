#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <ranges>
#include <regex>

#include "support/Disk.h"
#include "support/Halts.h"
#include "support/Seed.h"
#include "support/Texts.h"
#include "vf/Ranges.h"

using support::Bytes, support::Chain, support::Count, support::I32, support::Lengths, support::Pattern, support::Pipe,
    support::Size, support::TextPeek;

namespace {

const Lengths kOdd{3, 1, 1024, 1, 700, 5, 1024, 1023, 1, 2};

/// The starts of the blocks and the places next to them.
std::vector<I32> Borders(const Lengths& lens) {
  std::vector<I32> places{0};
  I32 base = 0;
  for (const int len : lens) {
    base += len;
    for (const I32 place : {base - 1, base, base + 1}) places.push_back(place);
  }
  return places;
}

/// A file of the odd blocks whose scratch buffer is newer than its page.
struct Dirty : Chain {
  Dirty() : Chain(kOdd) {
    ReplaceBuf(1100, 2, "##", 2);
    SetPos(1101);
  }
  auto State() const { return std::tuple(pos, eof, res, cur.ptr, cur.base, cur.ix, bufValid); }
};

TEST(ReadAt, ReadsAnywhereAndMovesNothing) {
  Dirty file;
  const std::string content = Bytes(file);
  std::mt19937 random(support::Seed());
  TextPeek text;
  support::FillInSmallBlocks(text, content, random);
  const TString units = text.Units();
  file.eof = true;
  file.res = resNotFound;
  const auto before = file.State();
  const std::vector<I32> borders = Borders(kOdd);
  for (const I32 from : borders) {
    for (const I32 to : borders) {
      std::string bytes(5000, '.');
      const I32 there = std::max(std::min(to, file.length) - from, 0);
      EXPECT_EQ(file.ReadAt(from, bytes.data(), to - from), there) << from << " to " << to;
      EXPECT_EQ(bytes.substr(0, Size(there)), content.substr(std::min(Size(from), content.size()), Size(there)));
      EXPECT_EQ(bytes[Size(there)], '.');
      TString read(3000, '.');
      const I32 whole = std::max(std::min(to, Count(units.size())) - from, 0);
      EXPECT_EQ(text.ReadTCharsAt(from, read.data(), to - from), whole) << from << " to " << to;
      EXPECT_EQ(read.substr(0, Size(whole)), units.substr(std::min(Size(from), units.size()), Size(whole)));
      EXPECT_EQ(read[Size(whole)], '.');
    }
  }
  char byte = '.';
  TChar unit = '.';
  for (const auto& [at, count] : {std::pair(-1, 1), {INT32_MIN, MaxLen}, {0, 0}, {0, -1}, {MaxLen, 1}}) {
    EXPECT_EQ(file.ReadAt(at, &byte, count) + text.ReadTCharsAt(at, &unit, count), 0) << at << ", " << count;
  }
  EXPECT_EQ(file.ReadAt(0, nullptr, 1) + text.ReadTCharsAt(0, nullptr, 1), 0);
  EXPECT_EQ(std::pair(byte, unit), std::pair('.', TChar{'.'}));
  EXPECT_EQ(file.State(), before);
}

/// Reads all of itself in its hooks.
struct Watched : support::Peek {
  std::string All() const {
    std::string bytes(Size(length), '?');
    for (I32 at = 0; at < length; at += 3000) ReadAt(length - 1 - at, &bytes[Size(length - 1 - at)], 1);
    EXPECT_EQ(ReadAt(0, bytes.data(), MaxLen), length);
    return bytes;
  }
  I32 PreChange(I32, I32, I32) const override {
    EXPECT_EQ(All(), model);
    return resDone;
  }
  void PostChange(I32 at, I32 del, I32 ins) override {
    std::string bytes = All();
    EXPECT_EQ(bytes.substr(0, Size(at)) + bytes.substr(Size(at + ins)), std::string(model).erase(Size(at), Size(del)));
    model = bytes;
  }
  std::string model;
};

TEST(ReadAt, ReadsInHooksWhatStandsAtThatMoment) {
  std::mt19937 random(support::Seed());
  const auto below = [&](I32 bound) { return static_cast<I32>(random() % static_cast<unsigned>(bound)); };
  Watched file;
  for (int i = 0; i < 300; ++i) file.ReplaceFile(file.length, 0, Pipe(Pattern(520 + i, i)).Handle(), 520 + i);
  for (int i = 0; i < 200 && !HasFailure(); ++i) {
    const I32 at = below(file.length + 1);
    const I32 del = below(i % 9 == 0 ? 5000 : 40);
    if (i % 3 == 0) file.ReplaceTxt(at, del, file, below(file.length), below(3000));
    if (i % 3 == 1) file.ReplaceBuf(at, del, Pattern(3000).data(), below(i % 2 == 0 ? 3000 : 20));
    if (i % 3 == 2) file.ReplaceFile(at, del, Pipe(Pattern(2000)).Handle(), below(2000));
    EXPECT_EQ(file.res, resDone) << i;
  }
}

TEST(Ranges, AreThePartsOfTheFile) {
  const Dirty file;
  const std::string content = Bytes(file);
  std::mt19937 random(support::Seed());
  TextPeek text;
  support::FillInSmallBlocks(text, content, random);
  const TString units = text.Units();
  std::vector<I32> borders = Borders(kOdd);
  borders.insert(borders.end(), {-1, INT32_MIN, MaxLen});
  const auto expectPart = [](const auto& all, const auto& range, auto pieces, I32 from, I32 to) {
    const auto clamped = [&](I32 place) { return Size(std::clamp(place, 0, Count(all.size()))); };
    const auto part = all.substr(clamped(from), clamped(std::max(from, to)) - clamped(from));
    EXPECT_TRUE(std::ranges::equal(range, part)) << from << " to " << to;
    EXPECT_EQ(std::pair(range.size(), range.empty()), std::pair(part.size(), part.empty()));
    EXPECT_EQ(range.begin().Position(), Count(clamped(from)));
    auto joined = part.substr(0, 0);
    for (const auto piece : pieces()) {
      EXPECT_FALSE(piece.empty());
      joined += piece;
    }
    EXPECT_EQ(joined, part) << from << " to " << to;
  };
  for (const I32 from : borders) {
    for (const I32 to : borders) {
      const auto pieces = [&] { return vf::Pieces(file, from, to); };
      expectPart(content, vf::Bytes(file, from, to), pieces, from, to);
      const auto unitPieces = [&] { return vf::Pieces(text, from, to); };
      if (from < 9 || to % 3 == 0) expectPart(units, vf::Units(text, from, to), unitPieces, from, to);
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
  const auto last = std::find(std::reverse_iterator(bytes.end()), std::reverse_iterator(bytes.begin()), 'c');
  EXPECT_EQ(last.base() - first, Count(content.rfind('c') + 1));
  for (I32 low = 0, high = 2999; low < high; ++low, --high) {
    EXPECT_EQ(std::pair(bytes[Size(low)], first[high]), std::pair(content[Size(low)], content[Size(high)]));
  }
  auto at = first + 5;
  EXPECT_EQ((*at++ == content[5]) + (*at-- == content[6]) + (*--at == content[4]) + (*++at == content[5]), 4);
  at -= 2;
  EXPECT_TRUE(at == 3 + first && bytes.end() - at == 2997 && at < first + 4 && *(at - 3) == content[0]);
  const Chain words({5, 1024, 3}, "ab=12" + std::string(1020, '-') + "key=" + "345");
  const vf::Bytes text(words);
  std::match_results<vf::Bytes::Iterator> match;
  EXPECT_TRUE(std::regex_search(text.begin(), text.end(), match, std::regex("(k[a-z]+)=(\\d+)")));
  EXPECT_EQ(match[1].first.Position(), 1025);
  EXPECT_EQ(match[2].str(), "345");
  const std::string_view wanted = "--key=3";
  EXPECT_EQ(std::search(text.begin(), text.end(), wanted.begin(), wanted.end()).Position(), 1023);
}

TEST(Ranges, EndWithAChangeOfTheFile) {
  Dirty file;
  const std::string content = Bytes(file);
  const std::function<void(Dirty&)> changes[] = {
    DO(f.ReplaceBuf(9, 1, "x", 1)),
    DO(f.Delete(100, MaxLen)),
    DO(VFile other; f.Exchange(other)),
    DO(const VFile moved(std::move(f)))
  };
  for (const auto& change : changes) {
    Dirty changed;
    const vf::Bytes bytes(changed);
    const auto pieces = vf::Pieces(changed);
    EXPECT_EQ(bytes[3700] + bytes[4], content[3700] + content[4]);
    for (const auto piece : pieces) EXPECT_FALSE(piece.empty());
    char byte = 0;
    changed.SetPos(2);
    changed.ReadChar(byte);
    changed.SetFlags(vfInsert);
    EXPECT_EQ(bytes[3700], content[3700]) << "nothing of this is a change";
    change(changed);
    if (hsys::kChecked) {
      const std::string halt = support::HaltOf([&] { (void)bytes[4]; });
      EXPECT_TRUE(halt.ends_with("the file has changed")) << halt;
      EXPECT_HALT(halt, (void)pieces.begin());
    } else {
      EXPECT_TRUE(bytes[4] == 0 || bytes[4] == content[4]);
      EXPECT_EQ(bytes[2000], 0);
      EXPECT_TRUE(pieces.begin() == pieces.end());
    }
  }
}

TEST(Ranges, ReadZeroesWhereAPageIsRefused) {
  VFile::SetMaxCacheSize(0);
  Chain file({1024, 1024, 1024, 1024, 1024, 1024});
  file.SetPos(5);
  const vf::Bytes bytes(file);
  const auto pieces = vf::Pieces(file);
  EXPECT_EQ(std::ranges::distance(pieces.begin(), pieces.end()), 6);
  VFile::ReleaseCache();
  {
    const support::FailingDisk disk(1, support::FailingDisk::kReads);
    const support::NoteHalts noting;
    char byte = '.';
    EXPECT_EQ(file.ReadAt(1500, &byte, 1), 0);
    EXPECT_EQ(bytes[1500], 0);
    EXPECT_TRUE(pieces.begin() == pieces.end());
    EXPECT_EQ(support::NoteHalts::Noted().size(), 3u);
  }
  EXPECT_EQ(bytes[1500], Pattern(1, 1500)[0]);
  EXPECT_EQ(std::ranges::distance(pieces.begin(), pieces.end()), 6);
  EXPECT_EQ(std::pair(file.res, file.pos), std::pair(I32{resDone}, 5));
  VFile::SetMaxCacheSize(70);
}

static_assert(std::random_access_iterator<vf::Bytes::Iterator> && std::random_access_iterator<vf::Units::Iterator>);
static_assert(std::ranges::random_access_range<const vf::Bytes> && std::ranges::sized_range<const vf::Units>);
static_assert(std::ranges::common_range<vf::Bytes> && std::ranges::input_range<vf::PieceRange<char>>);
static_assert(std::same_as<decltype(std::ranges::find(std::declval<vf::Bytes>(), 'x')), std::ranges::dangling>);

template <typename File>
constexpr int kRanges = std::is_constructible_v<vf::Bytes, File> + std::is_constructible_v<vf::Units, File> +
                        requires(File&& file) {
  vf::Pieces(std::forward<File>(file));
};
static_assert(kRanges<VFile&> == 2 && kRanges<const TCharVFile&> == 2 && kRanges<Dirty&> == 2);
static_assert(kRanges<VFile> + kRanges<const VFile> + kRanges<TCharVFile> + kRanges<Dirty> == 0);

}  // namespace
