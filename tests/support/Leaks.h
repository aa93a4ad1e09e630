/// @file
/// What the leak checker is told.
#pragma once

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace support {

/// What the thread takes from the heap while this lives may be left there: a thread that outlives the library leaves its table.
class LeftOnPurpose {
 public:
#if defined(__SANITIZE_ADDRESS__)
  LeftOnPurpose() { __lsan_disable(); }
  ~LeftOnPurpose() { __lsan_enable(); }
#else
  LeftOnPurpose() {}
#endif
  LeftOnPurpose(const LeftOnPurpose&) = delete;
  LeftOnPurpose& operator=(const LeftOnPurpose&) = delete;
};

}  // namespace support
