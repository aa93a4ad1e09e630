#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "support/Entries.h"

namespace {

namespace fs = std::filesystem;
using support::Entries;

// What does not work, and leaves all as it was.
TEST_F(Entries, RefusalsTellTheReason) {
  // clang-format off
  const Refusal rows[] = {
      {"none", "new", 2, 2, 2}, {"none", "old", 2, 2, 2}, {"no/x", "new", 3, 3, 3}, {"file/x", "new", 3, 3, 3},
      {"file", "no/x", 3, 3, 3}, {"file", "old/x", 3, 3, 3}, {"", "new", 3, 3, 3}, {"file", "", 3, 3, 3},
      {"dir", "new", 5, 5, 0}, {"file", "dir", 80, 5, 183}, {"file", "dir/", 80, 5, 183}, {"file", "locked", 80, 5, 183},
      {"file", "file", 80, 32, 0}, {"file", "dir/../file", 80, 32, 0}, {"file", "old", 80, 0, 183},
      {"old", "dir/old", 80, 0, 183}};
  const std::pair<const char*, std::uint32_t> names[] = {
      {"none", 2}, {"no/x", 3}, {"file/x", 3}, {"dir", 5}, {"dir/", 5}, {"locked", 5}, {"", 3}};
  // clang-format on
  CheckRefusals(rows);
  const std::string before = Listing();
  for (const auto& [name, error] : names) EXPECT_EQ(Delete(name), error) << name;
  EXPECT_EQ(Listing(), before);
}

TEST_F(Entries, CopiesAndMovesTakeContentAndAttributes) {
  std::string large;
  for (int i = 0; i < 300000; ++i) large += static_cast<char>(i * 7 % 251);
  Put("file", large);
  const auto written = fs::last_write_time(Path("locked"));
  EXPECT_TRUE(Copy("file", "new", true) == 0 && Copy("file", "old", false) == 0);
  EXPECT_TRUE(Content("new") == large && Content("old") == large && Content("file") == large);
  EXPECT_TRUE(Copy("locked", "dir/copy", true) == 0 && Move("locked", "dir/moved") == 0);
  for (const char* name : {"dir/copy", "dir/moved"}) {
    EXPECT_EQ(host::GetFileAttributesW(Name(name).c_str()), 0x21u) << name;
    EXPECT_TRUE(Content(name) == "locked" && fs::last_write_time(Path(name)) == written) << name;
  }
  EXPECT_TRUE(Move("dir", "other") == 0 && Content("other/inner") == "inner" && !fs::exists(Path("dir")));
  EXPECT_TRUE(Move("other", "old") == 183 && Move("old", "other") == 183);
  const TString one = Name("file");
  const TString two = Name("two");
  const TString three = Name("three");
  EXPECT_TRUE(HFile::Copy(one.c_str(), two.c_str(), false) && !HFile::Copy(one.c_str(), two.c_str(), false));
  EXPECT_TRUE(HFile::Rename(two.c_str(), three.c_str()) && !HFile::Rename(two.c_str(), three.c_str()));
  EXPECT_TRUE(HFile::Remove(three.c_str()) && !HFile::Remove(three.c_str()));
}

TEST_F(Entries, WhatIsOpenIsLeftAlone) {
  for (const std::uint32_t share : {0u, FILE_SHARE_READ}) {
    const HANDLE held = host::CreateFileW(Name("old").c_str(), host::GENERIC_READ, share, host::OPEN_EXISTING, 0);
    EXPECT_EQ(Copy("file", "old", false), 32u);
    EXPECT_EQ(Copy("old", "new", true), share == 0 ? 32u : 0u);
    EXPECT_TRUE(Move("old", "moved") == 32 && Delete("old") == 32 && host::CloseHandle(held));
  }
  EXPECT_EQ(Listing(), "content,old,locked,,old,5");
  EXPECT_TRUE(Copy("file", "old", false) == 0 && Content("old") == "content");
}

// Many threads give one name at once: one of them gets it, and the files of the others are where they were.
TEST_F(Entries, OneOfManyGetsAFreeName) {
  constexpr std::size_t kThreads = 4;
  for (int round = 0; round < 100; ++round) {
    const auto from = [](std::size_t i) { return "from" + std::to_string(i); };
    const auto content = [](std::size_t i) { return std::string(20000, static_cast<char>('a' + i)); };
    std::atomic<std::size_t> ready = 0;
    std::uint32_t errors[kThreads];
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i) Put(from(i), content(i));
    for (std::size_t i = 0; i < kThreads; ++i) {
      threads.emplace_back([&, i] {
        for (++ready; ready < kThreads;) continue;
        errors[i] = i % 2 == 0 ? Move(from(i), "to") : Copy(from(i), "to", true);
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(std::count(errors, errors + kThreads, 0u), 1);
    for (std::size_t i = 0; i < kThreads; ++i) {
      EXPECT_TRUE(errors[i] == 0 ? Content("to") == content(i) : errors[i] == (i % 2 == 0 ? 183u : 80u));
      EXPECT_EQ(Content(from(i)), errors[i] == 0 && i % 2 == 0 ? "" : content(i));
    }
    fs::remove(Path("to"));
  }
  EXPECT_LE(std::distance(fs::directory_iterator(Directory()), {}), 4 + static_cast<int>(kThreads));
}

}  // namespace
