/// @file
/// A heap that fails where a test wants it: the `operator new` of the test program.
#pragma once

namespace support {

/// While it lives, the calling thread's nothrow allocation number `failing`, counted from 1, and all behind it fail;
/// with `kAll` those that throw are counted and fail as well.
class FailingHeap {
 public:
  enum Kind { kNothrow, kAll };

  explicit FailingHeap(int failing, Kind kind = kNothrow);
  ~FailingHeap();

  FailingHeap(const FailingHeap&) = delete;
  FailingHeap& operator=(const FailingHeap&) = delete;

  /// Whether an allocation has failed.
  static bool HasFailed();
};

}  // namespace support
