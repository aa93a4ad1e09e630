/// @file
/// Files opened by the calls of the host, for tests.
#pragma once

#include <string>

#include "host/Host.h"
#include "support/Files.h"

namespace support {

constexpr std::uint32_t kReadWrite = host::GENERIC_READ | host::GENERIC_WRITE;

/// 0, or the host's error.
inline std::uint32_t ErrorOf(bool succeeded) { return succeeded ? 0 : host::GetLastError(); }

/// A fixture with files in a scratch directory.
struct HostFiles : InDirectory {
  HANDLE Opened(const std::string& name, std::uint32_t access, std::uint32_t share,
                std::uint32_t how = host::OPEN_ALWAYS) const {
    return host::CreateFileW(Name(name).c_str(), access, share, how, host::FILE_ATTRIBUTE_NORMAL);
  }
  /// The last error of an open.
  std::uint32_t Open(const std::string& name, std::uint32_t access, std::uint32_t share, std::uint32_t how) const {
    const HANDLE file = Opened(name, access, share, how);
    const std::uint32_t error = host::GetLastError();
    EXPECT_EQ(file != INVALID_HANDLE_VALUE, error == 0 || error == 183) << name;
    if (file != INVALID_HANDLE_VALUE) host::CloseHandle(file);
    return error;
  }

  struct OpenRow {
    std::string name;
    /// Of CREATE_NEW, CREATE_ALWAYS, OPEN_EXISTING and OPEN_ALWAYS.
    std::uint32_t errors[4];
  };
  /// Tries each row beside "file", which is there, "locked", which is read-only, "sub", which is a directory, and "new", which is not
  /// there.
  template <std::size_t kCount>
  void CheckOpens(const OpenRow (&rows)[kCount]) const {
    Put("locked", "abc");
    SetReadOnly(Path("locked"), true);
    std::filesystem::create_directory(Path("sub"));
    for (const auto& [name, errors] : rows) {
      for (std::uint32_t how = host::CREATE_NEW; how <= host::OPEN_ALWAYS; ++how) {
        Put("file", "abc");
        std::filesystem::remove(Path("new"));
        EXPECT_EQ(Open(name, kReadWrite, 0, how), errors[how - 1]) << name << how;
        const bool emptied = how == host::CREATE_ALWAYS && errors[how - 1] == 183;
        EXPECT_EQ(Content("file") + Content("locked"), emptied ? "abc" : "abcabc") << name << how;
      }
    }
  }
};

}  // namespace support
