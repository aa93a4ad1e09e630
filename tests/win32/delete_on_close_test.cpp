#include <cstdlib>
#include <gtest/gtest.h>

#include "support/Halts.h"
#include "support/HostFiles.h"
#include "vmem/SwapFile.h"

namespace {

using support::ErrorOf;
using support::HostFiles;
using support::kReadWrite;

struct Unnamed : HostFiles {
  HANDLE Create(const std::string& name, std::uint32_t how = host::CREATE_ALWAYS) const {
    return host::CreateFileW(Name(name).c_str(), kReadWrite, 0, how,
                             host::FILE_ATTRIBUTE_NORMAL | host::FILE_FLAG_DELETE_ON_CLOSE);
  }
  bool Exists(const std::string& name) const { return host::_waccess(Name(name).c_str(), 0) == 0; }
};

TEST_F(Unnamed, FilesGoWithTheirHandle) {
  const HANDLE file = Create("swap");
  std::uint32_t done = 0;
  EXPECT_TRUE(host::WriteFile(file, "abc", 3, &done) && Exists("swap"));
  for (const std::uint32_t how : {host::CREATE_ALWAYS, host::OPEN_EXISTING, host::OPEN_ALWAYS}) {
    EXPECT_EQ(Open("swap", kReadWrite, 7, how), 32u) << how;
  }
  EXPECT_EQ(Open("swap", kReadWrite, 7, host::CREATE_NEW), 80u);
  EXPECT_EQ(ErrorOf(host::DeleteFileW(Name("swap").c_str())), 32u);
  EXPECT_EQ(ErrorOf(host::MoveFileW(Name("swap").c_str(), Name("new").c_str())), 32u);
  EXPECT_TRUE(host::CloseHandle(file) && !Exists("swap"));
}

TEST_F(Unnamed, FilesTakeALeftoverAndLeaveWhatStandsInTheWay) {
  Put("leftover", "abc");
  Put("locked", "abc");
  Put("open", "abc");
  support::SetReadOnly(Path("locked"), true);
  std::filesystem::create_directory(Path("dir"));
  const HANDLE held = Opened("open", host::GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
  const struct {
    const char* name;
    std::uint32_t error;
  } rows[] = {{"locked", 80}, {"dir", 80}, {"open", 32}, {"none/x", 3}};
  for (const auto& [name, error] : rows) {
    EXPECT_EQ(ErrorOf(Create(name) != INVALID_HANDLE_VALUE), error) << name;
  }
  EXPECT_EQ(Content("locked") + Content("open"), "abcabc");
  host::CloseHandle(held);
  const HANDLE file = Create("leftover");
  EXPECT_TRUE(file != INVALID_HANDLE_VALUE && host::GetLastError() == 183 && host::GetFileSize(file) == 0);
  EXPECT_TRUE(host::CloseHandle(file) && !Exists("leftover"));
}

TEST_F(Unnamed, ASwapFileHasTheFirstNameThatIsFree) {
  std::filesystem::create_directory(Path("sub"));
  // More numbers than the clock goes through meanwhile: directories, read-only and open files, and one leftover behind them.
  constexpr std::uint32_t kNumbers = 100000;
  constexpr std::uint32_t kCount = 600;
  const auto nameOf = [](std::uint32_t number) { return "sub/~vmem" + std::to_string(number % kNumbers) + ".tmp"; };
  const std::uint32_t first = host::GetTickCount() + 3000;
  std::vector<HANDLE> held;
  for (std::uint32_t i = 0; i < kCount; ++i) {
    const std::string name = nameOf(first + i);
    if (i % 3 == 0) {
      std::filesystem::create_directory(Path(name));
      continue;
    }
    Put(name, "mine");
    if (i % 3 == 1) {
      support::SetReadOnly(Path(name), true);
    } else {
      held.push_back(Opened(name, host::GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE));
    }
  }
  const std::string leftover = nameOf(first + kCount);
  Put(leftover, "leftover");
  ASSERT_LT(static_cast<std::int32_t>(host::GetTickCount() - first), 0) << "too slow to make them in time";
  while (static_cast<std::int32_t>(host::GetTickCount() - first) < 0) continue;
  TChar name[261];
  const HANDLE file = vmem::CreateSwapFile(name, 261, Name("sub").c_str());
  ASSERT_NE(file, INVALID_HANDLE_VALUE);
  EXPECT_EQ(std::filesystem::path(name).filename(), Path(leftover).filename());
  EXPECT_EQ(host::GetFileSize(file), 0u);
  EXPECT_TRUE(host::CloseHandle(file) && !Exists(leftover));
  for (const HANDLE each : held) host::CloseHandle(each);
  for (std::uint32_t i = 0; i < kCount; ++i) EXPECT_EQ(Content(nameOf(first + i)), i % 3 == 0 ? "" : "mine");
}

TEST_F(Unnamed, FilesGoHoweverTheProcessEnds) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  // The directory of this process is not that of the child, which runs the test from its start.
  const std::filesystem::path place = std::filesystem::temp_directory_path() / "vfile-test-ends";
  std::filesystem::create_directory(place);
  const TString name = support::Units(place / "swap");
  const auto make = [&] {
    const HANDLE file = host::CreateFileW(name.c_str(), kReadWrite, 0, host::CREATE_ALWAYS,
                                          host::FILE_ATTRIBUTE_NORMAL | host::FILE_FLAG_DELETE_ON_CLOSE);
    if (file == INVALID_HANDLE_VALUE) std::_Exit(99);
  };
  EXPECT_EXIT(
      {
        make();
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "");
  EXPECT_EQ(host::_waccess(name.c_str(), 0), -1);
  EXPECT_EXIT(
      {
        make();
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
  EXPECT_EQ(host::_waccess(name.c_str(), 0), -1);
  EXPECT_EXIT(
      {
        make();
        std::abort();
      },
      testing::ExitedWithCode(3), "");
  EXPECT_EQ(host::_waccess(name.c_str(), 0), -1);
  std::filesystem::remove_all(place);
}

}  // namespace
