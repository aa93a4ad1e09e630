#include <algorithm>
#include <gtest/gtest.h>
#include <list>
#include <thread>

#include "support/Chains.h"
#include "support/Halts.h"
#include "support/Heap.h"
#include "vf/Movable.h"
#include "vf/Text.h"
#include "vfile/PositionIndex.h"
#include "vfile/ThreadValues.h"

using support::Bytes, support::I32, support::Pattern, support::Peek, support::Size;

namespace {

/// Notes its hooks where the other file's go as well, can refuse, and has all that belongs to a file open.
struct Hooked : Peek {
  using Peek::Peek, VFile::operator=;

  I32 PreChange(I32 at, I32 del, I32 ins) const override {
    Note("?", at, del, ins);
    return answer;
  }
  void PostChange(I32 at, I32 del, I32 ins) override {
    Note("!", at, del, ins);
    VFile::PostChange(at, del, ins);
  }
  void Note(const char* hook, I32 at, I32 del, I32 ins) const {
    if (log == nullptr) return;
    *log += name + hook;
    for (const I32 number : {at, del, ins}) *log += std::to_string(number) + " ";
  }
  /// So many blocks of "x", with a newer scratch buffer and an index behind a far move.
  void Fill(int blocks, char x) {
    for (int i = 0; i < blocks; ++i) AppendFromFile(support::Pipe(std::string(Size(600 + i), x)).Handle(), 600 + i);
    SetPos(1);
    SetPos(length / 2);
    ReplaceBuf(pos, 1, "!", 1);
    EXPECT_EQ(index != nullptr, blocks >= 192);
  }
  auto Members() const {
    return std::tuple(pos, length, flags, type, first, last, cur.ptr, cur.base, cur.ix, buf, bufValid, res, eof, radix,
                      blockCount, index, held, dirtyFrom);
  }
  /// Whether index and scratch buffer are those of the chain, also where it changes.
  void ExpectSound(const std::string& content) {
    EXPECT_EQ(Bytes(*this), content);
    for (const I32 at : {length, length / 3, length / 2, 0}) {
      EXPECT_HALT("", CheckInvariants());
      EXPECT_TRUE(index == nullptr || index->BrokenRule(first, cur.ptr) == nullptr);
      SetPos(at);
      ReplaceBuf(at, 0, "xy", 2);
      Delete(at, 2);
    }
    EXPECT_EQ(Bytes(*this), content);
  }

  using VFile::blockCount, VFile::changes, VFile::dirtyFrom, VFile::held, VFile::index;
  std::string name;
  std::string* log = nullptr;
  I32 answer = resDone;
};

TEST(Exchange, SwapsContentsAndNothingElse) {
  for (const auto& [lefts, rights] : {std::pair(300, 290), {300, 1}, {3, 0}}) {
    std::string log;
    Hooked left;
    Hooked right;
    if (lefts > 0) left.Fill(lefts, 'a');
    if (rights > 0) right.Fill(rights, 'b');
    left.SetFlags(vfMarkModified | vfInsert);
    left.type = 3;
    left.radix = 16;
    right.eof = true;
    const auto changes = std::pair(left.changes, right.changes);
    const auto contents = std::pair(Bytes(left), Bytes(right));
    const std::string out = std::to_string(left.length) + " ";
    const std::string in = std::to_string(right.length) + " ";
    left.name = "l";
    right.name = "r";
    left.log = right.log = &log;
    left.Exchange(right);
    left.log = right.log = nullptr;
    EXPECT_EQ(log, "l?0 " + out + in + "r?0 " + in + out + "l!0 " + out + in + "r!0 " + in + out);
    EXPECT_TRUE(left.Eof() && right.Eof() && !left.eof && !right.eof);
    EXPECT_EQ(std::tuple(left.GetFlags(), left.type, left.radix, left.res),
              std::tuple(vfMarkModified | vfInsert | vfModified, 3, 16, I32{resDone}));
    EXPECT_EQ(std::tuple(right.GetFlags(), right.type, right.radix), std::tuple(0, 0, 10));
    EXPECT_TRUE(left.changes != changes.first && right.changes != changes.second);
    left.ExpectSound(contents.second);
    right.ExpectSound(contents.first);
  }
}

TEST(Exchange, IsRefusedByEither) {
  // clang-format off
  const std::tuple<std::function<void(Hooked&)>, I32, const char*> rows[] = {
      {DO(f.flags |= vfLocked), resContextError, ""}, {DO(f.SetFlags(vfReadOnly)), resReadOnly, ""},
      {DO(f.res = resNotFound; f.flags |= vfLocked), resNotFound, ""}, {DO(f.answer = resNotSupported), resNotSupported, "?0 4 5 "}};
  // clang-format on
  for (const auto& [refuse, res, asked] : rows) {
    for (const bool byLeft : {true, false}) {
      std::string log;
      Hooked left("left");
      Hooked right("right");
      left.SetPos(2);
      right.SetPos(3);
      refuse(byLeft ? left : right);
      left.log = &log;
      left.Exchange(right);
      EXPECT_EQ(std::tuple(left.res, right.res, left.pos, right.pos), std::tuple(res, res, 2, 3));
      EXPECT_EQ(Bytes(left) + Bytes(right) + log, std::string("leftright") + asked);
    }
  }
}

TEST(Exchange, IsDoneByItsNamesAndByTheOwnThreadAlone) {
  Hooked left("left");
  Hooked right("right");
  VFile& file = left;
  swap(left, right);
  EXPECT_EQ(Bytes(left) + Bytes(right), "rightleft");
  std::ranges::swap(file, static_cast<VFile&>(right));
  left.Exchange(left);
  left.res = resNotFound;
  right.res = resTooLong;
  left.Exchange(right);
  EXPECT_EQ(Bytes(left) + Bytes(right), "leftright");
  EXPECT_EQ(std::pair(left.res, right.res), std::pair(I32{resNotFound}, I32{resTooLong})) << "each keeps its own";
  TCharVFile text = vf::TextFrom(TSTR("a"));
  TCharVFile other;
  swap(text, other);
  EXPECT_EQ(text.ToString() + TSTR("|") + other.ToString(), TSTR("|a"));
  std::thread([&] {
    VFile foreign;
    EXPECT_ASSERTION("VFile", foreign.Exchange(left));
    EXPECT_ASSERTION("VFile", left.Exchange(foreign));
  }).join();
  std::string log;
  Hooked empty;
  Hooked another;
  empty.log = another.log = &log;
  empty.Exchange(another);
  EXPECT_EQ(log, "") << "a change of nothing by nothing";
}

// Of which one holds a block in its scratch buffer, or held one before it moved on.
TEST(Moves, TakeAllAndLeaveAFileAsANewOne) {
  for (const bool movedOn : {false, true}) {
    Hooked source;
    source.Fill(300, 'a');
    if (movedOn) source.SetPos(1);
    source.flags = vfInsert | vfLocked | vfHasEol;
    source.type = 3;
    source.radix = 16;
    source.eof = true;
    source.res = resNotFound;
    const std::string content = Bytes(source);
    const auto members = source.Members();
    const std::uint32_t changes = source.changes;
    Hooked target(std::move(source));
    EXPECT_EQ(target.Members(), members);
    EXPECT_EQ(target.held != nullptr, movedOn);
    EXPECT_NE(source.changes, changes);
    EXPECT_EQ(std::tuple(source.pos, source.flags, source.type, source.res, source.eof, source.radix, source.held),
              std::tuple(0, 0, 3, I32{resDone}, false, 10, nullptr));
    source = "again";
    source.ExpectSound("again");
    target.flags = 0;
    target.SetPos(0);
    target.ExpectSound(content);
  }
}

TEST(Moves, KeepFilesInContainers) {
  std::vector<vf::Movable<VFile>> files;
  for (int i = 0; i < 20; ++i) {
    files.emplace_back(Pattern(1030, i).c_str());
    files.back().SetFlags(i);
    files.back().res = i;
  }
  for (int i = 0; i < 20; ++i) {
    EXPECT_TRUE(files[Size(i)] == Pattern(1030, i).c_str());
    EXPECT_EQ(std::pair(files[Size(i)].GetFlags(), files[Size(i)].res), std::pair(i, i));
  }
  files[0] = "assigned";
  EXPECT_TRUE(files[0] == "assigned");
  // Whole ones, read-only or not, and whatever stands in their results.
  files.erase(files.begin());
  std::sort(files.begin(), files.end(), [](const VFile& left, const VFile& right) { return left.res > right.res; });
  for (int i = 0; i < 19; ++i) {
    EXPECT_TRUE(files[Size(i)] == Pattern(1030, 19 - i).c_str());
    EXPECT_EQ(std::pair(files[Size(i)].GetFlags(), files[Size(i)].res), std::pair(19 - i, 19 - i));
  }
  vf::Movable<TCharVFile> text(vf::TextFrom(TSTR("text")));
  EXPECT_EQ(vf::Movable<TCharVFile>(std::move(text)).ToString(), TSTR("text"));
}

static_assert(!std::is_copy_constructible_v<vf::Movable<VFile>> && std::is_move_constructible_v<vf::Movable<VFile>>);

TEST(Moves, HaltWithTheSourceAsItWas) {
  Hooked source("source");
  std::thread([&] {
    const VFile keeping;
    EXPECT_ASSERTION("VFile", const VFile target(std::move(source)));
    EXPECT_EQ(vfile::GetOpenFileCount(), 1);
  }).join();
  EXPECT_EQ(Bytes(source), "source");
  std::list<VFile> others;
  const support::FailingHeap heap(1);
  // Until the thread's pool has nothing left.
  while (support::HaltOf([&] { others.emplace_back(); }).empty()) continue;
  EXPECT_NE(support::HaltOf([&] { const VFile moved(std::move(source)); }), "");
  EXPECT_EQ(Bytes(source), "source");
}

}  // namespace
