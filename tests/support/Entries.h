/// @file
/// Files that are copied, moved and deleted, for tests.
#pragma once

#include <string>

#include "hfile/HFile.h"
#include "host/Host.h"
#include "support/Files.h"

namespace support {

/// A fixture with files and a directory in a scratch directory.
struct Entries : InDirectory {
  Entries() {
    std::filesystem::create_directory(Path("dir"));
    Put("file", "content");
    Put("old", "old");
    Put("locked", "locked");
    Put("dir/inner", "inner");
    Put("dir/old", "another");
    SetReadOnly(Path("locked"), true);
  }

  /// 0, or the host's error, of which `code` must be.
  static std::uint32_t ErrorOf(bool done) {
    EXPECT_EQ(code, done ? resDone : GetFileRes());
    return done ? 0 : host::GetLastError();
  }
  std::uint32_t Copy(const std::string& from, const std::string& to, bool failIfExists) const {
    return ErrorOf(HFile::Copy(Full(from).c_str(), Full(to).c_str(), code, !failIfExists));
  }
  std::uint32_t Move(const std::string& from, const std::string& to) const {
    return ErrorOf(HFile::Rename(Full(from).c_str(), Full(to).c_str(), code));
  }
  std::uint32_t Delete(const std::string& name) const { return ErrorOf(HFile::Remove(Full(name).c_str(), code)); }
  /// How many entries the directory has and what is in its files.
  std::string Listing() const {
    std::string listing;
    for (const char* name : {"file", "old", "locked", "same", "new"}) listing += Content(name) + ",";
    return listing + std::to_string(std::distance(std::filesystem::directory_iterator(Directory()), {}));
  }

  struct Refusal {
    const char *from, *to;
    /// Of a copy that spares the target, one that replaces it, and a move; 0 where it would succeed and is left out.
    std::uint32_t spare, replace, move;
  };
  /// Each row leaves all as it was. A move onto the own name succeeds, and so changes nothing.
  template <std::size_t kCount>
  void CheckRefusals(const Refusal (&rows)[kCount]) const {
    const std::string before = Listing();
    for (const auto& [from, to, spare, replace, move] : rows) {
      EXPECT_EQ(Copy(from, to, true), spare) << from << " to " << to;
      EXPECT_TRUE(replace == 0 || Copy(from, to, false) == replace) << from << " to " << to << host::GetLastError();
      EXPECT_TRUE(from == std::string("dir") || Move(from, to) == move) << from << " to " << to << host::GetLastError();
      ASSERT_EQ(Listing(), before) << from << " to " << to;
    }
  }
  /// An empty name stays one.
  TString Full(const std::string& name) const {
    return name.empty() || name[0] == '/' ? TString(name.begin(), name.end()) : Name(name);
  }

  static inline thread_local std::int32_t code = -1;
};

}  // namespace support
