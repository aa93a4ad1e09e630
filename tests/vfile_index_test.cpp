// The index over a chain, as a file of thousands of blocks uses it.

#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

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

TEST(PositionIndex, HoldsUnderAllChanges) {
  const char* given = std::getenv("VFILE_SEED");
  const auto seed = given != nullptr ? static_cast<unsigned>(std::atoll(given)) : std::random_device()();
  SCOPED_TRACE(testing::Message() << "VFILE_SEED=" << seed);
  std::mt19937 random(seed);
  const auto below = [&](I32 bound) { return Count(random() % Size(bound)); };
  VFile::SetMaxCacheSize(4000);
  Indexed file(ManyBlocks(3000));
  std::string model = Bytes(file);
  const std::string put(200000, 'p');
  int indexed = 0;
  for (int step = 0; step < 1500; ++step) {
    const I32 at = below(file.Length() + 1);
    // Mostly small ones; at times a run of blocks comes in or goes out, of a few leaves or of many.
    const I32 most = step % 100 == 99 ? 200000 : step % 10 == 9 ? 20000 : 1200;
    const I32 del = below(2) == 0 ? 0 : std::min(below(most), file.Length() - at);
    const I32 ins = below(3) == 0 ? 0 : below(most);
    if (below(4) == 0) {
      const I32 from = below(file.Length());
      const std::string source = model.substr(Size(from), Size(ins));
      file.ReplaceTxt(at, del, file, from, ins);
      model.replace(Size(at), Size(del), source);
    } else {
      file.ReplaceBuf(at, del, put.data(), ins);
      model.replace(Size(at), Size(del), put, 0, Size(ins));
    }
    for (int more = below(4); more > 0; --more) {
      file.InsertByte('i');
      model.insert(Size(file.GetPos() - 1), 1, 'i');
    }
    ASSERT_EQ(file.Rule(), "") << step;
    char read[50];
    const I32 place = below(file.Length());
    file.SetPos(place);
    const I32 got = file.ReadBytes(read, 50);
    ASSERT_EQ(std::string(read, Size(got)), model.substr(Size(place), 50)) << step;
    indexed += file.index != nullptr ? 1 : 0;
  }
  EXPECT_TRUE(Bytes(file) == model);
  EXPECT_GT(indexed, 1000);
  VFile::SetMaxCacheSize(70);
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
