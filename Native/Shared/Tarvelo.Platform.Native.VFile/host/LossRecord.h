/// @file
/// What a conversion of a text replaces and leaves out.
#pragma once

#include <cstdint>

namespace host {

/// Written as the pieces of a text are converted. Whoever wants none hands on null.
struct LossRecord {
  std::int64_t replaced = 0;  ///< characters
  std::int64_t leftOut = 0;   ///< bytes
  std::int64_t first = -1;    ///< where in the text the first one was, in units
  std::int64_t units = 0;     ///< units of the text before the piece; whoever brings the pieces moves it on

  /// A character at that unit of the piece has been replaced.
  void Replace(std::int64_t unit) {
    ++replaced;
    if (first < 0) first = units + unit;
  }
  /// `count` bytes behind the last unit, which is that of number `end`, have been left out.
  void LeaveOut(std::int64_t count, std::int64_t end) {
    leftOut += count;
    if (count > 0 && first < 0) first = end;
  }
};

}  // namespace host
