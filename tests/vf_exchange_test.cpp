#include <deque>
#include <gtest/gtest.h>
#include <list>
#include <ranges>
#include <thread>

#include "support/Chains.h"
#include "support/Disk.h"
#include "support/Halts.h"
#include "support/Heap.h"
#include "vf/Movable.h"
#include "vf/Text.h"
#include "vfile/PositionIndex.h"
#include "vfile/ThreadValues.h"

using support::Bytes, support::Chain, support::I32, support::Lengths, support::Pattern, support::Peek, support::Size;

namespace {

/// Notes its hooks where the other file's go as well, and has all that belongs to a file open.
struct Hooked : Peek {
  using Peek::Peek, VFile::operator=;
  using VFile::blockCount, VFile::changes, VFile::dirtyFrom, VFile::held, VFile::index;

  /// A file of many blocks that has made a far move and has a newer scratch buffer, with a mark at its place.
  static constexpr int kBlocks = 300;
  void Fill(char mark) {
    for (int i = 0; i < kBlocks; ++i) AppendFromFile(support::Pipe(std::string(Size(600 + i), mark)).Handle(), 600 + i);
    SetPos(1);
    SetPos(length / 2);
    ReplaceBuf(pos, 1, "!", 1);
  }

  I32 PreChange(I32 at, I32 del, I32 ins) const override {
    Note('?', at, del, ins);
    return answer;
  }
  void PostChange(I32 at, I32 del, I32 ins) override {
    Note('!', at, del, ins);
    VFile::PostChange(at, del, ins);
  }
  void Note(char hook, I32 at, I32 del, I32 ins) const {
    if (log == nullptr) return;
    *log += name + (hook + std::to_string(at)) + "," + std::to_string(del) + "," + std::to_string(ins) + " ";
  }
  /// Whether the index and the scratch buffer still are those of the chain.
  void ExpectSound() {
    EXPECT_HALT("", CheckInvariants());
    EXPECT_TRUE(index == nullptr || index->BrokenRule(first, cur.ptr) == nullptr);
    const std::string content = Bytes(*this);
    for (const I32 at : {length / 3, length / 2, 0, length}) {
      SetPos(at);
      ReplaceBuf(at, 0, "xy", 2);
      Delete(at, 2);
    }
    EXPECT_EQ(Bytes(*this), content);
  }

  std::string name;
  std::string* log = nullptr;
  I32 answer = resDone;
};

TEST(Exchange, SwapsContentsAndNothingElse) {
  for (const bool bothBig : {false, true}) {
    std::string log;
    Hooked left;
    Hooked right;
    left.Fill('a');
    if (bothBig) right.Fill('b');
    if (!bothBig) right = "small";
    left.SetFlags(vfMarkModified | vfInsert);
    left.type = 3;
    left.radix = 16;
    right.eof = true;
    const std::string lefts = Bytes(left);
    const std::string rights = Bytes(right);
    const std::string counts[] = {std::to_string(lefts.size()), std::to_string(rights.size())};
    const auto changes = std::pair(left.changes, right.changes);
    left.name = "l";
    right.name = "r";
    left.log = right.log = &log;
    left.Exchange(right);
    left.log = right.log = nullptr;
    const auto hook = [&](const char* which, int out) { return which + counts[out] + "," + counts[1 - out] + " "; };
    EXPECT_EQ(log, hook("l?0,", 0) + hook("r?0,", 1) + hook("l!0,", 0) + hook("r!0,", 1));
    EXPECT_EQ(Bytes(left), rights);
    EXPECT_EQ(Bytes(right), lefts);
    EXPECT_TRUE(left.Eof() && right.Eof() && !left.eof && !right.eof);
    EXPECT_EQ(std::tuple(left.GetFlags(), left.Type(), left.radix, left.res),
              std::tuple(vfMarkModified | vfInsert | vfModified, 3, 16, I32{resDone}));
    EXPECT_EQ(std::tuple(right.GetFlags(), right.Type(), right.radix), std::tuple(0, 0, 10));
    EXPECT_TRUE(left.changes != changes.first && right.changes != changes.second);
    EXPECT_TRUE(right.index != nullptr && (left.index != nullptr) == bothBig);
    left.ExpectSound();
    right.ExpectSound();
  }
}

TEST(Exchange, IsRefusedByEither) {
  // clang-format off
  const std::tuple<std::function<void(Hooked&)>, I32> rows[] = {
      {DO(f.flags |= vfLocked), resContextError}, {DO(f.SetFlags(vfReadOnly)), resReadOnly}, {DO(f.res = resNotFound), resNotFound},
      {DO(f.answer = resNotSupported), resNotSupported}};
  // clang-format on
  for (const auto& [refuse, res] : rows) {
    for (const bool byLeft : {true, false}) {
      std::string log;
      Hooked left;
      Hooked right;
      left = "left";
      right = "right";
      left.SetPos(2);
      right.SetPos(3);
      refuse(byLeft ? left : right);
      left.log = right.log = &log;
      left.Exchange(right);
      EXPECT_EQ(std::tuple(left.res, right.res), std::tuple(res, res));
      EXPECT_EQ(Bytes(left) + Bytes(right), "leftright");
      EXPECT_EQ(std::pair(left.pos, right.pos), std::pair(2, 3));
      EXPECT_EQ(log, res != resNotSupported ? "" : byLeft ? "?0,4,5 " : "?0,4,5 ?0,5,4 ");
    }
  }
  VFile left("left");
  VFile right("right");
  left.res = resNotFound;
  right.res = resTooLong;
  swap(left, right);
  EXPECT_EQ(std::pair(left.res, right.res), std::pair(I32{resNotFound}, I32{resTooLong})) << "each keeps its own";
  std::thread([&] {
    VFile other;
    EXPECT_ASSERTION("VFile", other.Exchange(left));
    EXPECT_ASSERTION("VFile", left.Exchange(other));
  }).join();
  EXPECT_TRUE(left == "left");
}

TEST(Exchange, OfItselfOfEmptyOnesAndByItsNames) {
  Hooked file;
  file = "self";
  file.SetPos(1);
  file.res = resNotFound;
  file.Exchange(file);
  EXPECT_EQ(std::tuple(Bytes(file), file.pos, file.res), std::tuple("self", 1, I32{resNotFound}));
  std::string log;
  Hooked left;
  Hooked right;
  left.log = right.log = &log;
  left.Exchange(right);
  EXPECT_EQ(log, "") << "a change of nothing by nothing";
  VFile a("a");
  VFile b("b");
  using std::swap;
  swap(a, b);
  EXPECT_TRUE(a == "b" && b == "a");
  std::ranges::swap(a, b);
  EXPECT_TRUE(a == "a" && b == "b");
  TCharVFile text = vf::TextFrom(TSTR("a\u00E9"));
  TCharVFile other;
  swap(text, other);
  EXPECT_EQ(text.ToString() + TSTR("|") + other.ToString(), TSTR("|a\u00E9"));
  std::ranges::swap(text, other);
  EXPECT_EQ(text.ToString() + TSTR("|") + other.ToString(), TSTR("a\u00E9|"));
}

// With a cache of no page a page that is read or written comes from the swap file or goes there, which takes four.
TEST(Exchange, ReadsNoContent) {
  Hooked left;
  Hooked right;
  left.Fill('a');
  right.Fill('b');
  const std::string lefts = Bytes(left);
  left.Reset();
  right.Reset();
  VFile::SetMaxCacheSize(0);
  VFile::ReleaseCache();
  {
    const support::FailingDisk disk(5);
    EXPECT_HALT("", left.Exchange(right); const VFile moved(std::move(left)));
    EXPECT_FALSE(support::FailingDisk::HasFailed());
  }
  VFile::SetMaxCacheSize(70);
  EXPECT_EQ(Bytes(right), lefts);
}

TEST(Moves, TakeAllAndLeaveAFileAsANewOne) {
  Hooked source;
  source.Fill('a');
  source.SetFlags(vfInsert);
  source.flags |= vfLocked | vfHasEol;
  source.type = 3;
  source.radix = 16;
  source.eof = true;
  source.res = resNotFound;
  const std::string content = Bytes(source);
  const auto all = [](const Hooked& f) {
    return std::tuple(f.pos, f.length, f.flags, f.type, f.first, f.last, f.cur.ptr, f.cur.base, f.cur.ix, f.buf,
                      f.bufValid, f.res, f.eof, f.radix, f.blockCount, f.index, f.held, f.dirtyFrom);
  };
  const auto before = all(source);
  const I32 changes = static_cast<I32>(source.changes);
  Hooked target(std::move(source));
  EXPECT_EQ(all(target), before);
  EXPECT_EQ(Bytes(target), content);
  EXPECT_NE(static_cast<I32>(source.changes), changes);
  EXPECT_EQ(std::tuple(source.pos, source.length, source.flags, source.type, source.res, source.eof, source.radix),
            std::tuple(0, 0, 0, 3, I32{resDone}, false, 10));
  source = "again";
  EXPECT_EQ(Bytes(source), "again");
  target.flags = 0;
  target.SetPos(0);
  target.ExpectSound();
  TCharVFile text = vf::TextFrom(TSTR("abc"));
  TCharVFile movedText(std::move(text));
  EXPECT_EQ(movedText.ToString() + text.ToString(), TSTR("abc"));
}

TEST(Moves, LetContainersGrow) {
  std::vector<vf::Movable<VFile>> files;
  std::vector<vf::Movable<TCharVFile>> texts;
  for (int i = 0; i < 40; ++i) {
    files.emplace_back(Pattern(1030, i).c_str());
    files.back().SetFlags(i);
    files.back().res = i;
    files.back().eof = i % 2 == 0;
    texts.emplace_back(vf::TextFrom(TString(2000, static_cast<TChar>(i))));
  }
  for (int i = 0; i < 40; ++i) {
    const auto& file = files[Size(i)];
    EXPECT_TRUE(file == Pattern(1030, i).c_str());
    EXPECT_EQ(std::tuple(file.GetFlags() & 0x1FF, file.res, file.eof, file.GetPos()),
              std::tuple(i, i, i % 2 == 0, file.Length()));
    EXPECT_EQ(texts[Size(i)].ToString(), TString(2000, static_cast<TChar>(i)));
  }
  files[3] = "assigned";
  EXPECT_EQ(files[3].res, 3) << "as that of the file, a failure that stands refuses it";
  std::list<VFile> list;
  std::deque<VFile> deque;
  for (int i = 0; i < 5; ++i) {
    list.push_back(vf::FileFrom(Pattern(2000, i)));
    deque.push_front(vf::FileFrom(Pattern(2000, i)));
  }
  EXPECT_TRUE(vf::ToString(list.back()) == Pattern(2000, 4) && vf::ToString(deque.back()) == Pattern(2000));
}

static_assert(!std::is_copy_constructible_v<vf::Movable<VFile>> && std::is_move_constructible_v<vf::Movable<VFile>>);
static_assert(std::is_assignable_v<vf::Movable<VFile>&, const VFile&>);
static_assert(!std::is_assignable_v<vf::Movable<VFile>&, vf::Movable<VFile>>);

TEST(Moves, HaltWithTheSourceAsItWas) {
  Hooked source;
  source = "source";
  std::thread([&] {
    EXPECT_ASSERTION("VFile", const VFile target(std::move(source)));
    VFile keeping;
    EXPECT_ASSERTION("VFile", const VFile target(std::move(source)));
    EXPECT_EQ(vfile::GetOpenFileCount(), 1);
  }).join();
  EXPECT_EQ(Bytes(source), "source");
  bool failed = true;
  for (int failing = 1; failed; ++failing) {
    std::string halt;
    {
      const support::FailingHeap heap(failing);
      // Whatever the pool still has serves a few.
      std::list<VFile> targets;
      halt = support::HaltOf([&] {
        for (int i = 0; i < 300; ++i) targets.emplace_back();
        const VFile target(std::move(source));
      });
      failed = support::FailingHeap::HasFailed();
    }
    EXPECT_EQ(!halt.empty(), failed);
    EXPECT_EQ(Bytes(source), failed ? "source" : "");
  }
}

}  // namespace
