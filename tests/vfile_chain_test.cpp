#include <gtest/gtest.h>
#include <set>
#include <thread>

#include "support/Chains.h"
#include "support/Halts.h"

using support::Bytes, support::Chain, support::I32, support::Lengths, support::Pattern, support::Peek;

namespace {

void OnAnotherThread(const std::function<void()>& call) { std::thread(call).join(); }

std::string Settings() { return support::Narrow(VFile::GetTempDir()) + std::to_string(VFile::GetMaxCacheSize()); }

TEST(Life, FilesOfAThreadShareItsSpaceAndItsSettingsOutliveThem) {
  OnAnotherThread([] {
    EXPECT_TRUE(VFile::GetMaxCacheSize() == 70 && VFile::GetCacheSize() == 0 && VFile::GetTempDir() == nullptr);
    VFile::SetMaxCacheSize(5);
    VFile::SetTempDir(TSTR("one"));
    {
      const Chain file({1000});
      EXPECT_EQ(Chain({1024, 9}).vm, file.vm);
      EXPECT_EQ(Settings() + std::to_string(VFile::GetCacheSize()), "one53");
      VFile::SetMaxCacheSize(6);
      VFile::SetTempDir(TSTR("two"));
      EXPECT_EQ(Bytes(file), Pattern(1000));
      OnAnotherThread([] { EXPECT_EQ(VFile::GetMaxCacheSize(), 70); });
    }
    VFile::ReleaseCache();
    EXPECT_EQ(Settings(), "two6");
  });
}

TEST(Life, BlocksAndPagesAreRecycled) {
  OnAnotherThread([] {
    Peek late;
    { const Chain pooled({9}); }
    late.Append("x");
    EXPECT_LT(late.first->addr, 2048) << "a page of the pool";
  });
  const VFile keepsTheThread;
  std::set<I32> pages;
  for (int round = 0; round < 2; ++round) {
    Peek file;
    Peek other("x");
    EXPECT_TRUE(file.first->len == 0 && file.first == file.last && (round > 0 || file.first->addr == -1));
    file.AppendBytes(Pattern(2500).data(), 2500);
    EXPECT_EQ(Bytes(file), Pattern(2500));
    pages.insert(other.first->addr);
    for (const BlkDesc* p = file.first; p != nullptr; p = p->next) pages.insert(p->addr);
  }
  EXPECT_EQ(pages, (std::set<I32>{0, 1024, 2048, 3072}));
  // What an emptied file gave back comes first, whatever lies in the pool.
  Peek file;
  for (int round = 0; round < 9; ++round) {
    file.Append("x");
    pages.insert(file.first->addr);
    file.Delete(0, 1);
    const VFile empty;
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
      DO(EXPECT_FALSE(f.FindBack(at, "", false, false))), DO(EXPECT_EQ(f.ReplaceGlobal("\1", "x", false, false), 0)),
      DO(EXPECT_FALSE(f.AfterCRLF(2))), DO(EXPECT_FALSE(f.BeforeCRLF(0))), DO(EXPECT_FALSE(f.BetweenCRLF(0))),
      DO(EXPECT_EQ(f.LineStart(5), 0)), DO(f.LineSize(-1, at, at, at)), DO(EXPECT_EQ(f.LineEnd(-1, true), 0)),
      DO(EXPECT_EQ(f.LineIndent(-1), 0)), DO(EXPECT_FALSE(f == f)), DO(EXPECT_FALSE(f <= "")), DO(EXPECT_FALSE(f == "")),
      DO(EXPECT_FALSE(f < f)), DO(EXPECT_FALSE(VFile() == f)), DO(EXPECT_FALSE(VFile() < f))};
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

}  // namespace
