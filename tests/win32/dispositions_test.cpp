#include <gtest/gtest.h>

#include "support/HostFiles.h"
#include "support/Pipe.h"
#include "support/win32/Wine.h"

namespace {

using support::HostFiles;
using support::kReadWrite;

TEST_F(HostFiles, OpenNamesOfThisHost) {
  const OpenRow rows[] = {{"FILE", {80, 183, 0, 183}},
                          {"sub/../File", {80, 183, 0, 183}},
                          {"no\\..\\file", {80, 183, 0, 183}},
                          {"sub//..//file", {80, 183, 0, 183}},
                          {"file.", {80, 183, 0, 183}},
                          {"file ", {80, 183, 0, 183}},
                          {"sub\\", {80, 5, 5, 5}},
                          {"f*", {123, 123, 123, 123}},
                          {"f?", {123, 123, 123, 123}},
                          {"f<", {123, 123, 123, 123}},
                          {"f>", {123, 123, 123, 123}},
                          {"f|", {123, 123, 123, 123}},
                          {"f\"", {123, 123, 123, 123}},
                          {"f\x1F", {123, 123, 123, 123}}};
  CheckOpens(rows);
}

TEST_F(HostFiles, OpenNoLongNames) {
  SKIP_UNDER_WINE("a path of 260 units or more is opened, if its steps are not too long");
  const OpenRow rows[] = {{std::string(260, 'n'), {3, 3, 3, 3}}};
  CheckOpens(rows);
}

TEST_F(HostFiles, OpenAHiddenFile) {
  Put("file", "abc");
  host::SetFileAttributesW(Name("file").c_str(), 0x22);
  EXPECT_EQ(Open("file", kReadWrite, 0, host::CREATE_NEW), 80u);
  EXPECT_EQ(Open("file", kReadWrite, 0, host::OPEN_EXISTING), 0u);
  EXPECT_EQ(Open("file", kReadWrite, 0, host::OPEN_ALWAYS), 183u);
  EXPECT_EQ(Content("file"), "abc");
}

TEST_F(HostFiles, ReplaceNoHiddenFile) {
  SKIP_UNDER_WINE("CREATE_ALWAYS takes a hidden file");
  Put("file", "abc");
  host::SetFileAttributesW(Name("file").c_str(), 0x22);
  EXPECT_EQ(Open("file", kReadWrite, 0, host::CREATE_ALWAYS), 5u);
  EXPECT_EQ(Content("file"), "abc");
}

TEST_F(HostFiles, OpenOnDrives) {
  const support::CurrentDirectory here(Directory());
  Put("file", "abc");
  std::filesystem::create_directory(Path("sub"));
  const TString drive = Name("").substr(0, 2);
  const struct {
    TString name;
    std::uint32_t error;
  } rows[] = {{drive + L"file", 0},
              {drive + L"sub\\..\\file", 0},
              {drive + L"none", 2},
              {drive, 5},
              {drive + L"\\", 5},
              {drive + L".", 5},
              {L".", 5},
              {L"..", 5},
              {L"file", 0},
              {L"sub", 5}};
  for (const auto& [name, error] : rows) {
    const HANDLE file = host::CreateFileW(name.c_str(), host::GENERIC_READ, 0, host::OPEN_EXISTING, 0);
    EXPECT_EQ(support::ErrorOf(file != INVALID_HANDLE_VALUE), error) << std::string(name.begin(), name.end());
    if (error == 0) host::CloseHandle(file);
  }
}

TEST_F(HostFiles, OpenNothingOnADriveThatIsNone) {
  SKIP_UNDER_WINE("the file is said to be missing, not the path");
  TString missing = L"A:\\x";
  while (missing[0] < L'Z' && host::GetFileAttributesW(missing.substr(0, 3).c_str()) != host::INVALID_FILE_ATTRIBUTES) {
    ++missing[0];
  }
  const HANDLE file = host::CreateFileW(missing.c_str(), host::GENERIC_READ, 0, host::OPEN_EXISTING, 0);
  EXPECT_EQ(support::ErrorOf(file != INVALID_HANDLE_VALUE), 3u);
}

TEST_F(HostFiles, MoveAndTellTheirPosition) {
  Put("file", "0123456789");
  const HANDLE file = Opened("file", kReadWrite, 0);
  host::SetLastError(77);
  EXPECT_EQ(host::SetFilePointer(file, -1, host::FILE_END), 9u);
  EXPECT_EQ(host::SetFilePointer(file, 0x7FFFFFFF, host::FILE_BEGIN), 0x7FFFFFFFu);
  EXPECT_EQ(host::SetFilePointer(file, 1, host::FILE_CURRENT), 0x80000000u);
  char byte = 0;
  std::uint32_t done = 1;
  EXPECT_TRUE(host::ReadFile(file, &byte, 1, &done) && done == 0 && host::GetFileSize(file) == 10);
  EXPECT_EQ(host::GetLastError(), 77u) << "a success leaves it";
  EXPECT_TRUE(host::SetFilePointer(file, -1, host::FILE_BEGIN) == 0xFFFFFFFF && host::GetLastError() == 131);
  EXPECT_TRUE(host::SetFilePointer(file, 0, 3) == 0xFFFFFFFF && host::GetLastError() == 87);
  EXPECT_TRUE(host::CloseHandle(file) && !host::CloseHandle(nullptr) && host::GetLastError() == 6);
  EXPECT_TRUE(!host::ReadFile(INVALID_HANDLE_VALUE, &byte, 1, &done) && done == 0 && host::GetLastError() == 6);
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

TEST_F(HostFiles, OpenedForReadingAreNotCut) {
  SKIP_UNDER_WINE("the error is that of an argument or of the handle");
  Put("file", "abc");
  const HANDLE reading = Opened("file", host::GENERIC_READ, 0);
  EXPECT_TRUE(!host::SetEndOfFile(reading) && host::GetLastError() == 5);
  host::CloseHandle(reading);
}

TEST_F(HostFiles, TransferWhatTheirAccessAllows) {
  Put("file", "abc");
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
  EXPECT_TRUE(host::ReadFile(reading, nullptr, 0, &done) && host::WriteFile(writing, nullptr, 0, &done));
  host::SetFilePointer(writing, 5, host::FILE_BEGIN);
  EXPECT_TRUE(host::WriteFile(writing, "x", 1, &done));
  host::CloseHandle(reading);
  host::CloseHandle(writing);
  EXPECT_EQ(Content("file"), std::string("abc\0\0x", 6));
}

}  // namespace
