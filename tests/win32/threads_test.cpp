#include "threads/Threads.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <windows.h>

#include "support/Halts.h"
#include "vfile/VFile.h"

namespace {

using support::NoteHalts;

void OnThread(const std::function<void()>& steps) { std::thread(steps).join(); }

TEST(ThreadValues, ComeWithTheThread) {
  const NoteHalts noting;
  OnThread([] { EXPECT_TRUE(VFile_IsThreadInitialized() && VFile::GetMaxCacheSize() == 70); });
  OnThread([] {
    EXPECT_TRUE(VFile_UninitializeThread() && VFile::GetMaxCacheSize() == 0);
    const VFile file("abc");
    EXPECT_TRUE(file.Length() == 3 && VFile_IsThreadInitialized());
  });
  EXPECT_TRUE(NoteHalts::Noted().empty());
}

/// Closes a file at the end of the thread that touched it. Its own memory is not looked at then: g++ of mingw-w64 has given that
/// back already.
struct AtThreadEnd {
  static void Touch() {
    thread_local AtThreadEnd instance;
    file = new VFile("own");
    static_cast<void>(&instance);
  }
  ~AtThreadEnd() {
    hadTable = VFile_IsThreadInitialized();
    delete file;
  }
  static inline VFile* file = nullptr;
  static inline bool hadTable = false;
};

// Whoever starts the thread: the thread library has its own hooks in one case alone.
TEST(ThreadValues, GoAfterTheThreadsOwnObjects) {
  const NoteHalts noting;
  for (const bool bare : {false, true}) {
    AtThreadEnd::hadTable = false;
    if (bare) {
      const HANDLE thread = CreateThread(
          nullptr, 0,
          [](void*) -> DWORD {
            AtThreadEnd::Touch();
            return 0;
          },
          nullptr, 0, nullptr);
      WaitForSingleObject(thread, INFINITE);
      CloseHandle(thread);
    } else {
      OnThread(AtThreadEnd::Touch);
    }
    EXPECT_TRUE(AtThreadEnd::hadTable) << bare;
  }
  EXPECT_EQ(NoteHalts::Noted(), std::vector<std::string>());
}

/// Ends the process with the message on standard error, where the default shows a box.
void TellAndAbort(const TChar* message) {
  std::fprintf(stderr, "%s\n", support::Narrow(message).c_str());
  std::abort();
}

TEST(ForeignThreadDeathTest, HaltsAndSoDoesAThreadThatEndsWithALiveFile) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto aborted = testing::ExitedWithCode(3);
  InstallHaltProc(TellAndAbort);
  VFile file("abc");
  EXPECT_EXIT(OnThread([&] { file.SetPos(0); }), aborted, "VFile, line \\d+:\\s+Assertion failure");
  EXPECT_EXIT(OnThread([&] { file.~VFile(); }), aborted, "VFile, line");
  EXPECT_EXIT(OnThread([] { new VFile; }), aborted, "VFile, line \\d+:\\s+Assertion failure");
  DeinstallHaltProc();
}

/// Ends the process while a thread works with files and others come and go.
void ExitAmongOthers() {
  static std::atomic<int> rounds = 0;
  InstallHaltProc(TellAndAbort);
  std::thread([] {
    for (;;) {
      const VFile own("own");
      std::thread([] {
        VFile("of a new thread");
        ++rounds;
      }).join();
    }
  }).detach();
  while (rounds < 3) std::this_thread::yield();
  std::exit(0);
}

TEST(ExitDeathTest, IsSilentWhileOtherThreadsWorkWithFiles) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(ExitAmongOthers(), testing::ExitedWithCode(0), testing::Eq(""));
}

/// A file of the program's own, which outlives `main`.
struct Late {
  explicit Late(const char* text) : file(text) {}
  ~Late() { std::fprintf(stderr, "%s of %d", VFile_IsThreadInitialized() ? "sound" : "lost", file.Length()); }
  VFile file;
};

TEST(ExitDeathTest, ComesBehindStaticObjects) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        InstallHaltProc(TellAndAbort);
        static const Late late("late");
        std::exit(0);
      },
      testing::ExitedWithCode(0), testing::Eq("sound of 4"));
}

}  // namespace
