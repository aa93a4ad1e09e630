#include <gtest/gtest.h>
#include <optional>
#include <thread>

#include "support/Chains.h"
#include "support/Halts.h"

using support::Chain, support::Count, support::I32, support::Lengths, support::Peek, support::Size;

namespace {

constexpr int kOperations = 7;

/// What an operation leaves: its results, then position, `eof` and `res`.
using Outcome = std::vector<I32>;

Outcome Ask(Peek& f, int operation, I32 at) {
  I32 start = -7, size = -7, eolSize = -7;
  I32 result = 0;
  if (operation == 0) result = f.AfterCRLF(at);
  if (operation == 1) result = f.BeforeCRLF(at);
  if (operation == 2) result = f.BetweenCRLF(at);
  if (operation == 3) result = f.LineStart(at);
  if (operation == 4) f.LineSize(at, start, size, eolSize);
  if (operation == 5) result = f.LineEnd(at, false) * 1000 + f.LineEnd(at, true);
  if (operation == 6) result = f.LineIndent(at);
  return {result, start, size, eolSize, f.GetPos(), f.eof, f.res};
}

/// The same, told byte by byte on a string that is read from a position.
struct ByByte {
  char Next() { return (eof = pos == Count(text.size())) ? '\0' : text[Size(pos++)]; }
  char Prev() { return (eof = pos == 0) ? '\0' : text[Size(--pos)]; }
  void Seek(I32 to) { pos = std::min(to, Count(text.size())), eof = false, res = resDone; }
  bool Pair(I32 at) { return Seek(at), Next() == '\r' && Next() == '\n'; }

  I32 Start(I32 at) {
    I32 p = std::min(at, Count(text.size()));
    if (p == 0) return 0;
    Seek(p);
    char c = Prev();
    if (c == '\r') {
      Seek(p);
      if (Next() != '\n') return p;
      Seek(p), Prev(), --p, c = Prev();
    }
    while (p > 0 && c != '\r' && c != '\n') --p, c = Prev();
    return p;
  }
  void Measure(I32 at, I32& start, I32& size, I32& eolSize) {
    start = Start(at), size = eolSize = 0;
    Seek(start);
    for (;;) {
      const char c = Next();
      if (eof) return;
      ++size;
      if (c == '\r' || c == '\n') eolSize = 1;
      if (c == '\r' && Next() == '\n') ++size, ++eolSize;
      if (eolSize > 0) return;
    }
  }

  Outcome Ask(int operation, I32 at) {
    I32 start = -7, size = -7, eolSize = -7;
    I32 result = 0;
    if (at < 0) {
      res = operation == 2 ? res : resCallError;
    } else if (operation == 0) {
      Seek(at), result = Prev() == '\n' && Prev() == '\r';
    } else if (operation == 1 || (operation == 2 && at > 0)) {
      result = Pair(at - (operation == 2 ? 1 : 0));
    } else if (operation == 3) {
      result = Start(at);
    } else if (operation == 4) {
      Measure(at, start, size, eolSize);
    } else if (operation == 5) {
      I32 s, n, e;
      Measure(at, s, n, e), result = (s + n - e) * 1000 + s + n;
    } else if (operation == 6) {
      Seek(Start(at));
      while (Next() == ' ') ++result;
    }
    return {result, start, size, eolSize, pos, eof, res};
  }

  std::string text;
  I32 pos = 0;
  bool eof = false;
  I32 res = resDone;
};

// Every text of up to five of four bytes, cut at every place, at every position, with a failure standing.
TEST(Lines, AreAsReadByteByByte) {
  for (int n = 0; n <= 5; ++n) {
    for (int i = 0; i < 1 << (2 * n); ++i) {
      std::string text;
      for (int k = 0; k < n; ++k) text += "a \r\n"[i >> (2 * k) & 3];
      for (int cut = n > 1 ? 1 : n; cut < std::max(n, 1); ++cut) {
        Chain file(n > 1 ? Lengths{cut, n - cut} : Lengths(Size(n), 1), text);
        ByByte model{text};
        for (I32 at = -1; at <= n + 1; ++at) {
          for (int operation = at < 0 ? 2 : 0; operation < kOperations; ++operation) {
            file.res = model.res = resDiskFull;
            file.eof = model.eof = true;
            model.pos = file.GetPos();
            ASSERT_EQ(Ask(file, operation, at), model.Ask(operation, at))
                << operation << " at " << at << " in " << testing::PrintToString(text) << " cut at " << cut;
          }
        }
      }
    }
  }
}

TEST(Lines, RunOverManyBlocks) {
  const std::string blanks(1500, ' '), text = blanks + std::string(1600, 'x') + "\r\n" + blanks;
  for (const Lengths& lens : {Lengths{1024, 1024, 1024, 1024, 506}, Lengths{1, 3100, 1, 1500}}) {
    Peek file;
    for (I32 at = 0; const int len : lens) file.AppendBytes(text.data() + at, len), at += len;
    ByByte model{text};
    for (const I32 at : {1, 2000, 3100, 3101, 3102, 4602, MaxLen}) {
      for (int operation = 3; operation < kOperations; ++operation) {
        EXPECT_EQ(Ask(file, operation, at), model.Ask(operation, at)) << operation << " at " << at;
      }
    }
    EXPECT_EQ(file.LineIndent(100), 1500);
  }
}

TEST(Lines, BelongToTheFilesThread) {
  VFile file("a\r\nb");
  const std::vector<std::function<void()>> operations = {[&] { file.AfterCRLF(3); },      [&] { file.BeforeCRLF(1); },
                                                         [&] { file.BetweenCRLF(0); },    [&] { file.LineStart(0); },
                                                         [&] { file.LineEnd(-1, true); }, [&] { file.LineIndent(0); }};
  for (const auto& operation : operations) {
    std::thread([&] { EXPECT_ASSERTION("VFile", operation()); }).join();
  }
  EXPECT_EQ(file.res, resDone);
}

// ---- Comparison ----

/// The six relations of two sides, in the order == != < <= > >=.
template <typename Left, typename Right>
std::string Relations(const Left& left, const Right& right) {
  std::string relations;
  for (const bool holds : {left == right, left != right, left<right, left <= right, left> right, left >= right}) {
    relations += holds ? '1' : '0';
  }
  return relations;
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
                               k + "ab",
                               k + "bb",
                               k + "a" + k + "a",
                               k + "\xC8",
                               k + k + "xy",
                               k + k + "xz",
                               k + "a" + k + "b",
                               std::string("a\0b", 3),
                               std::string("\0", 1)};
  for (const std::string& left : texts) {
    for (const std::string& right : texts) {
      const int half = static_cast<int>(left.size() / 2);
      Chain f(left.empty() ? Lengths{}
              : half == 0  ? Lengths{1}
                           : Lengths{half, static_cast<int>(left.size()) - half},
              left);
      Peek g;
      g.AppendBytes(right.data(), Count(right.size()));
      f.SetPos(half);
      f.res = resDiskFull, f.eof = true;
      EXPECT_EQ(Relations<VFile>(f, g), Relations(left, right)) << left << " " << right;
      EXPECT_EQ(Relations<VFile>(f, right.c_str()), Relations(left, std::string(right.c_str())))
          << left << " " << right;
      EXPECT_EQ(Relations(left.c_str(), static_cast<const VFile&>(g)), Relations(std::string(left.c_str()), right));
      EXPECT_TRUE(f.GetPos() == half && f.res == resDiskFull && f.eof && g.GetPos() == Count(right.size()));
      EXPECT_EQ(Relations<VFile>(f, f), "100101");
    }
  }
}

TEST(Comparison, SeesTheScratchBufferAndChecksTheThread) {
  Peek f("abc"), g("abd");
  f.SetPos(2), f.ReplaceByte('d');
  EXPECT_TRUE(f.cur.ptr == f.first && static_cast<VFile&>(f) == g);
  std::thread([&] {
    VFile own("abd");
    EXPECT_ASSERTION("VFile", static_cast<void>(f == g));
    EXPECT_ASSERTION("VFile", static_cast<void>("a" < f));
    EXPECT_ASSERTION("VFile", static_cast<void>(own == f));
    EXPECT_ASSERTION("VFile", static_cast<void>(own < f));
  }).join();
}

}  // namespace
