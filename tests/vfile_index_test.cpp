// The index over a chain, as a file of thousands of blocks uses it.

#include <gtest/gtest.h>

#include "support/Chains.h"
#include "support/Heap.h"
#include "vfile/PositionIndex.h"

using support::Bytes, support::Chain, support::Count, support::I32, support::Lengths, support::Size;

namespace {

struct Indexed : Chain {
  using Chain::Chain;
  using VFile::index;
};

TEST(PositionIndex, IsDoneWithoutWhereTheHeapIsExhausted) {
  // Of which no two fit one.
  Lengths lens;
  for (int i = 0; i < 3000; ++i) lens.push_back(513 + i * 37 % 512);
  for (int failing = 1, failed = true; failed; ++failing) {
    Indexed file(lens);
    const std::string content = Bytes(file);
    {
      const support::FailingHeap heap(failing);
      file.SetPos(file.Length() / 2);
      failed = support::FailingHeap::HasFailed();
    }
    EXPECT_EQ(file.index == nullptr, failed) << failing;
    EXPECT_EQ(file.res, resDone);
    char byte = 0;
    file.ReadChar(byte);
    EXPECT_EQ(byte, content[content.size() / 2]);
    file.SetPos(1);
    file.SetPos(file.Length() / 2);
    ASSERT_NE(file.index, nullptr);
    EXPECT_EQ(file.index->BrokenRule(file.first, file.cur.ptr), nullptr);
  }
}

}  // namespace
