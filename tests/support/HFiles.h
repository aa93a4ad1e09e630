/// @file
/// Files of the interface on the disk, and each way to open one, for tests.
#pragma once

#include <string>

#include "hfile/HFile.h"
#include "support/Files.h"

namespace support {

/// A fixture with a file in a scratch directory.
struct HFiles : InDirectory {
  const TString name = Name("file");
  HFile file;
  char buffer[16];

  static constexpr int kWays = 8;
  /// `Lookup`, `Create` and `CreateSeqWrite`, each without and with its flag; then `Open` and `OpenSeqRead`.
  bool Open(HFile& f, int way) const {
    constexpr bool (HFile::*kFlagged[])(const TChar*, bool) = {&HFile::Lookup, &HFile::Create, &HFile::CreateSeqWrite};
    if (way < 6) return (f.*kFlagged[way / 2])(name.c_str(), way % 2 != 0);
    return way == 6 ? f.Open(name.c_str()) : f.OpenSeqRead(name.c_str());
  }
  void OpenTen(int way) {
    Put("file", "0123456789");
    EXPECT_TRUE(Open(file, way));
  }
};

/// A fixture with a temporary file.
struct TemporaryFiles : InDirectory {
  bool Create(const TChar* prefix, const TChar* ext, const TChar* dir, bool seqWrite = false) {
    return HFile::CreateTempFile(file, name, 261, prefix, ext, dir, seqWrite);
  }
  HFile file;
  TChar name[261];
};

}  // namespace support
