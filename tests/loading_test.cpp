#include <future>
#include <gtest/gtest.h>
#include <thread>

#include "support/Leaks.h"
#include "support/Library.h"

namespace {

using support::Library;

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
  EXPECT_FALSE(Library::IsLoaded());
}

TEST(Loading, AThreadMayOutliveTheLibrary) {
  std::promise<void> initialized;
  std::promise<void> unloaded;
  std::thread thread;
  {
    const Library library;
    ASSERT_TRUE(library);
    thread = std::thread([&] {
      const support::LeftOnPurpose table;
      EXPECT_TRUE(library.InitializeThread());
      initialized.set_value();
      unloaded.get_future().wait();
    });
    initialized.get_future().wait();
  }
  EXPECT_FALSE(Library::IsLoaded());
  unloaded.set_value();
  thread.join();
}

}  // namespace
