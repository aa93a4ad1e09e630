#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

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

/// What stands under the names of swap files, from a number on that the clock has not reached.
class InTheWay {
 public:
  static constexpr std::uint32_t kCount = 300;

  InTheWay(const std::filesystem::path& directory, std::uint32_t lead) : directory_(directory) {
    std::filesystem::create_directory(directory);
    first_ = host::GetTickCount() + lead;
    for (std::uint32_t i = 0; i < kCount; ++i) {
      const std::filesystem::path name = NameOf(i);
      if (i % 3 == 0) {
        std::filesystem::create_directory(name);
        continue;
      }
      std::ofstream(name) << "mine";
      if (i % 3 == 1) {
        support::SetReadOnly(name, true);
      } else {
        held_.push_back(host::CreateFileW(name.c_str(), host::GENERIC_READ, 7, host::OPEN_EXISTING, 0));
      }
    }
    std::ofstream(NameOf(kCount)) << "leftover";
  }
  ~InTheWay() {
    for (const HANDLE each : held_) host::CloseHandle(each);
  }
  InTheWay(const InTheWay&) = delete;
  InTheWay& operator=(const InTheWay&) = delete;

  /// How far the clock is behind the first number; negative before it.
  std::int32_t Past() const { return static_cast<std::int32_t>(host::GetTickCount() - first_); }
  std::filesystem::path NameOf(std::uint32_t i) const {
    return directory_ / ("~vmem" + std::to_string((first_ + i) % 100000) + ".tmp");
  }

 private:
  const std::filesystem::path directory_;
  std::uint32_t first_;
  std::vector<HANDLE> held_;
};

TEST_F(Unnamed, ASwapFileHasTheFirstNameThatIsFree) {
  bool inTime = false;
  // A machine that has other work is given more time.
  for (std::uint32_t lead = 1000; lead <= 32000 && !inTime; lead *= 2) {
    const InTheWay inTheWay(Path(std::to_string(lead)), lead);
    if (inTheWay.Past() >= 0) continue;
    while (inTheWay.Past() < 0) continue;
    TChar name[261];
    const HANDLE file = vmem::CreateSwapFile(name, 261, Name(std::to_string(lead)).c_str());
    inTime = inTheWay.Past() < static_cast<std::int32_t>(InTheWay::kCount);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    if (inTime) {
      EXPECT_EQ(std::filesystem::path(name).filename(), inTheWay.NameOf(InTheWay::kCount).filename());
      EXPECT_EQ(host::GetFileSize(file), 0u);
    }
    EXPECT_TRUE(host::CloseHandle(file));
    EXPECT_EQ(std::filesystem::exists(inTheWay.NameOf(InTheWay::kCount)), !inTime);
    for (std::uint32_t i = 0; i < InTheWay::kCount; ++i) EXPECT_TRUE(std::filesystem::exists(inTheWay.NameOf(i))) << i;
  }
  EXPECT_TRUE(inTime);
}

TEST(DeleteOnCloseDeathTest, FilesGoHoweverTheProcessEnds) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  // One place for this process and the child, which runs the test from its start.
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
