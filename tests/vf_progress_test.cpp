#include <chrono>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <thread>

#include "support/Files.h"
#include "support/Halts.h"
#include "support/Pipe.h"
#include "support/Texts.h"
#include "vf/Progress.h"
#include "vf/Text.h"

using support::I32, support::Peek, support::Size;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int64_t kMiB = 1 << 20;
constexpr I32 kLength = 5 * kMiB + 300;

/// Files of a good many bytes, each "x" but for the last but one.
struct Progresses : support::InDirectory {
  Progresses() : content(Size(kLength), 'x') {
    content[content.size() - 2] = 'y';
    Put("big", content);
    vf::Assign(same, content);
    vf::Assign(text, allUnits);
    vf::Assign(sameText, allUnits);
  }
  ~Progresses() noexcept override = default;

  /// All as it was before an operation.
  void Restore() {
    file.Reset();
    vf::Assign(file, content);
    file.SetPos(0);
    text.res = resDone;
    found = false;
  }
  bool Unchanged() const { return vf::ToString(file) == content; }

  std::string content;
  TString allUnits = TString(kLength / 2, 'x');
  Peek file;
  Peek same;
  TCharVFile text;
  TCharVFile sameText;
  I32 at = 0;
  bool found = false;

  struct Operation {
    const char* what;
    std::function<void()> run;
    std::function<bool()> asAfterEnd;  ///< Whether all is as the table of the operations says.
    bool ofText = false;
  };
  std::vector<Operation> Operations() {
    const auto empty = [this] { return file.length == 0; };
    const auto unchanged = [this] { return Unchanged(); };
    const auto underWay = [this] { return !found && Unchanged() && file.pos >= kMiB && file.pos <= kLength - kMiB; };
    const auto notFound = [this] { return !found && text.TCharLength() == kLength / 2; };
#define RUN(...) #__VA_ARGS__, [this] { __VA_ARGS__; }
    // clang-format off
    return {
        {RUN(file.Load(Name("big").c_str(), FILE_SHARE_READ)), empty},
        {RUN(HFile in; in.OpenSeqRead(Name("big").c_str()); file.ReplaceFile(9, SameLen, in, kLength)), unchanged},
        {RUN(file.Save(Name("out").c_str(), true)), underWay},
        {RUN(at = 0; found = file.Find(at, "yz", false, false)), underWay},
        {RUN(at = MaxLen; found = file.FindBack(at, "zx", false, false)), underWay},
        {RUN(at = 0; found = text.FindTChars(at, TSTR("yz"), false, false)), notFound, true},
        {RUN(at = MaxLen; found = text.FindBackTChars(at, TSTR("yz"), true, false)), notFound, true},
        {RUN(file.ReplaceGlobal("xy", "z", false, false)), underWay},
        {RUN(text.SaveText(Name("out"), true, TCharVFile::encUtf8, true)), notFound, true},
        {RUN(text.SaveText(Name("out"), true, TCharVFile::encUtf16BE, true)), notFound, true},
        {RUN(text.ReplaceGlobalTChars(TSTR("xy"), TSTR("z"), false, false)), notFound, true},
        {RUN(file.Insert(same, 0, MaxLen)), unchanged}, {RUN(file.AppendBytes(content.data(), kLength)), unchanged},
        {RUN(found = same == file), notFound},
        {RUN(found = file == content.c_str()), notFound},
        {RUN(found = file == content), notFound},
        {RUN(found = vf::Compare(text, allUnits) == 0), notFound, true},
        {RUN(found = vf::Compare(sameText, text) == 0), notFound, true}};
    // clang-format on
  }
};

// None comes too early, each is further than the last, and none comes without one who asks.
TEST_F(Progresses, TellTheBytesOfEachOperation) {
  for (const Operation& operation : Operations()) {
    SCOPED_TRACE(operation.what);
    Restore();
    std::int64_t told = 0;
    int calls = 0;
    auto before = Clock::now();
    const auto procedure = [&](std::int64_t done, std::int64_t total) {
      EXPECT_EQ(total, kLength);
      EXPECT_TRUE(done - told >= kMiB || (done > told && Clock::now() - before >= std::chrono::milliseconds(20)))
          << done;
      told = done;
      before = Clock::now();
      return ++calls > 0;
    };
    {
      const vf::Progress progress(file, procedure);
      const vf::Progress ofText(text, procedure);
      operation.run();
      EXPECT_FALSE(progress.IsCancelled() || ofText.IsCancelled());
    }
    EXPECT_GE(calls, 4);
    EXPECT_TRUE(told <= kLength && told > kLength - kMiB - 2 * BlkSize) << told;
    Restore();
    operation.run();
    EXPECT_EQ(std::tuple(told <= kLength, file.res, text.res), std::tuple(true, I32{resDone}, I32{resDone}));
  }
}

TEST_F(Progresses, EndEachOperation) {
  for (const Operation& operation : Operations()) {
    for (const bool throwing : {false, true}) {
      SCOPED_TRACE(operation.what);
      Restore();
      int left = 2;
      const auto procedure = [&](std::int64_t, std::int64_t) {
        if (--left == 0 && throwing) throw support::Halted{"thrown"};
        return left > 0;
      };
      const vf::Progress progress(file, procedure);
      const vf::Progress ofText(text, procedure);
      EXPECT_EQ(support::HaltOf(operation.run), throwing ? "thrown" : "");
      const I32 res = operation.ofText ? text.res : file.res;
      EXPECT_EQ(std::pair(left, res), std::pair(0, I32{resNotDone}));
      EXPECT_TRUE((operation.ofText ? ofText : progress).IsCancelled());
      EXPECT_TRUE(operation.asAfterEnd());
      file.CheckInvariants();
      left = 1000;
      Restore();
      EXPECT_TRUE(Unchanged() && left < 1000 && !progress.IsCancelled()) << "the next one is told again";
    }
  }
}

TEST_F(Progresses, OfLoadingATextGoTwiceThroughTheFile) {
  Put("text", "\xEF\xBB\xBF" + content);
  const std::int64_t total = 2 * (kLength + std::int64_t{3});
  std::int64_t told = 0;
  std::int64_t end = 0;
  const vf::Progress progress(text, [&](std::int64_t done, std::int64_t of) {
    EXPECT_EQ(of, total);
    EXPECT_GT(done, told);
    told = done;
    return done < end;
  });
  // Where it ends, and the units of the text then: none, the raw bytes, the text.
  for (const auto& [from, units] : {std::pair(kMiB, 0), {total / 2 + kMiB, kLength / 2 + 1}, {total + 1, kLength}}) {
    text = TString(3000, 'x');
    told = 0;
    end = from;
    text.LoadText(Name("text"), FILE_SHARE_READ);
    EXPECT_EQ(std::pair(text.TCharLength(), text.res), std::pair(units, I32{from > total ? resDone : resNotDone}));
    EXPECT_EQ(progress.IsCancelled(), from <= total);
  }
  EXPECT_GT(told, total - kMiB - 2 * BlkSize);
}

TEST_F(Progresses, OfReplacingKeepWhatWasReplaced) {
  vf::Assign(file, content);
  std::int64_t length = kLength;
  int left = 3;
  const vf::Progress progress(file, [&](std::int64_t done, std::int64_t total) {
    EXPECT_EQ(total, length);
    EXPECT_LE(done, total);
    return --left > 0;
  });
  const std::string old(1000, 'x');
  const std::string longer(2000, 'z');
  const I32 replaced = file.ReplaceGlobal(old.c_str(), longer.c_str(), false, false);
  length += 1000 * replaced;
  EXPECT_EQ(std::tuple(file.res, left, file.Length()), std::tuple(I32{resNotDone}, 0, I32(length)));
  EXPECT_EQ(Size(replaced), std::ranges::count(support::Bytes(file), 'z') / longer.size());
}

TEST(Progress, OfAPipeHasNoTotal) {
  const auto [reader, writer] = support::OpenChannel();
  VFile file;
  std::vector<std::int64_t> told;
  const vf::Progress progress(file, [&](std::int64_t done, std::int64_t total) {
    told.insert(told.end(), {done, total});
    return true;
  });
  std::thread later([to = writer] {
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
    std::uint32_t done = 0;
    host::WriteFile(to, "x", 1, &done);
  });
  file.ReadFromFile(reader, 1);
  later.join();
  host::CloseHandle(writer);
  host::CloseHandle(reader);
  EXPECT_EQ(told, (std::vector<std::int64_t>{1, -1}));
}

TEST_F(Progresses, GrowWithTheFile) {
  std::int64_t most = 0;
  const vf::Progress progress(file, [&](std::int64_t done, std::int64_t total) {
    EXPECT_LE(done, total);
    if (most == 0) std::ofstream(Path("big"), std::ios::app | std::ios::binary) << content;
    most = done;
    return true;
  });
  file.Load(Name("big").c_str(), FILE_SHARE_READ | FILE_SHARE_WRITE);
  EXPECT_GT(most, kLength);
}

TEST_F(Progresses, AreOneAtATimeAndStayWithTheirFile) {
  std::string log;
  const auto note = [&](char which) {
    return [&log, which](std::int64_t, std::int64_t) {
      if (log.empty() || log.back() != which) log += which;
      return true;
    };
  };
  {
    const vf::Progress outer(file, note('o'));
    vf::Assign(file, content);
    {
      const vf::Progress inner(file, note('i'));
      vf::Assign(file, content);
    }
    swap(file, same);
    const Peek moved(std::move(file));
    vf::Assign(same, content);
    vf::Assign(file, content);
  }
  vf::Assign(file, content);
  EXPECT_EQ(log, "oio");
  auto first = std::make_unique<vf::Progress>(file, note('1'));
  auto second = std::make_unique<vf::Progress>(file, note('2'));
  first.reset();
  vf::Assign(file, content);
  second.reset();
  vf::Assign(file, content);
  EXPECT_EQ(log, "oio2");
}

}  // namespace
