#include <deque>
#include <gtest/gtest.h>
#include <thread>

#include "support/Chains.h"
#include "support/Files.h"
#include "support/Halts.h"
#include "support/Heap.h"

using support::Bytes, support::Chain, support::I32, support::Lens, support::Lengths, support::Pattern, support::Pipe,
    support::Size;

namespace {

const std::string kNew(3000, '\xEE');

enum Source { kBuf, kTxt, kFile };

void Change(VFile& file, Source source, I32 at, I32 del, I32 ins) {
  if (source == kBuf) return file.ReplaceBuf(at, del, kNew.data(), ins);
  if (source == kTxt) return file.ReplaceTxt(at, del, VFile(kNew[0], ins), 0, ins);
  file.ReplaceFile(at, del, Pipe(kNew).Handle(), ins);
}

using ChangeRow = std::tuple<Lengths, I32, I32, I32, Lengths>;

// clang-format off
const ChangeRow kFromMemory[] = {
    // In a block; at a boundary in the one before, if it has room.
    {{}, 0, 0, 5, {5}}, {{1000}, 500, 100, 124, {1024}}, {{300}, 0, 300, 0, {0}}, {{300, 400}, 0, 300, 0, {400}},
    {{1024, 300}, 1024, 300, 0, {1024}}, {{1024, 300, 200}, 1024, 300, 0, {1024, 200}},
    {{100, 50}, 100, 0, 10, {110, 50}}, {{1024, 50}, 1024, 0, 10, {1024, 60}}, {{300, 300}, 300, 300, 0, {300}},
    // New bytes that do not fit: the current block is filled, the rest gets blocks of its own.
    {{}, 0, 0, 3000, {1024, 1024, 952}}, {{1024}, 1024, 0, 10, {1024, 10}}, {{1024}, 500, 0, 1, {501, 524}},
    {{1024, 500}, 500, 0, 1, {501, 1024}}, {{1024, 501}, 500, 0, 1, {501, 524, 501}},
    {{1024}, 1000, 0, 100, {1024, 100}}, {{1024}, 24, 0, 1500, {1024, 500, 1000}}, {{1023, 50}, 1023, 0, 2, {1024, 51}},
    {{600, 300}, 300, 0, 800, {1024, 676}}, {{1000}, 990, SameLen, 100, {1024, 66}},
    // Bytes out of several blocks: whole ones go, a part is cut from the next.
    {{300, 300, 300}, 100, 500, 0, {100, 300}}, {{300, 300, 300}, 100, 300, 0, {100, 200, 300}},
    {{1024, 1024}, 1000, 48, 10, {1010, 1000}}, {{300, 400, 500}, 0, 1200, 0, {0}}};
// Blocks of its own in any case, joined with the tail, a cut block and the block behind, up to 1024 bytes.
const ChangeRow kFromFile[] = {
    {{}, 0, 0, 5, {5}}, {{10}, 10, 0, 5, {10, 5}}, {{600}, 300, 0, 724, {300, 1024}},
    {{600}, 300, 0, 725, {300, 725, 300}}, {{600}, 300, 0, 2000, {300, 1024, 976, 300}},
    {{300, 200}, 0, MaxLen, 7, {7}}, {{100, 974}, 100, 0, 50, {100, 1024}}, {{100, 975}, 100, 0, 50, {100, 50, 975}},
    {{300, 1000}, 200, 200, 124, {200, 1024}}, {{300, 1001}, 200, 200, 124, {200, 124, 901}},
    {{300, 300, 700}, 200, 200, 50, {200, 950}}, {{300, 1024}, 0, 300, 100, {100, 1024}}};
// clang-format on

void TestChange(const ChangeRow& row, Source source) {
  const auto& [before, at, del, ins, after] = row;
  SCOPED_TRACE(testing::PrintToString(row) + " from " + std::to_string(source));
  Chain file(before);
  if (!before.empty()) file.ReplaceBuf(0, 1, "!", 1);
  std::string expected = Bytes(file);
  file.eof = true;
  Change(file, source, at, del, ins);
  expected.replace(Size(at), Size(del == SameLen ? ins : del), kNew, 0, Size(ins));
  EXPECT_EQ(Lens(file), after);
  EXPECT_TRUE(Bytes(file) == expected && (file.first->addr == -1) == expected.empty());
  EXPECT_TRUE(file.GetPos() == at + ins && file.res == resDone && !file.eof);
  EXPECT_HALT("", file.CheckInvariants());
  // The next change finds its place.
  file.ReplaceBuf(at + ins, 0, "?", 1);
  EXPECT_TRUE(Bytes(file) == expected.insert(Size(at + ins), "?"));
}

TEST(Change, JoinsAndSplitsBlocksWhereItMust) {
  for (const ChangeRow& row : kFromMemory) {
    TestChange(row, kBuf);
    TestChange(row, kTxt);
  }
  for (const ChangeRow& row : kFromFile) TestChange(row, kFile);
}

/// Notes the hooks: for a change its position, the bytes out and in, the length before and behind it.
struct Hooked : Chain {
  using Chain::Chain;

  I32 PreChange(I32 at, I32 del, I32 ins) const override {
    EXPECT_TRUE(pos == at && !eof);
    asked = {at, del, ins};
    Note("", at);
    Note("-", del);
    Note("+", ins);
    Note("@", length);
    return allowed-- > 0 ? resDone : resNetworkError;
  }
  void PostChange(I32 at, I32 del, I32 ins) override {
    EXPECT_EQ(asked, std::tuple(at, del, ins));
    Note(">", length);
    log += " ";
    Chain::PostChange(at, del, ins);
  }
  void PostChangeFlag(I32 flag, bool on) override { Note(FlagOn(flag) != on ? "wrong" : on ? "on" : "off", flag); }
  void Note(const char* sign, I32 number) const { log += sign + std::to_string(number); }
  Hooked& Scanning() {
    type = 1;
    flags = vfEolScan;
    return *this;
  }

  mutable std::string log;
  mutable std::tuple<I32, I32, I32> asked;
  mutable int allowed = 99;
};

struct Row {
  std::function<void(Hooked&)> change;
  I32 res, pos = 3;
  std::string log = "";
};

using Primitives = support::InDirectory;

// On "0123456789" in two blocks, from position 3.
TEST_F(Primitives, KeepTheirContract) {
  const HANDLE unreadable =
      host::CreateFileW(Name("file").c_str(), host::GENERIC_WRITE, 0, host::CREATE_NEW, host::FILE_ATTRIBUTE_NORMAL);
  HFile closed;
  HFile writeOnly(unreadable);
  HFile failed(support::OpenPipe(kNew));
  failed.res = resNetworkError;
  const VFile other("a\nbcd");
  // clang-format off
  const Row rows[] = {
      // A standing failure, before arguments, before locks.
      {DO(f.res = resTooManyFiles; f.SetFlags(2); f.Delete(-1, 0)), resTooManyFiles},
      {DO(f.Delete(-1, 1)), resCallError}, {DO(f.ReplaceBuf(0, 5, nullptr, 1)), resCallError},
      {DO(f.ReplaceTxt(0, 0, other, -1, 1)), resCallError}, {DO(f.Insert(closed, 0)), resCallError},
      {DO(f.InsertFromFile(INVALID_HANDLE_VALUE, 0)), resCallError},
      {DO(f.flags = vfLocked; f.ReplaceFile(0, -1, failed, 1)), resCallError},
      {DO(f.flags = vfLocked | vfReadOnly; f.Delete(0, 1)), resContextError},
      {DO(f.flags = vfLocked; f.SetFlags(1)), resContextError},
      {DO(f.flags = vfReadOnly; f.Insert(failed, 1)), resReadOnly},
      // The source of the host, before the length of the result.
      {DO(f.InsertFromFile(Pipe(kNew).Handle(), 3001)), resNotDone},
      {DO(f.InsertFromFile(unreadable, 1)), resNoPermission}, {DO(f.Insert(writeOnly, 1)), resNoPermission},
      {DO(f.Insert(failed, MaxLen)), resNetworkError},
      {DO(f.length = MaxLen; f.ReplaceBuf(5, 1, "xy", 2); f.length = 10), resTooLong},
      {DO(f.length = MaxLen; Change(f, kFile, 5, 0, 3000); f.length = 10), resTooLong},
      // A checking build halts behind this change, as the length is a lie.
      {DO(f.length = MaxLen; support::HaltOf([&f] { f.ReplaceBuf(3, 1, "x", 1); }); f.length = 10), resDone, 4,
       "3-1+1@2147483647>2147483647 "},
      // A veto, at the position of the change.
      {DO(f.allowed = 0; Change(f, kBuf, 5, 1, 3000)), resNetworkError, 5, "5-1+3000@10"},
      {DO(f.allowed = 0; Change(f, kFile, 99, 1, 3000)), resNetworkError, 10, "10-0+3000@10"},
      // The arguments are clamped, and a change of nothing by nothing only moves.
      {DO(f.ReplaceBuf(99, 5, "x", 1)), resDone, 11, "10-0+1@10>11 "},
      {DO(Change(f, kBuf, 8, SameLen, 4)), resDone, 12, "8-2+4@10>12 "}, {DO(f.Delete(7, 0)), resDone, 7},
      {DO(f.ReplaceTxt(1, SameLen, other, 77, 5)), resDone, 1},
      {DO(f.ReplaceTxt(1, SameLen, other, 3, 99)), resDone, 3, "1-2+2@10>10 "},
      {DO(Change(f, kFile, 1, SameLen, MaxLen)), resDone, 3001, "1-9+3000@10>3001 "},
      // A repeated char is a change for each 1024 bytes; the first takes out.
      {DO(f.ReplaceCh(2, 4, 'x', 2049)), resDone, 2051, "2-4+1024@10>1030 1026-0+1024@1030>2054 2050-0+1@2054>2055 "},
      {DO(f.allowed = 1; f.ReplaceCh(0, 0, 'x', 2000)), resNetworkError, 1024, "0-0+1024@10>1034 1024-0+976@1034"},
      // The rest moves to another file, if that takes it.
      {DO(VFile t("x"); t.SetFlags(vfReadOnly); f >> t; EXPECT_TRUE(t == "x")), resReadOnly},
      {DO(VFile t("old"); f >> t; EXPECT_TRUE(t == "3456789")), resDone, 10},
      // Flags, the lowest first.
      {DO(f.SetFlags(vfMarkModified); f.Append("x"); f.Append("y")), resDone, 12, "on3210-0+1@10>11 on811-0+1@11>12 "},
      {DO(f.SetFlags(0x121); f.SetFlags(3)), resDone, 3, "on1on32on256on2off32off256"},
      {DO(f.InclFlag(4); f.InclFlag(4); f.ExclFlag(8); f.SetFlag(12, false)), resDone, 3, "on4off4"},
      {DO(f.flags = vfHasEol | 0x1F; f.ToggleFlag(~0x60); f.SetFlags(0)), resDone, 3,
       "off1off2off4off8off16on128on256off128off256eol"},
      // Line ends are seen in buffers alone, before the veto.
      {DO(f.Scanning().Insert("a\n")), resDone, 5, "3-0+2@10>12 eol"},
      {DO(f.allowed = 0; f.Scanning().Insert('\r', 9)), resNetworkError, 3, "3-0+9@10eol"},
      {DO(f.Scanning().Insert(other, 0, 2)), resDone, 5, "3-0+2@10>12 "},
      {DO(f.Scanning().type = 0; f.Insert("\n")), resDone, 4, "3-0+1@10>11 "},
      {DO(f.Scanning().flags = 0; f.Insert("\n")), resDone, 4, "3-0+1@10>11 "},
      {DO(f.Scanning().InclFlag(vfNoEolScan); f.Insert("\n")), resDone, 4, "on1283-0+1@10>11 "}};
  // clang-format on
  for (const auto& [change, res, pos, log] : rows) {
    SCOPED_TRACE(log + " " + std::to_string(res));
    Hooked file({4, 6}, "0123456789");
    file.SetPos(3);
    file.eof = log.find('@') != std::string::npos;
    change(file);
    EXPECT_EQ(file.log + (file.FlagOn(vfHasEol) ? "eol" : ""), log);
    EXPECT_TRUE(file.GetPos() == pos && file.res == res) << file.GetPos() << " " << file.res;
    EXPECT_HALT("", file.CheckInvariants());
    if (res == resDone || log.find('>') != std::string::npos) continue;
    file.flags = 0;
    file.Append("x");
    EXPECT_TRUE(file.res == res && Bytes(file) == "0123456789" && Lens(file) == (Lengths{4, 6})) << Bytes(file);
  }
}

/// The halt with which the call ends where the heap fails from the allocation `k` on.
std::string WithFailing(int k, const std::function<void()>& call) {
  const support::FailingHeap failing(k);
  return support::HaltOf(call);
}

/// So many empty files that the next block needs the heap.
std::deque<VFile> FilesWithAllDescriptors() {
  std::deque<VFile> files;
  while (WithFailing(1, [] { const VFile file; }).empty()) files.emplace_back();
  return files;
}

// With the allocations that a change makes where each page has its place, and those before the position moves.
TEST(Heap, AFailureAnywhereLeavesTheFileAsItWas) {
  // clang-format off
  const std::tuple<std::function<void(VFile&)>, int, int> rows[] = {
      {DO(f.ReplaceBuf(500, 1, "x", 1)), 1, 0}, {DO(f.ReplaceBuf(500, 0, "x", 1)), 2, 0},
      {DO(Change(f, kBuf, 500, 0, 2500)), 2, 0}, {DO(f.ReplaceTxt(500, 0, f, 0, MaxLen)), 2, 0},
      {DO(Change(f, kFile, 500, 0, 2000)), 2, 1}};
  // clang-format on
  for (const auto& [change, failures, beforeMoving] : rows) {
    for (const bool cached : {false, true}) {
      VFile::SetMaxCacheSize(cached ? 70 : 0);
      int told = 0;
      for (int k = 1, failed = true; failed; ++k) {
        SCOPED_TRACE(testing::Message() << failures << ", allocation " << k << ", cached " << cached);
        Chain file({1024, 500});
        file.Flush();
        file.Reset();
        const std::deque<VFile> others = FilesWithAllDescriptors();
        const std::string halted = WithFailing(k, [&, run = change] { run(file); });
        failed = support::FailingHeap::HasFailed();
        // Pages are not read ahead where there is no room for it, and nobody is told.
        if (halted.empty() && file.res == resDone) continue;
        EXPECT_TRUE(failed);
        ++told;
        // Where there was no room for a page the file is only good for the destructor.
        if (cached && !halted.empty()) continue;
        EXPECT_EQ(halted + std::to_string(file.res), std::to_string(resHeapOverflow));
        EXPECT_TRUE(cached || file.GetPos() == (told <= beforeMoving ? 0 : 500));
        EXPECT_TRUE(Bytes(file) == Pattern(1524) && Lens(file) == (Lengths{1024, 500}));
      }
      EXPECT_TRUE(cached || told == failures) << told;
    }
  }
}

TEST(Heap, AThreadsFirstFileIsMadeWholeOrNotAtAll) {
  std::thread([] {
    for (int k = 1, failed = true; failed; ++k) {
      const std::string halted = WithFailing(k, [] { const VFile file("content"); });
      failed = support::FailingHeap::HasFailed();
      // The descriptor's page and the buffer are a matter of the change.
      EXPECT_EQ(halted.empty(), k > 4) << k << halted;
      EXPECT_EQ(VFile::GetCacheSize(), 0);
      EXPECT_TRUE(VFile("works") == "works");
    }
  }).join();
}

TEST(Heap, ReadsAndSearchesDoWithoutTheBuffer) {
  Chain file({1000, 30});
  file.Flush();
  file.Reset();
  const support::FailingHeap failing(1);
  std::string read;
  unsigned char byte;
  for (file.ReadByte(byte); !file.eof; file.ReadByte(byte)) read += static_cast<char>(byte);
  for (file.ReadPrevByte(byte); !file.eof; file.ReadPrevByte(byte)) read.insert(read.begin(), static_cast<char>(byte));
  I32 at = 0;
  EXPECT_TRUE(read == Pattern(1030) + Pattern(1030) && file.Find(at, Pattern(10, 995).c_str(), false, false));
  EXPECT_TRUE(at == 1005 && file.res == resDone && file.buf == nullptr);
}

}  // namespace
