#include <gtest/gtest.h>
#include <malloc.h>
#include <optional>
#include <thread>

#include "support/Library.h"

namespace {

using support::Library;

/// Bytes of the heap that are in use.
std::size_t HeapInUse() { return mallinfo2().uordblks; }

TEST(Loading, AttachesTheLoadingThreadAloneAndComesAndGoes) {
  for (int round = 0; round < 3; ++round) {
    Library library;
    ASSERT_TRUE(library);
    EXPECT_TRUE(library.IsThreadInitialized());
    std::thread([&] {
      EXPECT_FALSE(library.IsThreadInitialized());
      EXPECT_TRUE(library.InitializeThread() && library.IsThreadInitialized());
    }).join();
  }
  EXPECT_FALSE(Library::IsLoaded());
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

}  // namespace
