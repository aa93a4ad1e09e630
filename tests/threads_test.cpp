#include "threads/Threads.h"

#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "host/Host.h"
#include "support/Files.h"
#include "support/Halts.h"
#include "threads/ThreadSlots.h"
#include "vfile/ThreadValues.h"
#include "vfile/VFile.h"

namespace {

using namespace threads;

const bool attachedBeforeStatics = VFile_IsThreadInitialized();

void OnThread(const std::function<void()>& steps) { std::thread(steps).join(); }

/// With the module freshly started and without the slots of the virtual files, which have theirs again at the end.
void WithFreshModule(const std::function<void()>& steps) {
  EXPECT_TRUE(host::ModuleEntry(0) == 1 && TlsModuleStart() && !TlsModuleStart());
  steps();
  TlsModuleStop();
  EXPECT_EQ(host::ModuleEntry(1), 1);
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
  EXPECT_TRUE(host::TlsGetValue(index) == nullptr && !host::TlsFree(index));
  EXPECT_EQ(host::TlsAlloc(), index);
  EXPECT_EQ(host::TlsGetValue(index), nullptr);
  EXPECT_TRUE(host::TlsFree(index));
}

TEST(ThreadValues, OrderOfProcessStepsIsAsserted) {
  EXPECT_TRUE(attachedBeforeStatics);
  WithFreshModule([] {
    for (const auto call : {VFile::TLS_InitializeThread, VFile::TLS_UninitializeThread, VFile::TLS_UninitializeProcess})
      EXPECT_ASSERTION("VFile", call());
    EXPECT_TRUE(TlsModuleStop() && !TlsTableCreate() && LastOf(1) == kNoSlot && host::ModuleEntry(1) == 1);
    EXPECT_ASSERTION("VFile", VFile::TLS_InitializeProcess());
    EXPECT_EQ(host::ModuleEntry(0), 1);
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

TEST(ThreadValues, ComeAndGoByTheMomentsOfTheLoader) {
  OnThread([] {
    EXPECT_TRUE(VFile_UninitializeThread() && host::ModuleEntry(9) == 1 && !VFile_IsThreadInitialized());
    EXPECT_TRUE(host::ModuleEntry(2) == 1 && VFile_IsThreadInitialized());
    EXPECT_TRUE(host::ModuleEntry(3) == 1 && !VFile_IsThreadInitialized());
  });
}

using ThreadFiles = support::InDirectory;

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

}  // namespace
