// The index over a chain, as a file of thousands of blocks uses it.

#include <gtest/gtest.h>

#include "support/Chains.h"
#include "support/Heap.h"
#include "vfile/PositionIndex.h"

using support::Bytes, support::Chain, support::Count, support::I32, support::Lengths, support::Size;

namespace {

struct Indexed : Chain {
  using Chain::Chain;
  using VFile::blockCount, VFile::index;

  /// The rule of the index that does not hold, or nothing.
  std::string Rule() const {
    const char* rule = index == nullptr ? nullptr : index->BrokenRule(first, cur.ptr);
    return rule == nullptr ? "" : rule;
  }
};

/// Blocks of which no two fit one.
Lengths ManyBlocks(int count) {
  Lengths lens;
  for (int i = 0; i < count; ++i) lens.push_back(513 + i * 37 % 512);
  return lens;
}

TEST(PositionIndex, ComesWithTheFirstFarMoveOfALongChain) {
  Indexed file(ManyBlocks(400));
  const std::string content = Bytes(file);
  unsigned char byte = 0;
  for (file.Reset(); !file.Eof();) file.ReadByte(byte);
  file.SetPos(20000);
  file.Insert("x");
  EXPECT_EQ(file.index, nullptr) << "short ways and ends";
  file.SetPos(file.Length() / 2);
  ASSERT_NE(file.index, nullptr);
  for (I32 at = 0; at < file.Length(); at += 333) {
    file.SetPos(at);
    file.SetPos(file.Length() - at);
    file.ReadByte(byte);
  }
  EXPECT_EQ(file.Rule(), "");
  file.Delete(5000, MaxLen);
  EXPECT_EQ(file.index, nullptr) << "not worth its room";
  EXPECT_EQ(Bytes(file), content.substr(0, 5000));
}

TEST(PositionIndex, IsDoneWithoutWhereTheHeapIsExhausted) {
  for (int failing = 1, failed = true; failed; ++failing) {
    Indexed file(ManyBlocks(3000));
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
    EXPECT_NE(file.index, nullptr);
    EXPECT_EQ(file.Rule(), "");
  }
}

}  // namespace
