/// @file
/// Files on the disk for tests, in a directory that goes with the fixture.
#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>

#include "host/Unit.h"

namespace support {

inline TString Units(const std::filesystem::path& path) {
  const std::u16string text = path.u16string();
  return TString(text.begin(), text.end());
}

/// Takes from the file the right that anyone writes to it, or gives it to the owner.
inline void SetReadOnly(const std::filesystem::path& file, bool readOnly) {
  using std::filesystem::perm_options;
  using std::filesystem::perms;
  const perms writing = perms::owner_write | perms::group_write | perms::others_write;
  std::filesystem::permissions(file, readOnly ? writing : perms::owner_write,
                               readOnly ? perm_options::remove : perm_options::add);
}

/// While it lives, the process has another current directory.
class CurrentDirectory {
 public:
  explicit CurrentDirectory(const std::filesystem::path& directory) { std::filesystem::current_path(directory); }
  ~CurrentDirectory() { std::filesystem::current_path(before_); }
  CurrentDirectory(const CurrentDirectory&) = delete;
  CurrentDirectory& operator=(const CurrentDirectory&) = delete;

 private:
  const std::filesystem::path before_ = std::filesystem::current_path();
};

/// A fixture with a scratch directory of its own, whose name is in full and without detours.
class InDirectory : public testing::Test {
 protected:
  InDirectory() {
    const std::filesystem::path parent = std::filesystem::canonical(std::filesystem::temp_directory_path());
    std::random_device random;
    do directory_ = parent / ("vfile-test-" + std::to_string(random()));
    while (!std::filesystem::create_directory(directory_));
  }
  ~InDirectory() override {
    std::error_code failed;
    std::filesystem::remove_all(directory_, failed);
    if (!failed) return;
    // Some hosts spare what is read-only.
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory_)) SetReadOnly(entry, false);
    std::filesystem::remove_all(directory_, failed);
    EXPECT_FALSE(failed) << failed.message();
  }

  std::filesystem::path Path(const std::string& name) const { return directory_ / name; }
  /// The name of a file in the directory, as the library takes it.
  TString Name(const std::string& name) const { return Units(Path(name)); }

  void Put(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
  }
  std::string Content(const std::string& name) const {
    std::ifstream file(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  const std::filesystem::path& Directory() const { return directory_; }

 private:
  std::filesystem::path directory_;
};

}  // namespace support
