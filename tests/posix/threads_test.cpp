#include "threads/Threads.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <functional>
#include <thread>

#include "host/Host.h"
#include "support/Halts.h"
#include "support/Leaks.h"
#include "support/posix/Process.h"
#include "vfile/VFile.h"

namespace {

using support::NoteHalts;

void OnThread(const std::function<void()>& steps) { std::thread(steps).join(); }

TEST(ThreadSlots, AnIndexGivenBackTakesNoValue) {
  const std::uint32_t index = host::TlsAlloc();
  int value = 0;
  EXPECT_TRUE(host::TlsFree(index) && !host::TlsSetValue(index, &value));
}

TEST(ThreadValues, ComeWithTheFirstUseAndGoAfterTheThreadsOwnObjects) {
  static pthread_key_t key;
  ASSERT_EQ(pthread_key_create(&key, [](void* file) { delete static_cast<VFile*>(file); }), 0);
  const NoteHalts noting;
  OnThread([] { EXPECT_FALSE(VFile_IsThreadInitialized()); });
  OnThread([] { EXPECT_TRUE(DllMain(nullptr, 9, nullptr) == 1 && !VFile_IsThreadInitialized()); });
  OnThread([] { EXPECT_TRUE(DllMain(nullptr, 2, nullptr) == 1 && VFile_IsThreadInitialized()); });
  OnThread([] {
    EXPECT_TRUE(VFile_InitializeThread() && DllMain(nullptr, 3, nullptr) == 1 && !VFile_IsThreadInitialized());
  });
  OnThread([] { EXPECT_TRUE(VFile::GetMaxCacheSize() == 70 && VFile_IsThreadInitialized()); });
  OnThread([] {
    thread_local VFile own("own");
    EXPECT_TRUE(own.Length() == 3 && VFile_IsThreadInitialized() && VFile::GetMaxCacheSize() == 70);
    VFile::SetTempDir(TSTR("/tmp"));  // a copy to be freed, which the leak checker looks for
    pthread_setspecific(key, new VFile("of a key"));
  });
  EXPECT_TRUE(NoteHalts::Noted().empty() && pthread_key_delete(key) == 0);
}

TEST(ForeignThreadDeathTest, HaltsAndSoDoesAThreadThatEndsWithALiveFile) {
  const auto aborted = testing::KilledBySignal(SIGABRT);
  VFile file("abc");
  EXPECT_EXIT(std::exit(0), testing::ExitedWithCode(0), testing::Eq(""));          // a forked child leaves all as it is
  EXPECT_EXIT(file.SetPos(0), aborted, "VFile, line [0-9]+:\nAssertion failure");  // on the child's only thread
  EXPECT_EXIT(OnThread([&] { file.~VFile(); }), aborted, "VFile, line");
  EXPECT_EXIT(OnThread([] { new VFile; }), aborted, "VFile, line [0-9]+:\nAssertion failure");
}

TEST(ThreadOfAForkedChild, ThatCameFromItsParentEndsAsItStands) {
  OnThread([] {
    static const VFile* file = nullptr;
    file = new VFile("of the parent");
    const pid_t child = fork();
    if (child == 0) {
      std::atexit([] { _exit(0); });  // at the end of the last thread
      return;
    }
    int status = -1;
    EXPECT_TRUE(waitpid(child, &status, 0) == child && status == 0);
    delete file;
  });
}

/// Ends the process while a thread works with files, and lets it go on with that behind the last step of the exit.
void ExitAmongOthers() {
  static std::atomic<int> rounds = 0;
  std::thread([] {
    pthread_attr_t detached;
    pthread_attr_init(&detached);
    pthread_attr_setdetachstate(&detached, PTHREAD_CREATE_DETACHED);
    const auto countRound = [](void*) -> void* {
      const support::LeftOnPurpose table;
      VFile("of a new thread");
      ++rounds;
      return nullptr;
    };
    for (;;) {
      const VFile own("own");
      const int seen = rounds;
      pthread_t id;
      pthread_create(&id, &detached, countRound, nullptr);
      while (rounds == seen) std::this_thread::yield();
    }
  }).detach();
  while (rounds == 0) std::this_thread::yield();
  // Streams are flushed last of all.
  const auto waitForOthers = [](void*, const char*, std::size_t size) {
    for (const int seen = rounds; rounds < seen + 3;) std::this_thread::yield();
    return static_cast<ssize_t>(size);
  };
  std::FILE* last = fopencookie(nullptr, "w", {nullptr, waitForOthers, nullptr, nullptr});
  std::fputc('x', last);
  std::exit(0);
}

TEST(ExitDeathTest, IsSilentWhileOtherThreadsWorkWithFiles) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";  // a forked child takes no steps at its exit
  EXPECT_EXIT(ExitAmongOthers(), testing::ExitedWithCode(0), testing::Eq(""));
}

}  // namespace
