/// @file
/// Walks through a directory, for tests.
#pragma once

#include <string>

#include "hfile/HFileDir.h"
#include "support/Files.h"

namespace support {

/// A fixture with a directory to walk through.
struct Walks : InDirectory {
  /// The names that match, each with a comma.
  std::string Matching(const std::string& pattern) const {
    HFileDir dir;
    std::string names;
    TChar name[261];
    const TString start = Name("");
    for (bool found = dir.FindFirst(name, 261, Name(pattern).c_str()); found; found = dir.FindNext(name, 261)) {
      EXPECT_TRUE(TString(name).starts_with(start));
      names += std::filesystem::path(name + start.size()).string() + ",";
    }
    EXPECT_TRUE(name[0] == 0 && !dir.FindNext(name, 261));
    return names;
  }
};

}  // namespace support
