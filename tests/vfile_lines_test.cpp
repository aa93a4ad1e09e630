#include <gtest/gtest.h>
#include <thread>

#include "support/Chains.h"
#include "support/Halts.h"

using support::Chain, support::Count, support::I32, support::Lengths, support::Peek, support::Size;

namespace {

/// What an operation leaves: its results, then position, `eof` and `res`.
using Outcome = std::vector<I32>;

Outcome Ask(Peek& f, int operation, I32 at) {
  I32 start = -7, size = -7, eolSize = -7, result = 0;
  if (operation == 0) result = f.AfterCRLF(at);
  if (operation == 1) result = f.BeforeCRLF(at);
  if (operation == 2) result = f.BetweenCRLF(at);
  if (operation == 3) result = f.LineStart(at);
  if (operation == 4) f.LineSize(at, start, size, eolSize);
  if (operation == 5) result = f.LineEnd(at, false) + 10000 * f.LineEnd(at, true);
  if (operation == 6) result = f.LineIndent(at);
  return {result, start, size, eolSize, f.GetPos(), f.eof, f.res};
}

/// The same, byte by byte.
struct ByByte {
  char Next() { return f.ReadChar(c), c; }
  char Prev() { return f.ReadPrevChar(c), c; }
  bool Pair(I32 at) { return f.SetPos(at), Next() == '\r' && Next() == '\n'; }
  I32 Start(I32 at) {
    if ((at = std::min(at, f.Length())) == 0) return 0;
    if (f.SetPos(at), Prev() == '\r') {
      if (f.SetPos(at), Next() != '\n') return at;
      f.SetPos(at), Prev(), --at, Prev();
    }
    for (; at > 0 && c != '\r' && c != '\n'; --at) Prev();
    return at;
  }
  void Measure(I32 at, I32& start, I32& size, I32& eolSize) {
    f.SetPos(start = Start(at)), size = eolSize = 0;
    while (eolSize == 0 && (Next(), !f.eof)) {
      if (++size; c == '\r' || c == '\n') eolSize = 1;
      if (c == '\r' && Next() == '\n') ++size, ++eolSize;
    }
  }
  Outcome Ask(int operation, I32 at) {
    I32 start = -7, size = -7, eolSize = -7, result = 0;
    if (at < 0 && operation > 2) f.res = resCallError;
    if (at >= 0 && operation == 0) f.SetPos(at), result = Prev() == '\n' && Prev() == '\r';
    if (at >= 0 && operation == 1) result = Pair(at);
    if (at > 0 && operation == 2) result = Pair(at - 1);
    if (at >= 0 && operation == 3) result = Start(at);
    if (at >= 0 && operation > 3) Measure(at, start, size, eolSize);
    if (at >= 0 && operation == 5) result = start + size - eolSize + 10000 * (start + size);
    if (at >= 0 && operation == 6)
      for (f.SetPos(Start(at)); Next() == ' ';) ++result;
    if (operation != 4) start = size = eolSize = -7;
    return {result, start, size, eolSize, f.GetPos(), f.eof, f.res};
  }

  Peek& f;
  char c = 0;
};

/// Every operation on every one of the places, with a failure standing.
void ExpectAsByByte(Peek& file, std::initializer_list<I32> places) {
  for (const I32 at : places) {
    for (int operation = at < 0 ? 2 : 0; operation < 7; ++operation) {
      const I32 from = file.GetPos();
      file.res = resDiskFull, file.eof = true;
      const Outcome outcome = Ask(file, operation, at);
      file.SetPos(from), file.res = resDiskFull, file.eof = true;
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
      }
    }
  }
  for (const Lengths& lens : {Lengths{1024, 1024, 1024, 1024, 506}, Lengths{1, 1024, 1024, 1024, 29, 1, 476, 1023}}) {
    Chain file(lens, std::string(1500, ' ') + std::string(1600, 'x') + "\r\n" + std::string(1500, ' '));
    ExpectAsByByte(file, {1, 2000, 3100, 3101, 3102, 4602});
  }
}

TEST(Lines, BelongToTheFilesThread) {
  VFile file("a\r\nb");
  I32 n = 0;
  const std::function<void()> operations[] = {[&] { file.AfterCRLF(3); },          [&] { file.BeforeCRLF(1); },
                                              [&] { file.BetweenCRLF(0); },        [&] { file.LineStart(0); },
                                              [&] { file.LineSize(-1, n, n, n); }, [&] { file.LineEnd(-1, true); },
                                              [&] { file.LineIndent(0); }};
  for (const auto& operation : operations) std::thread([&] { EXPECT_ASSERTION("VFile", operation()); }).join();
}

/// The six relations of two sides, in the order == != < <= > >=.
template <typename Left, typename Right>
std::vector<bool> Relations(const Left& l, const Right& r) {
  return {l == r, l != r, l<r, l <= r, l> r, l >= r};
}

TEST(Comparison, IsThatOfByteStringsAndLeavesTheFiles) {
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
      VFile &f = chain, g;
      g.AppendBytes(right.data(), Count(right.size()));
      f.SetPos(1), f.res = resDiskFull, f.eof = true;
      EXPECT_EQ(Relations(f, g), Relations(left, right)) << left << " " << right;
      EXPECT_EQ(Relations(f, right.c_str()), Relations(left, std::string(right.c_str()))) << left << " " << right;
      EXPECT_EQ(Relations(left.c_str(), g), Relations(std::string(left.c_str()), right)) << left << " " << right;
      EXPECT_EQ(Relations(f, f), Relations(0, 0));
      EXPECT_TRUE(f.GetPos() == std::min(1, f.Length()) && f.res == resDiskFull && f.eof && g.Eof());
    }
  }
}

TEST(Comparison, SeesTheScratchBufferAndChecksTheThread) {
  VFile f("abc");
  f.SetPos(2), f.ReplaceByte('d');
  EXPECT_TRUE(f == "abd" && f > "abc");
  std::thread([&] {
    const VFile own("abd");
    const std::function<bool()> operations[] = {[&] { return f == own; }, [&] { return "a" < f; },
                                                [&] { return own == f; }, [&] { return f == ""; },
                                                [&] { return own <= f; }, [&] { return f < own; }};
    for (const auto& operation : operations) EXPECT_ASSERTION("VFile", static_cast<void>(operation()));
  }).join();
}

}  // namespace
