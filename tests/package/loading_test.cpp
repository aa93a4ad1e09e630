// The library under a program that does not link it: loaded and unloaded by name.

#include <dlfcn.h>
#include <future>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

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

bool IsLoaded() { return dlopen(VFILE_LIBRARY, RTLD_NOW | RTLD_NOLOAD) != nullptr; }

TEST(Loading, AttachesTheLoadingThreadAloneAndComesAndGoes) {
  for (int round = 0; round < 3; ++round) {
    Library library;
    ASSERT_TRUE(library) << dlerror();
    EXPECT_TRUE(library.IsThreadInitialized());
    bool before = true;
    bool after = false;
    std::thread([&] {
      before = library.IsThreadInitialized();
      library.InitializeThread();
      after = library.IsThreadInitialized();
    }).join();
    EXPECT_FALSE(before);
    EXPECT_TRUE(after);
  }
  EXPECT_FALSE(IsLoaded());
}

TEST(Loading, AThreadMayOutliveTheLibrary) {
  std::promise<void> initialized;
  std::promise<void> unloaded;
  std::thread thread;
  {
    Library library;
    ASSERT_TRUE(library);
    thread = std::thread([&] {
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

TEST(Loading, IsLeftAloneByAForkedChildThatExits) {
  Library library;
  ASSERT_TRUE(library);
  const pid_t child = fork();
  if (child == 0) exit(7);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7);
}

TEST(Loading, TheExportedEntryPointAnswers) {
  Library library;
  ASSERT_TRUE(library);
  const auto dllMain = library.Get<int (*)(void*, unsigned, void*)>("DllMain");
  EXPECT_EQ(dllMain(nullptr, 9, nullptr), 1);
  std::thread([&] {
    EXPECT_EQ(dllMain(nullptr, 2, nullptr), 1);
    EXPECT_TRUE(library.IsThreadInitialized());
    EXPECT_EQ(dllMain(nullptr, 3, nullptr), 1);
    EXPECT_FALSE(library.IsThreadInitialized());
  }).join();
}

}  // namespace
