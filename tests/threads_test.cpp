#include "threads/Threads.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <functional>
#include <thread>

#include "host/Host.h"
#include "support/Files.h"
#include "support/Halts.h"
#include "support/Leaks.h"
#include "support/Process.h"
#include "threads/ThreadSlots.h"
#include "vfile/ThreadValues.h"
#include "vfile/VFile.h"

namespace {

using namespace threads;
using support::NoteHalts;

const bool attachedBeforeStatics = VFile_IsThreadInitialized();

void OnThread(const std::function<void()>& steps) { std::thread(steps).join(); }

/// In a child, with the module freshly started and without the slots of the virtual files.
void WithFreshModule(const std::function<void()>& steps) {
  support::InChild([&] {
    EXPECT_TRUE(DllMain(nullptr, 0, nullptr) == 1 && TlsModuleStart() && !TlsModuleStart());
    steps();
  });
}

std::int32_t LastOf(int count) {
  while (--count > 0) TlsSlotAlloc();
  return TlsSlotAlloc();
}

TEST(ThreadSlots, NumbersGoUpAndGapsAreUsedWhenAllWereHandedOut) {
  WithFreshModule([] {
    EXPECT_EQ(LastOf(5), 4);
    EXPECT_TRUE(TlsSlotFree(0) && TlsSlotFree(1) && TlsSlotFree(2) && TlsSlotFree(3) && LastOf(1) == 5);
    EXPECT_TRUE(TlsSlotFree(5) && TlsSlotFree(4) && LastOf(3) == 2);
    EXPECT_TRUE(TlsSlotFree(1) && TlsSlotFree(2) && LastOf(1) == 2 && LastOf(61) == 63 && LastOf(1) == 1);
    EXPECT_TRUE(TlsSlotFree(7) && TlsSlotFree(3) && !TlsSlotFree(64) && !TlsSlotFree(-1));
    EXPECT_TRUE(LastOf(1) == 3 && LastOf(1) == 7 && LastOf(1) == kNoSlot);
  });
}

TEST(ThreadSlots, AnIndexOfTheHostIsNullWhenItIsGivenAgain) {
  const std::uint32_t index = host::TlsAlloc();
  int value = 0;
  EXPECT_TRUE(host::TlsSetValue(index, &value) && host::TlsGetValue(index) == &value && host::TlsFree(index));
  EXPECT_TRUE(host::TlsGetValue(index) == nullptr && !host::TlsSetValue(index, &value) && !host::TlsFree(index));
  EXPECT_EQ(host::TlsAlloc(), index);
  EXPECT_EQ(host::TlsGetValue(index), nullptr);
  EXPECT_TRUE(host::TlsFree(index));
}

TEST(ThreadValues, OrderOfProcessStepsIsAsserted) {
  EXPECT_TRUE(attachedBeforeStatics);
  WithFreshModule([] {
    for (const auto call : {VFile::TLS_InitializeThread, VFile::TLS_UninitializeThread, VFile::TLS_UninitializeProcess})
      EXPECT_ASSERTION("VFile", call());
    EXPECT_TRUE(TlsModuleStop() && !TlsTableCreate() && LastOf(1) == kNoSlot && DllMain(nullptr, 1, nullptr) == 1);
    EXPECT_ASSERTION("VFile", VFile::TLS_InitializeProcess());
  });
}

TEST(ThreadValues, LiveFromInitializeToUninitialize) {
  OnThread([] {
    EXPECT_TRUE(VFile_InitializeThread() && VFile_IsThreadInitialized() && VFile::GetTempDir() == nullptr);
    delete new VFile("a");
    EXPECT_TRUE(vfile::GetOpenFileCount() == 0 && !vfile::GetThreadVMem() && !vfile::GetThreadBlkPool());
    EXPECT_TRUE(VFile_UninitializeThread() && !VFile_IsThreadInitialized() && VFile_UninitializeThread());
    EXPECT_TRUE(VFile::GetMaxCacheSize() == 0 && VFile_InitializeThread() && VFile::GetMaxCacheSize() == 70);
  });
}

using ThreadFiles = support::InDirectory;

TEST_F(ThreadFiles, ValuesComeWithTheFirstUseAndGoAfterTheThreadsOwnObjects) {
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

TEST_F(ThreadFiles, OfManyThreadsKeepApart) {
  std::vector<std::thread> all;
  for (const char ch : {'a', 'b', 'c', 'd'}) {
    all.emplace_back([this, ch] {
      VFile::SetMaxCacheSize(2);
      VFile::SetTempDir(support::Units(Directory()).c_str());
      VFile letters(ch, 20000);
      letters.Append(VFile('.', 20000), 0, MaxLen);
      std::string content(40000, '?');
      letters.Reset();
      EXPECT_EQ(letters.ReadBytes(content.data(), 40000), 40000);
      EXPECT_EQ(content, std::string(20000, ch) + std::string(20000, '.'));
    });
  }
  for (std::thread& each : all) each.join();
  EXPECT_TRUE(std::filesystem::is_empty(Directory()));
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
