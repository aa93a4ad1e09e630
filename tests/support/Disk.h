/// @file
/// A disk that fails where a test wants it: the positioned transfers of the test program, which swap files use.
#pragma once

#include "host/Handle.h"

namespace support {

/// While it lives, the process's positioned transfer number `failing`, counted from 1, and all behind it fail, and so do those at
/// the position.
class FailingDisk {
 public:
  enum Kind { kReads = 1, kWrites = 2, kBoth = 3 };

  explicit FailingDisk(int failing, Kind kind = kBoth);
  ~FailingDisk();

  FailingDisk(const FailingDisk&) = delete;
  FailingDisk& operator=(const FailingDisk&) = delete;

  /// Whether a transfer has failed.
  static bool HasFailed();
  /// Lets transfers succeed again.
  static void Repair();
  /// Counts a transfer; whether the system may make it. For what stands in the place of the system's calls.
  static bool Allows(HANDLE file, Kind kind, bool positioned);
};

}  // namespace support
