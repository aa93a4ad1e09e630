// The library under a program that does not link it: loaded and unloaded by name.

#include <future>
#include <gtest/gtest.h>
#include <optional>
#include <thread>
#include <windows.h>

namespace {

class Library {
 public:
  Library() : handle_(LoadLibraryA(VFILE_LIBRARY)) {}
  ~Library() {
    if (handle_ != nullptr) FreeLibrary(handle_);
  }
  bool IsThreadInitialized() const { return Call("_Z25VFile_IsThreadInitializedv"); }
  bool InitializeThread() const { return Call("_Z22VFile_InitializeThreadv"); }
  HMODULE Handle() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  bool Call(const char* name) const {
    return reinterpret_cast<bool (*)()>(reinterpret_cast<void*>(GetProcAddress(handle_, name)))();
  }

  HMODULE handle_;
};

bool IsLoaded() { return GetModuleHandleA(VFILE_LIBRARY) != nullptr; }

TEST(Loading, AttachesTheLoadingThreadAndThoseThatStartBehind) {
  for (int round = 0; round < 3; ++round) {
    Library library;
    ASSERT_TRUE(library) << GetLastError();
    EXPECT_TRUE(library.IsThreadInitialized());
    std::thread([&] { EXPECT_TRUE(library.IsThreadInitialized()); }).join();
    const Library again;
    EXPECT_EQ(again.Handle(), library.Handle());
  }
  EXPECT_FALSE(IsLoaded());
}

TEST(Loading, AThreadOlderThanTheLibraryHasValuesWhenItAsks) {
  std::promise<void> started;
  std::promise<const Library*> loaded;
  std::promise<bool> asked;
  std::thread older([&] {
    started.set_value();
    const Library& library = *loaded.get_future().get();
    const bool before = library.IsThreadInitialized();
    asked.set_value(!before && library.InitializeThread() && library.IsThreadInitialized());
  });
  started.get_future().wait();
  {
    const Library library;
    loaded.set_value(&library);
    EXPECT_TRUE(asked.get_future().get());
    older.join();
  }
  EXPECT_FALSE(IsLoaded());
}

TEST(Loading, AThreadThatEndsBeforeTheLibraryLeavesNothing) {
  for (int round = 0; round < 100; ++round) {
    std::optional<Library> library;
    std::thread([&] { library.emplace(); }).join();
    ASSERT_TRUE(*library);
    EXPECT_FALSE(library->IsThreadInitialized());
  }
  EXPECT_FALSE(IsLoaded());
}

TEST(Loading, AThreadMayOutliveTheLibrary) {
  std::promise<void> initialized;
  std::promise<void> unloaded;
  std::thread thread;
  {
    const Library library;
    ASSERT_TRUE(library);
    thread = std::thread([&] {
      EXPECT_TRUE(library.IsThreadInitialized());
      initialized.set_value();
      unloaded.get_future().wait();
    });
    initialized.get_future().wait();
  }
  EXPECT_FALSE(IsLoaded());
  unloaded.set_value();
  thread.join();
}

TEST(LoadingDeathTest, AProcessEndsWithLiveThreadsAndTheLibraryLoaded) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        static const Library library;
        std::promise<void> initialized;
        std::thread([&] {
          if (library.InitializeThread()) initialized.set_value();
          Sleep(INFINITE);
        }).detach();
        initialized.get_future().wait();
        std::exit(0);
      },
      testing::ExitedWithCode(0), testing::Eq(""));
}

}  // namespace
