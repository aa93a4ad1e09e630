#include <gtest/gtest.h>

#include "support/Chains.h"

using support::Chain, support::Count, support::I32, support::Lengths, support::Peek, support::Size;

namespace {

/// What an operation leaves: its results, then position, `eof` and `res`.
using Outcome = std::vector<I32>;

Outcome Ask(Peek& f, int operation, I32 at) {
  I32 start = -7;
  I32 size = -7;
  I32 eolSize = -7;
  I32 result = 0;
  if (operation == 0) result = f.LineStart(at);
  if (operation == 1) f.LineSize(at, start, size, eolSize);
  if (operation == 2) result = f.LineEnd(at, false) + 10000 * f.LineEnd(at, true);
  if (operation == 3) result = f.LineIndent(at);
  return {result, start, size, eolSize, f.GetPos(), f.eof, f.res};
}

/// The same, byte by byte.
struct ByByte {
  char Next() {
    f.ReadChar(c);
    return c;
  }
  char Prev() {
    f.ReadPrevChar(c);
    return c;
  }
  I32 Start(I32 at) {
    at = std::min(at, f.Length());
    if (at == 0) return 0;
    f.SetPos(at);
    if (Prev() == '\r') {
      f.SetPos(at);
      if (Next() != '\n') return at;
      f.SetPos(at);
      Prev();
      --at;
      Prev();
    }
    for (; at > 0 && c != '\r' && c != '\n'; --at) Prev();
    return at;
  }
  void Measure(I32 at) {
    start = Start(at);
    f.SetPos(start);
    size = 0;
    eolSize = 0;
    while (eolSize == 0) {
      Next();
      if (f.eof) return;
      ++size;
      if (c == '\r' || c == '\n') eolSize = 1;
      if (c == '\r' && Next() == '\n') eolSize = 2;
    }
    size += eolSize - 1;
  }
  Outcome Ask(int operation, I32 at) {
    I32 result = 0;
    if (at < 0) {
      f.res = resCallError;
    } else if (operation == 0) {
      result = Start(at);
    } else {
      Measure(at);
      if (operation == 2) result = start + size - eolSize + 10000 * (start + size);
      if (operation == 3) {
        f.SetPos(start);
        while (Next() == ' ') ++result;
      }
    }
    if (operation == 1) return {result, start, size, eolSize, f.GetPos(), f.eof, f.res};
    return {result, -7, -7, -7, f.GetPos(), f.eof, f.res};
  }

  Peek& f;
  char c = 0;
  I32 start = -7;
  I32 size = -7;
  I32 eolSize = -7;
};

/// Every operation on every one of the places, with a failure standing.
void ExpectAsByByte(Peek& file, std::initializer_list<I32> places) {
  for (const I32 at : places) {
    for (int operation = 0; operation < 4; ++operation) {
      const I32 from = file.GetPos();
      file.res = resDiskFull;
      file.eof = true;
      const Outcome outcome = Ask(file, operation, at);
      file.SetPos(from);
      file.res = resDiskFull;
      file.eof = true;
      ASSERT_EQ(outcome, ByByte{file}.Ask(operation, at))
          << operation << " at " << at << " in " << support::Bytes(file);
    }
  }
}

// Every text of up to five of four bytes, cut at every place; then lines of several blocks.
TEST(Lines, AreAsReadByteByByte) {
  for (int n = 0; n <= 5; ++n) {
    for (int i = 0; i < 1 << (2 * n); ++i) {
      std::string text;
      for (int k = 0; k < n; ++k) text += "a \r\n"[i >> (2 * k) & 3];
      for (int cut = 0; cut < std::max(n, 1); ++cut) {
        Chain file(cut > 0 ? Lengths{cut, n - cut} : n > 0 ? Lengths{n} : Lengths{}, text);
        ExpectAsByByte(file, {-1, 0, 1, 2, 3, 4, 5, 6, MaxLen});
        const auto isPair = [&](I32 at) { return at >= 0 && at < n && text.compare(Size(at), 2, "\r\n") == 0; };
        for (I32 at = 0; at <= 6; ++at) {
          EXPECT_EQ(file.AfterCRLF(at), isPair(std::min(at, n) - 2));
          EXPECT_EQ(file.BeforeCRLF(at), isPair(at));
          EXPECT_EQ(file.BetweenCRLF(at), isPair(at - 1));
          EXPECT_FALSE(file.BetweenCRLF(-1));
          EXPECT_EQ(file.res, resDone);
        }
      }
    }
  }
  for (const Lengths& lens : {Lengths{1024, 1024, 1024, 1024, 506}, Lengths{1, 1024, 1024, 1024, 29, 1, 476, 1023}}) {
    Chain file(lens, std::string(1500, ' ') + std::string(1600, 'x') + "\r\n" + std::string(1500, ' '));
    ExpectAsByByte(file, {1, 2000, 3100, 3101, 3102, 4602});
  }
}

/// The six relations of two sides, in the order == != < <= > >=.
template <typename Left, typename Right>
std::vector<bool> Relations(const Left& l, const Right& r) {
  return {l == r, l != r, l<r, l <= r, l> r, l >= r};
}

TEST(Comparison, IsThatOfByteStringsAndLeavesTheFiles) {
  VFile changed("abc");
  changed.SetPos(2);
  changed.ReplaceByte('d');  // in the scratch buffer alone
  EXPECT_TRUE(changed == "abd");
  EXPECT_TRUE(changed > "abc");
  const std::string k(1023, 'k');
  const std::string texts[] = {"",
                               "a",
                               "B",
                               "abc",
                               "abd",
                               "abcd",
                               "d",
                               "\xC8",
                               k,
                               k + "a",
                               k + "b",
                               k + "\xC8",
                               k + "ab",
                               k + "a" + k + "a",
                               k + "a" + k + "b",
                               std::string("a\0b", 3),
                               std::string("\0", 1)};
  for (const std::string& left : texts) {
    for (const std::string& right : texts) {
      Chain chain(left.size() < 2
                      ? Lengths(left.size(), 1)
                      : Lengths{1, static_cast<int>(left.size() - 1) / 2, static_cast<int>(left.size()) / 2},
                  left);
      VFile& f = chain;
      VFile g;
      g.AppendBytes(right.data(), Count(right.size()));
      f.SetPos(1);
      f.res = resDiskFull;
      f.eof = true;
      EXPECT_EQ(Relations(f, g), Relations(left, right)) << left << " " << right;
      EXPECT_EQ(Relations(f, right.c_str()), Relations(left, std::string(right.c_str()))) << left << " " << right;
      EXPECT_EQ(Relations(left.c_str(), g), Relations(std::string(left.c_str()), right)) << left << " " << right;
      EXPECT_EQ(Relations(f, f), Relations(0, 0));
      EXPECT_EQ(f.GetPos(), std::min(1, f.Length()));
      EXPECT_EQ(f.res, resDiskFull);
      EXPECT_TRUE(f.eof);
      EXPECT_TRUE(g.Eof());
    }
  }
}

// The page that was read last is the first in the cache.
TEST(Comparison, ReadsLeftThenRight) {
  struct Cache : VMem {
    using VMem::cacheHead;
  };
  const Chain left({9});
  const Chain right({9});
  EXPECT_TRUE(left <= right);
  const auto* newest = left.vm->*(&Cache::cacheHead);
  EXPECT_EQ(newest->addr, right.first->addr);
}

}  // namespace
