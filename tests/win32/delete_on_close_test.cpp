#include <gtest/gtest.h>

#include "support/HostFiles.h"

namespace {

using support::ErrorOf;
using support::HostFiles;
using support::kReadWrite;

struct Unnamed : HostFiles {
  HANDLE Create(const std::string& name) const {
    return host::CreateFileW(Name(name).c_str(), kReadWrite, 0, host::CREATE_ALWAYS,
                             host::FILE_ATTRIBUTE_NORMAL | host::FILE_FLAG_DELETE_ON_CLOSE);
  }
  bool Exists(const std::string& name) const { return host::_waccess(Name(name).c_str(), 0) == 0; }
};

TEST_F(Unnamed, FilesTakeALeftoverAndLeaveWhatStandsInTheWay) {
  for (const char* name : {"leftover", "locked", "open"}) Put(name, "abc");
  support::SetReadOnly(Path("locked"), true);
  std::filesystem::create_directory(Path("dir"));
  const HANDLE held = Opened("open", host::GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
  for (const auto& [name, error] : {std::pair("locked", 80u), {"dir", 80}, {"open", 32}, {"none/x", 3}}) {
    EXPECT_EQ(ErrorOf(Create(name) != INVALID_HANDLE_VALUE), error) << name;
  }
  EXPECT_EQ(Content("locked") + Content("open"), "abcabc");
  host::CloseHandle(held);
  const HANDLE file = Create("leftover");
  EXPECT_TRUE(file != INVALID_HANDLE_VALUE && host::GetLastError() == 183 && host::GetFileSize(file) == 0);
  for (const std::uint32_t how : {host::CREATE_ALWAYS, host::OPEN_EXISTING}) {
    EXPECT_EQ(Open("leftover", kReadWrite, 7, how), 32u) << how;
  }
  EXPECT_EQ(ErrorOf(host::DeleteFileW(Name("leftover").c_str())), 32u);
  EXPECT_TRUE(Exists("leftover") && host::CloseHandle(file) && !Exists("leftover"));
}

}  // namespace
