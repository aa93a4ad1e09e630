// The library under a program that does not link it: loaded and unloaded by name.

#include <dlfcn.h>
#include <future>
#include <gtest/gtest.h>
#include <malloc.h>
#include <optional>
#include <thread>

#include "support/Leaks.h"

namespace {

using BoolCall = bool (*)();

class Library {
 public:
  Library() : handle_(dlopen(VFILE_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {}
  ~Library() {
    if (handle_ != nullptr) dlclose(handle_);
  }
  template <typename Call>
  Call Get(const char* name) const {
    return reinterpret_cast<Call>(dlsym(handle_, name));
  }
  bool IsThreadInitialized() const { return Get<BoolCall>("_Z25VFile_IsThreadInitializedv")(); }
  bool InitializeThread() const { return Get<BoolCall>("_Z22VFile_InitializeThreadv")(); }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  void* handle_;
};

/// Bytes of the heap that are in use.
std::size_t HeapInUse() { return mallinfo2().uordblks; }

bool IsLoaded() { return dlopen(VFILE_LIBRARY, RTLD_NOW | RTLD_NOLOAD) != nullptr; }

TEST(Loading, AttachesTheLoadingThreadAloneAndComesAndGoes) {
  for (int round = 0; round < 3; ++round) {
    Library library;
    ASSERT_TRUE(library) << dlerror();
    EXPECT_TRUE(library.IsThreadInitialized());
    std::thread([&] {
      EXPECT_FALSE(library.IsThreadInitialized());
      EXPECT_TRUE(library.InitializeThread() && library.IsThreadInitialized());
    }).join();
  }
  EXPECT_FALSE(IsLoaded());
}

TEST(Loading, AThreadThatEndsBeforeTheLibraryLeavesNothing) {
  const auto round = [] {
    std::optional<Library> library;
    std::thread([&] { library.emplace(); }).join();
    EXPECT_TRUE(*library && !library->IsThreadInitialized());
  };
  // The system's own part grows in the first rounds.
  constexpr std::size_t kRounds = 100;
  for (std::size_t i = 0; i < kRounds; ++i) round();
  const std::size_t before = HeapInUse();
  for (std::size_t i = 0; i < kRounds; ++i) round();
  EXPECT_LT(HeapInUse(), before + kRounds * 64);
}

TEST(Loading, AThreadMayOutliveTheLibrary) {
  std::promise<void> initialized;
  std::promise<void> unloaded;
  std::thread thread;
  {
    Library library;
    ASSERT_TRUE(library);
    thread = std::thread([&] {
      const support::LeftOnPurpose table;
      library.InitializeThread();
      initialized.set_value();
      unloaded.get_future().wait();
    });
    initialized.get_future().wait();
  }
  EXPECT_FALSE(IsLoaded());
  unloaded.set_value();
  thread.join();
}

}  // namespace
