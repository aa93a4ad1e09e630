// What is left of files where the virtual memory refuses a page in the middle of an operation, or has no room.

#include <gtest/gtest.h>

#include "support/Disk.h"
#include "support/Files.h"
#include "support/Halts.h"
#include "support/Texts.h"

using support::Bytes, support::Chain, support::FailingDisk, support::I32, support::Lengths, support::Pattern,
    support::Peek, support::Pipe, support::Size;

namespace {

const std::string kNew(3000, '\xEE');

/// The member of a thread's space that only its own class sees.
struct Space : VMem {
  using VMem::maxAddress;
};
constexpr I32 kPages = 0x1FFFFF;

std::int32_t& EndOfSpace(const Peek& file) { return file.vm->*&Space::maxAddress; }

struct Operation {
  const char* name;
  std::function<void(Peek&)> run;
  I32 pos;  // where the file stands before it
};

/// Changes of a file of the blocks 1024, 700, 1024, 1024, 300, and moves in it.
std::vector<Operation> Operations(const Peek& other) {
  const auto fromPipe = [](VFile& file, I32 at, I32 del, I32 count) {
    file.ReplaceFile(at, del, Pipe(kNew).Handle(), count);
  };
  // clang-format off
  return {
      {"in a block", DO(f.ReplaceBuf(1500, 3, "x", 1)), 0}, {"a block is split", DO(f.ReplaceBuf(500, 0, "x", 1)), 2000},
      {"blocks come in", DO(f.ReplaceBuf(500, 200, kNew.data(), 2500)), 0}, {"blocks go out", DO(f.Delete(500, 2000)), 4000},
      {"a block is cut in its page", DO(f.Delete(1024, 900)), 0},
      {"a block is cut into the new one", DO(fromPipe(f, 1024, 1200, 400)), 0},
      {"the block behind is joined", DO(fromPipe(f, 3772, 0, 100)), 0},
      {"the file is its own source", DO(f.ReplaceTxt(100, 0, f, 50, 3000)), 4000},
      {"from another file", DO(f.ReplaceTxt(2000, 900, other, 10, 1900)), 0},
      {"in a block from another file", DO(f.ReplaceTxt(3800, 9, other, 1000, 30)), 0},
      {"all goes", DO(f.Delete(0, MaxLen)), 3000}, {"all is replaced", DO(f = other), 3000},
      {"a far move", DO(f.SetPos(4000)), 1500}, {"the buffer is given up", DO(f.Flush()), 1500}};
  // clang-format on
}

/// A thread's files before an operation: pages in the pool and in the free list, two files, all of it in the swap file but what the
/// bound of the cache holds.
struct Files {
  Files(int cacheSize, const Operation& operation) {
    VFile::SetMaxCacheSize(static_cast<std::int16_t>(cacheSize));
    Peek emptied("x");
    const Chain pooled({1024, 1024, 1024});
    emptied.Delete(0, 1);
    other.AppendBytes(Pattern(2000, 7).data(), 2000);
    file.SetPos(1);
    file.ReplaceBuf(1, 1, "!", 1);
    file.SetPos(operation.pos);
    if (operation.pos > 0) file.ReplaceBuf(operation.pos, 1, "?", 1);
  }

  Chain file{Lengths{1024, 700, 1024, 1024, 300}};
  Peek other;
};

/// Whether the file is sound and has one of the contents.
void ExpectEither(const Peek& file, const std::string& old, const std::string& changed) {
  const std::string bytes = Bytes(file);
  EXPECT_TRUE(bytes == old || bytes == changed)
      << bytes.size() << " bytes of " << old.size() << " or " << changed.size();
  EXPECT_EQ(file.length, support::Count(bytes.size()));
  EXPECT_EQ(file.cur.base + file.cur.ix, file.pos);
  EXPECT_HALT("", file.CheckInvariants());
}

/// Runs the operation with a disk that refuses from its transfer `k` on, with halts that throw or return; gives whether it halted.
/// What a full disk keeps from being written can be read with a larger cache.
bool RunOnFailingDisk(const Operation& operation, int k, FailingDisk::Kind kind, bool throwing,
                      const std::string& changed, int cacheSize) {
  Files files(cacheSize, operation);
  const std::string old = Bytes(files.file);
  if (cacheSize == 0) VFile::ReleaseCache();
  const FailingDisk disk(k, kind);
  bool halted = false;
  if (throwing) {
    halted = !support::HaltOf([&] { operation.run(files.file); }).empty();
  } else {
    const support::NoteHalts noting;
    operation.run(files.file);
    halted = !noting.Noted().empty();
  }
  EXPECT_EQ(halted, FailingDisk::HasFailed());
  VFile::SetMaxCacheSize(70);
  if (kind == FailingDisk::kReads) FailingDisk::Repair();
  ExpectEither(files.file, halted ? old : changed, changed);
  EXPECT_TRUE(Bytes(files.other) == Pattern(2000, 7));
  const bool refused = halted && !throwing;
  EXPECT_TRUE(files.file.res == (refused ? resHeapOverflow : resDone) || Bytes(files.file) == changed);
  // Both files go on.
  files.file.SetPos(0);
  files.file.Delete(0, MaxLen);
  EXPECT_EQ(Bytes(files.file), "");
  files.file.Append("again");
  files.other.Append(files.file, 0, MaxLen);
  EXPECT_EQ(Bytes(files.file) + std::to_string(files.file.res), "again0");
  EXPECT_TRUE(Bytes(files.other) == Pattern(2000, 7) + "again");
  return halted;
}

using Halts = support::InDirectory;

TEST_F(Halts, LeaveTheOldOrTheNewContent) {
  Peek source;
  source.AppendBytes(Pattern(2000, 9).data(), 2000);
  for (const auto& operation : Operations(source)) {
    std::string changed;
    {
      Files model(70, operation);
      operation.run(model.file);
      changed = Bytes(model.file);
    }
    for (const int cacheSize : {0, 3, 6}) {
      for (const FailingDisk::Kind kind : {FailingDisk::kReads, FailingDisk::kWrites}) {
        for (const bool throwing : {true, false}) {
          for (int k = 1, halted = true; halted; ++k) {
            SCOPED_TRACE(testing::Message() << operation.name << ", transfer " << k << " of kind " << kind << ", cache "
                                            << cacheSize << (throwing ? ", throwing" : ", returning"));
            halted = RunOnFailingDisk(operation, k, kind, throwing, changed, cacheSize);
            if (HasFailure()) return;
          }
        }
      }
    }
  }
}

// Behind a halt that returned there is nothing more to be had, so that every loop comes to an end.
TEST_F(Halts, ReadsEndWhereAPageIsRefused) {
  VFile::SetMaxCacheSize(0);
  char bytes[4000];
  I32 at = 0;
  const Chain same({1024, 1024, 1024});
  HFile sink;
  ASSERT_TRUE(sink.Create(Name("sink").c_str(), false));
#define READ(result) [&](Peek& f) { return result; }
  // clang-format off
  const std::function<bool(Peek&)> reads[] = {
      READ(f.ReadBytes(bytes, 3072) == 1024), READ(f.ReadTxt(bytes, 4000, 1024, 2048) == 0),
      READ(f.ReadLine(bytes, 4000) == 9), READ(f.Find(at, Pattern(9, 3000).c_str(), false, false)),
      READ(f.LineEnd(1500, false) >= 0), READ(f == same || f < same), DO(f.WriteToFile(sink, 3072); return f.res == resDone)};
  // clang-format on
  for (std::size_t row = 0; row < std::size(reads); ++row) {
    SCOPED_TRACE(row);
    Chain file({1024, 1024, 1024});
    file.Reset();
    VFile::ReleaseCache();
    {
      const FailingDisk disk(row == 0 ? 2 : 1, FailingDisk::kReads);
      const support::NoteHalts noting;
      EXPECT_EQ(reads[row](file), row == 0 || row == 1 || row == 4);
      EXPECT_FALSE(noting.Noted().empty());
    }
    EXPECT_TRUE(file.res == resHeapOverflow || row == 5) << file.res;
    EXPECT_TRUE(Bytes(file) == Pattern(3072));
  }
  VFile::SetMaxCacheSize(70);
}

// ---- A halt whose procedure repairs the disk and returns ----

/// Runs an operation, which gives its result and its outcome, on a disk that fails from each transfer on until a halt repairs it. That
/// a step was refused is told in the result, or the outcome is right.
void ExpectRightOrTold(const std::function<std::pair<I32, std::string>()>& run) {
  const auto [done, right] = run();
  ASSERT_EQ(done, resDone);
  for (int k = 1, failed = true; failed; ++k) {
    VFile::SetMaxCacheSize(0);
    InstallHaltProc([](const TChar*) {
      FailingDisk::Repair();
      VFile::SetMaxCacheSize(70);
    });
    const FailingDisk disk(k);
    const auto [res, outcome] = run();
    failed = FailingDisk::HasFailed();
    DeinstallHaltProc();
    EXPECT_TRUE(res != resDone || outcome == right) << "transfer " << k << ": " << outcome << " instead of " << right;
  }
  VFile::SetMaxCacheSize(70);
}

/// A CR LF, words and lines that the borders of its blocks cut.
struct CutUp : Chain {
  CutUp()
      : Chain({1024, 1024, 900, 507}, std::string(1023, 'x') + "\r\nconcat cat" + std::string(1009, 'y') +
                                          " cats (cat)\n" + std::string(892, 'z') + "cat\n" + std::string(500, ' ') +
                                          "end") {}
};

TEST(RepairedHalts, AreToldByOperationsOfManySteps) {
  char bytes[9] = {};
  I32 at = 0;
  I32 size = 0;
  I32 eol = 0;
  // clang-format off
  const std::function<I32(CutUp&)> reads[] = {
      DO(f.SetPos(1023); return f.Read(bytes[0])), DO(f.SetPos(1021); return f.ReadLine(bytes, 9)),
      DO(return f.LineStart(1024)), DO(return f.LineStart(2500)), DO(return f.LineEnd(500, true)),
      DO(f.LineSize(1500, at, size, eol); EXPECT_TRUE(f.res == resDone || (at == 7 && size == 7 && eol == 7)); return 0),
      DO(return f.LineIndent(3200)), DO(at = 0; return f.Find(at, "cat", false, true)),
      DO(at = MaxLen; return f.FindBack(at, "cat", false, true))};
  // clang-format on
  for (const auto& read : reads) {
    SCOPED_TRACE(&read - reads);
    CutUp file;
    ExpectRightOrTold([&] {
      VFile::ReleaseCache();
      file.SetPos(0);
      at = size = eol = 7;
      const I32 got = read(file);
      const auto outcome = testing::PrintToString(std::tuple(got, file.pos, at, size, eol, bytes));
      return std::pair(file.res, outcome);
    });
  }
  ExpectRightOrTold([] {
    CutUp file;
    // What was refused before is no matter here.
    if (file.res == resDone) file.ReplaceGlobal("cat", "dog", false, true);
    FailingDisk::Repair();
    return std::pair(file.res, Bytes(file));
  });
}

using RepairedTexts = support::InDirectory;

TEST_F(RepairedTexts, AreLoadedAndSavedRightOrTold) {
  const TString name = Name("text");
  TString units;
  for (int i = 0; i < 3000; ++i) units += static_cast<TChar>(i % 60 == 59 ? 0x20AC : 'a' + i % 26);
  for (const TCharVFile::Encoding form : {TCharVFile::encUtf16, TCharVFile::encUtf16BE, TCharVFile::encUtf8}) {
    SCOPED_TRACE(form);
    TCharVFile original;
    original = units;
    const auto save = [&] {
      original.Reset();
      original.ReplaceTChar(1400, units[1400]);
      original.SaveText(name, true, form, true);
      return std::pair(original.res, Content("text"));
    };
    save();
    ExpectRightOrTold([&] {
      TCharVFile text;
      text.LoadText(name, FILE_SHARE_READ);
      const I32 res = text.res;
      FailingDisk::Repair();
      return std::pair(res, support::Bytes(text.ToString()));
    });
    ExpectRightOrTold(save);
  }
}

// ---- Room ----

/// An operation and the pages that it takes. On blocks of 1024 and 500 bytes, behind which two blocks lie in the pool.
struct RoomRow {
  std::function<void(Peek&)> run;
  I32 pages;
};

TEST(Room, IsLookedAtBeforeItIsUsed) {
  VFile::SetMaxCacheSize(70);
  const HANDLE file = support::OpenRegular(kNew);
  // clang-format off
  const RoomRow rows[] = {
      {DO(f.ReplaceBuf(500, 1, "x", 1)), 0}, {DO(f.Delete(0, MaxLen)), 0}, {DO(f.Delete(500, 1)), 0},
      {DO(f.Delete(500, 900)), 0}, {DO(f.ReplaceBuf(1524, 0, kNew.data(), 524)), 0},
      {DO(f.ReplaceBuf(1524, 0, kNew.data(), 525)), 1}, {DO(f.ReplaceBuf(500, 0, "x", 1)), 1},
      {DO(f.ReplaceBuf(500, 0, kNew.data(), 2048)), 2}, {DO(f.ReplaceBuf(500, 0, kNew.data(), 2049)), 3},
      {DO(f.ReplaceBuf(500, 524, kNew.data(), 1548)), 1}, {DO(f.ReplaceTxt(1024, 0, f, 0, MaxLen)), 1}, {DO(f = f), 1},
      {DO(f.SetPos(0); f.InsertFromFile(file, 2048)), 3}, {DO(f.SetPos(9); f.InsertFromFile(file, 8)), 1},
      {DO(f.SetPos(9); f.InsertFromFile(file, 18)), 2}, {DO(f.SetPos(9); f.InsertFromFile(file, MaxLen)), 4},
      {DO(f.AppendFromFile(Pipe(kNew).Handle(), MaxLen)), 3}, {DO(VFile copy(f); f.res = copy.res), 2}};
  // clang-format on
  for (std::size_t row = 0; row < std::size(rows); ++row) {
    const auto& [run, pages] = rows[row];
    for (const I32 left : {pages - 1, pages}) {
      SCOPED_TRACE(testing::Message() << "row " << row << " with " << left << " pages left");
      if (left < 0) continue;
      Chain sample({1024, 500});
      { const Chain pooled({1, 1}); }
      EndOfSpace(sample) = (kPages - std::max(left - 2, 0)) * BlkSize;
      const Chain* keepsTheRest = left < 2 ? new Chain(Lengths(Size(2 - left), 1)) : nullptr;
      const I32 end = EndOfSpace(sample);
      host::SetFilePointer(file, 0, host::FILE_BEGIN);
      sample.SetPos(3);
      run(sample);
      EXPECT_EQ(sample.res, left < pages ? resTooLong : resDone);
      if (left < pages) {
        EXPECT_EQ(support::Lens(sample), (Lengths{1024, 500}));
        EXPECT_TRUE(Bytes(sample) == Pattern(1524));
        EXPECT_EQ(host::SetFilePointer(file, 0, host::FILE_CURRENT), 0u);
        EXPECT_EQ(EndOfSpace(sample) - end, 0);
      }
      EXPECT_HALT("", sample.CheckInvariants());
      delete keepsTheRest;
    }
  }
  host::CloseHandle(file);
}

// What was read first took the pages, the one for the empty block as well.
TEST(Room, IsLookedAtAgainBehindASourceOfUnknownSize) {
  Peek file;
  EndOfSpace(file) = (kPages - 3) * BlkSize;
  file.AppendFromFile(Pipe(std::string(3072, 'x')).Handle(), MaxLen);
  EXPECT_EQ(file.res, resTooLong);
  EXPECT_EQ(Bytes(file), "");
  EXPECT_EQ(file.length, 0);
}

}  // namespace
