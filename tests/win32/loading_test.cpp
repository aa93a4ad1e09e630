#include <future>
#include <gtest/gtest.h>
#include <optional>
#include <thread>
#include <windows.h>

#include "support/Library.h"

namespace {

using support::Library;

TEST(Loading, AttachesTheLoadingThreadAndThoseThatStartBehind) {
  for (int round = 0; round < 3; ++round) {
    Library library;
    ASSERT_TRUE(library) << GetLastError();
    EXPECT_TRUE(library.IsThreadInitialized());
    std::thread([&] { EXPECT_TRUE(library.IsThreadInitialized()); }).join();
    const Library again;
    EXPECT_EQ(again.Handle(), library.Handle());
  }
  EXPECT_FALSE(Library::IsLoaded());
}

TEST(Loading, AThreadThatEndsBeforeTheLibraryLeavesNothing) {
  for (int round = 0; round < 100; ++round) {
    std::optional<Library> library;
    std::thread([&] { library.emplace(); }).join();
    ASSERT_TRUE(*library);
    EXPECT_FALSE(library->IsThreadInitialized());
  }
  EXPECT_FALSE(Library::IsLoaded());
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
