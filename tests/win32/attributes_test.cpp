#include <gtest/gtest.h>

#include "support/HostFiles.h"
#include "support/win32/Wine.h"

namespace {

using support::HostFiles;

constexpr std::uint32_t kNone = host::INVALID_FILE_ATTRIBUTES;

TEST_F(HostFiles, HaveAttributesAndAccess) {
  Put("file", "");
  Put("locked", "");
  Put("hidden", "");
  std::filesystem::create_directory(Path("sub"));
  EXPECT_TRUE(host::SetFileAttributesW(Name("locked").c_str(), 0x21) &&
              host::SetFileAttributesW(Name("hidden").c_str(), 0x22));
  const struct {
    const char* name;
    std::uint32_t attributes, error;
    int access[4];  // of modes 0, 4, 2 and 6
  } rows[] = {{"file", 0x20, 0, {0, 0, 0, 0}},        {"FILE", 0x20, 0, {0, 0, 0, 0}},
              {"locked", 0x21, 0, {0, 0, -1, -1}},    {"hidden", 0x22, 0, {0, 0, 0, 0}},
              {"sub", 0x10, 0, {0, 0, 0, 0}},         {"sub\\", 0x10, 0, {0, 0, 0, 0}},
              {".", 0x10, 0, {0, 0, 0, 0}},           {"none", kNone, 2, {-1, -1, -1, -1}},
              {"none/x", kNone, 3, {-1, -1, -1, -1}}, {"file\\x", kNone, 3, {-1, -1, -1, -1}},
              {"f*", kNone, 123, {-1, -1, -1, -1}}};
  const int modes[] = {0, 4, 2, 6};
  for (const auto& [name, attributes, error, access] : rows) {
    EXPECT_EQ(host::GetFileAttributesW(Name(name).c_str()), attributes) << name;
    EXPECT_EQ(attributes == kNone ? host::GetLastError() : 0, error) << name;
    for (int i = 0; i < 4; ++i) EXPECT_EQ(host::_waccess(Name(name).c_str(), modes[i]), access[i]) << name << modes[i];
  }
  for (const TChar* none : {L"", static_cast<const wchar_t*>(nullptr)}) {
    EXPECT_TRUE(host::GetFileAttributesW(none) == kNone && host::GetLastError() == 3 && host::_waccess(none, 0) == -1);
  }
}

TEST_F(HostFiles, TakeAttributesWhileTheyAreOpen) {
  const TString name = Name("file");
  const HANDLE file = Opened("file", support::kReadWrite, 0);
  std::uint32_t done = 0;
  EXPECT_TRUE(host::SetFileAttributesW(name.c_str(), 0x11) && (host::GetFileAttributesW(name.c_str()) & 0x11) == 0x01);
  EXPECT_TRUE(host::WriteFile(file, "abc", 3, &done) && done == 3);
  EXPECT_TRUE(host::SetFileAttributesW(name.c_str(), 0x80) && (host::GetFileAttributesW(name.c_str()) & 0x01) == 0);
  host::CloseHandle(file);
  const struct {
    const char* name;
    std::uint32_t error;
  } rows[] = {{"none", 2}, {"none/x", 3}};
  for (const auto& row : rows) {
    EXPECT_TRUE(!host::SetFileAttributesW(Name(row.name).c_str(), 0x80) && host::GetLastError() == row.error)
        << row.name;
  }
}

TEST_F(HostFiles, InAReadOnlyDirectoryAreMade) {
  std::filesystem::create_directory(Path("sub"));
  host::SetFileAttributesW(Name("sub").c_str(), 0x01);
  EXPECT_EQ(Open("sub/new", support::kReadWrite, 0, host::CREATE_NEW), 0u);
  host::SetFileAttributesW(Name("sub").c_str(), 0x80);
}

TEST_F(HostFiles, HaveLongNamesInRoom) {
  Put("file", "");
  const TString name = Name("file");
  const auto length = static_cast<std::uint32_t>(name.size());
  TChar buffer[300] = {};
  EXPECT_TRUE(host::GetLongPathNameW(name.c_str(), buffer, length + 1) == length && buffer == name);
  for (const std::uint32_t size : {length, 1u}) {
    EXPECT_EQ(host::GetLongPathNameW(name.c_str(), buffer, size), length + 1) << size;
  }
  EXPECT_TRUE(host::GetLongPathNameW(Name("none").c_str(), buffer, 300) == 0 && host::GetLastError() == 2);
  EXPECT_TRUE(host::GetLongPathNameW(L"", buffer, 300) == 0 && host::GetLastError() == 3);
  EXPECT_TRUE(host::GetLongPathNameW(L".", buffer, 300) == 1 && buffer == TString(L"."));
}

}  // namespace
