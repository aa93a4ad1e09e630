#include <gtest/gtest.h>
#include <set>
#include <thread>

#include "support/Chains.h"
#include "support/Halts.h"
#include "vfile/Walk.h"

using support::Bytes, support::Chain, support::I32, support::Lengths, support::Pattern, support::Peek;

namespace {

void OnAnotherThread(const std::function<void()>& call) { std::thread(call).join(); }

std::string Settings() { return support::Narrow(VFile::GetTempDir()) + std::to_string(VFile::GetMaxCacheSize()); }

TEST(Life, FilesOfAThreadShareItsSpaceAndItsSettingsOutliveThem) {
  OnAnotherThread([] {
    EXPECT_TRUE(VFile::GetMaxCacheSize() == 70 && VFile::GetCacheSize() == 0 && VFile::GetTempDir() == nullptr);
    VFile::SetMaxCacheSize(5), VFile::SetTempDir(TSTR("one"));
    {
      const Chain b({1000});
      EXPECT_EQ(Chain({1024, 9}).vm, b.vm);
      EXPECT_EQ(Settings() + std::to_string(VFile::GetCacheSize()), "one53");
      VFile::SetMaxCacheSize(6), VFile::SetTempDir(TSTR("two"));
      EXPECT_EQ(Bytes(b), Pattern(1000));
      OnAnotherThread([] { EXPECT_EQ(VFile::GetMaxCacheSize(), 70); });
    }
    VFile::ReleaseCache();
    EXPECT_EQ(Settings(), "two6");
  });
}

TEST(Life, BlocksAndPagesAreRecycled) {
  const VFile keepsTheThread;
  std::set<I32> pages;
  for (int round = 0; round < 2; ++round) {
    Peek file, other("x");
    EXPECT_TRUE(file.first->len == 0 && file.first == file.last && (round > 0 || file.first->addr == -1));
    EXPECT_TRUE(file.Eof() && file.Bof() && !file.eof && file.radix == 10 &&
                file.Length() + file.GetFlags() + file.res == 0);
    file.AppendBytes(Pattern(2500).data(), 2500);
    EXPECT_EQ(Bytes(file), Pattern(2500));
    pages.insert(other.first->addr);
    for (const BlkDesc* p = file.first; p != nullptr; p = p->next) pages.insert(p->addr);
  }
  EXPECT_EQ(pages, (std::set<I32>{0, 1024, 2048, 3072}));
}

TEST(Life, OperationsOnAnotherThreadHaltAndDoNothing) {
  Chain file({1024, 9});
  HFile closed;
  I32 at = 0;
  // clang-format off
  const std::function<void(VFile&)> operations[] = {
      DO(f.SetPos(1)), DO(f.ReplaceBuf(0, 1, "x", 1)), DO(f.ReplaceCh(0, 1, 'x', 2000)),
      DO(f.ReplaceTxt(0, 1, f, 0, 1)), DO(f.ReplaceFile(0, 1, closed, 1)),
      DO(f.ReplaceFile(0, 1, INVALID_HANDLE_VALUE, 1)), DO(f.ToggleFlag(1)), DO(f.Flush()),
      DO(f.WriteFile(TSTR(""), true)), DO(f.WriteToFile(closed, 1)), DO(f.ReadFile(TSTR(""), 0)),
      DO(f.WriteToFile(INVALID_HANDLE_VALUE, 1)), DO(EXPECT_FALSE(f.Find(at, "", false, false))),
      DO(EXPECT_FALSE(f.FindBack(at, "", false, false))), DO(EXPECT_EQ(f.ReplaceGlobal("\1", "x", false, false), 0))};
  // clang-format on
  for (const auto& operation : operations) {
    OnAnotherThread([&] {
      EXPECT_ASSERTION("VFile", operation(file)) << &operation - operations;
      const support::NoteHalts returning;
      operation(file);
    });
    EXPECT_TRUE(file.res == resDone && file.GetPos() == 1033 && file.GetFlags() == 0 && Bytes(file) == Pattern(1033));
  }
  OnAnotherThread([&] { EXPECT_ASSERTION("VFile", VFile("mine").ReplaceTxt(0, 0, file, 0, 1)); });
}

// Three chains of the same blocks are those of the first block, the cursor and the last block, so that the block where
// a walk ends tells where it began.
TEST(Walk, StartsFromTheNearestPlace) {
  const Lengths tens = {10, 10, 10, 10, 10};
  // clang-format off
  const std::tuple<Lengths, std::size_t, I32, bool, const char*, int> rows[] = {
      {tens, 3, 5, false, "F0", 5}, {tens, 3, 14, false, "F1", 4}, {tens, 3, 15, false, "C1", 5},
      {tens, 3, 29, false, "C2", 9}, {tens, 3, 30, false, "C3", 0}, {tens, 3, 39, false, "C3", 9},
      {tens, 2, 40, false, "L4", 0}, {tens, 4, 40, false, "C4", 0}, {tens, 0, 50, false, "L4", 10},
      {tens, 0, 24, false, "C2", 4}, {tens, 0, 25, false, "L2", 5}, {tens, 1, 29, false, "C2", 9},
      {tens, 1, 30, false, "L3", 0}, {{500, 500, 10}, 2, 500, false, "C1", 0}, {{0}, 0, 0, true, "L0", 0},
      {tens, 3, 30, true, "C2", 10}, {tens, 0, 0, true, "C0", 0}, {tens, 3, 31, true, "C3", 1},
      {{1024, 10}, 1, 1024, true, "C1", 0}, {{1023, 10}, 1, 1023, true, "C0", 1023},
      {{5, 0, 0, 7}, 0, 5, true, "L0", 5}, {{1024, 0, 7}, 0, 1024, true, "L1", 0}};
  // clang-format on
  for (const auto& [lens, from, position, forChange, at, ix] : rows) {
    std::vector<std::vector<BlkDesc>> chains(3, std::vector<BlkDesc>(lens.size()));
    I32 length = 0;
    BlkRdr cursor;
    for (std::size_t i = 0; i < lens.size(); length += lens[i++]) {
      if (i == from) cursor = {&chains[1][i], length, 0};
      for (auto& chain : chains) {
        chain[i] = {i > 0 ? &chain[i - 1] : nullptr, &chain[i] + 1, static_cast<std::int16_t>(lens[i]), 0};
      }
    }
    for (auto& chain : chains) chain.back().next = nullptr;
    vfile::Walk(cursor, &chains[0].front(), &chains[2].back(), length, position, forChange);
    EXPECT_EQ(cursor.ptr, &chains[std::string("FCL").find(at[0])][support::Size(at[1] - '0')]) << position;
    EXPECT_TRUE(cursor.ix == ix && cursor.base + ix == position) << at << " " << position;
  }
}

}  // namespace
