#include <array>
#include <gtest/gtest.h>
#include <tuple>

#include "support/HostFiles.h"
#include "support/Pipe.h"
#include "support/win32/Wine.h"

namespace {

using support::HostFiles;
using support::kReadWrite;

TEST_F(HostFiles, OpenNamesOfThisHost) {
  // clang-format off
  const OpenRow rows[] = {
      {"FILE", {80, 183, 0, 183}}, {"no\\..\\file", {80, 183, 0, 183}}, {"sub//..//file. ", {80, 183, 0, 183}},
      {"sub\\", {80, 5, 5, 5}}, {"f*", {123, 123, 123, 123}}, {"f|", {123, 123, 123, 123}}, {"f\x1F", {123, 123, 123, 123}}};
  // clang-format on
  CheckOpens(rows);
}

TEST_F(HostFiles, OpenOnDrives) {
  const support::CurrentDirectory here(Directory());
  Put("file", "abc");
  const TString drive = Name("").substr(0, 2);
  // clang-format off
  const std::pair<TString, std::uint32_t> rows[] = {
      {drive + L"file", 0}, {drive + L"sub\\..\\file", 0}, {drive + L"none", 2}, {drive, 5}, {drive + L"\\", 5}, {L".", 5}};
  // clang-format on
  for (const auto& [name, error] : rows) {
    const HANDLE file = host::CreateFileW(name.c_str(), host::GENERIC_READ, 0, host::OPEN_EXISTING, 0);
    EXPECT_EQ(support::ErrorOf(file != INVALID_HANDLE_VALUE), error) << std::string(name.begin(), name.end());
    host::CloseHandle(file);
  }
}

TEST_F(HostFiles, HaveAttributesAndAccess) {
  Put("file", "");
  Put("locked", "");
  std::filesystem::create_directory(Path("sub"));
  EXPECT_TRUE(host::SetFileAttributesW(Name("locked").c_str(), 0x21));
  EXPECT_TRUE(!host::SetFileAttributesW(Name("none").c_str(), 0x21) && host::GetLastError() == 2);
  constexpr std::uint32_t kNone = host::INVALID_FILE_ATTRIBUTES;
  // The attributes or the error, and the access of modes 0, 4, 2 and 6.
  // clang-format off
  const std::tuple<const char*, std::uint32_t, std::uint32_t, std::array<int, 4>> rows[] = {
      {"FILE", 0x20, 0, {0, 0, 0, 0}}, {"locked", 0x21, 0, {0, 0, -1, -1}}, {"sub\\", 0x10, 0, {0, 0, 0, 0}},
      {"none", kNone, 2, {-1, -1, -1, -1}}, {"file\\x", kNone, 3, {-1, -1, -1, -1}}, {"f*", kNone, 123, {-1, -1, -1, -1}}};
  // clang-format on
  for (const auto& [name, attributes, error, access] : rows) {
    EXPECT_EQ(host::GetFileAttributesW(Name(name).c_str()), attributes) << name;
    EXPECT_EQ(attributes == kNone ? host::GetLastError() : 0, error) << name;
    for (const int i : {0, 1, 2, 3}) {
      EXPECT_EQ(host::_waccess(Name(name).c_str(), std::array{0, 4, 2, 6}[i]), access[i]) << name;
    }
  }
  TChar buffer[300] = {};
  for (const TChar* none : {L"", static_cast<const wchar_t*>(nullptr)}) {
    EXPECT_TRUE(host::GetFileAttributesW(none) == kNone && host::GetLastError() == 3 && host::_waccess(none, 0) == -1);
    EXPECT_TRUE(host::GetLongPathNameW(none, buffer, 300) == 0 && host::GetLastError() == 3);
  }
  const TString name = Name("file");
  const auto length = static_cast<std::uint32_t>(name.size());
  EXPECT_EQ(host::GetLongPathNameW(name.c_str(), buffer, length), length + 1);
  EXPECT_TRUE(host::GetLongPathNameW(name.c_str(), buffer, length + 1) == length && buffer == name);
}

TEST(HostPipes, EndWithAnErrorWhenTheirWriterIsGone) {
  const auto [reader, writer] = support::OpenChannel();
  char bytes[4];
  std::uint32_t done = 0;
  EXPECT_TRUE(host::WriteFile(writer, "abc", 3, &done) && done == 3);
  host::CloseHandle(writer);
  EXPECT_TRUE(host::ReadFile(reader, bytes, sizeof bytes, &done) && done == 3);
  EXPECT_TRUE(!host::ReadFile(reader, bytes, sizeof bytes, &done) && done == 0);
  EXPECT_EQ(host::GetLastError(), 109u);
  host::CloseHandle(reader);
}

TEST_F(HostFiles, TransferWhatTheirAccessAllows) {
  Put("file", "0123456789");
  char byte = 0;
  std::uint32_t done = 1;
  const HANDLE reading = Opened("file", host::GENERIC_READ, 7);
  const HANDLE writing = Opened("file", host::GENERIC_WRITE, 7);
  for (const std::uint32_t count : {1u, 0u}) {
    EXPECT_TRUE(!host::WriteFile(reading, &byte, count, &done) && host::GetLastError() == 5 && done == 0) << count;
    EXPECT_TRUE(!host::ReadFile(writing, &byte, count, &done) && host::GetLastError() == 5 && done == 0) << count;
  }
  EXPECT_TRUE(!host::FlushFileBuffers(reading) && host::GetLastError() == 5 && host::FlushFileBuffers(writing));
  EXPECT_FALSE(host::SetEndOfFile(reading));
  host::SetLastError(77);
  EXPECT_EQ(host::SetFilePointer(reading, -1, host::FILE_END), 9u);
  EXPECT_EQ(host::SetFilePointer(reading, INT32_MAX, host::FILE_BEGIN) + 1, 0x80000000u);
  EXPECT_TRUE(host::ReadFile(reading, &byte, 1, &done) && done == 0 && host::GetFileSize(reading) == 10);
  EXPECT_EQ(host::GetLastError(), 77u) << "a success leaves it";
  EXPECT_TRUE(host::SetFilePointer(reading, -1, host::FILE_BEGIN) == 0xFFFFFFFF && host::GetLastError() == 131);
  EXPECT_TRUE(host::CloseHandle(reading) && host::CloseHandle(writing));
  EXPECT_TRUE(!host::CloseHandle(nullptr) && host::GetLastError() == 6);
}

TEST_F(HostFiles, AreRefusedWhereWineTakesThem) {
  SKIP_UNDER_WINE(
      "a path of 260 units is opened, CREATE_ALWAYS takes a hidden file, a file on no drive is said to be missing, not "
      "its path, and the error of a cut through a handle for reading varies");
  Put("hidden", "abc");
  host::SetFileAttributesW(Name("hidden").c_str(), 0x22);
  const OpenRow rows[] = {{std::string(260, 'n'), {3, 3, 3, 3}}, {"hidden", {80, 5, 0, 183}}};
  CheckOpens(rows);
  TString missing = L"A:\\x";
  while (missing[0] < L'Z' && host::GetFileAttributesW(missing.substr(0, 3).c_str()) != host::INVALID_FILE_ATTRIBUTES) {
    ++missing[0];
  }
  const HANDLE file = host::CreateFileW(missing.c_str(), host::GENERIC_READ, 0, host::OPEN_EXISTING, 0);
  EXPECT_EQ(support::ErrorOf(file != INVALID_HANDLE_VALUE), 3u);
  const HANDLE reading = Opened("file", host::GENERIC_READ, 0);
  EXPECT_TRUE(!host::SetEndOfFile(reading) && host::GetLastError() == 5);
  host::CloseHandle(reading);
}

}  // namespace
