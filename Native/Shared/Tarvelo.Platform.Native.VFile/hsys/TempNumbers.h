/// @file
/// The numbers in the names of temporary files.
#pragma once

#include <cstdint>

namespace hsys {

/// Numbers upward from a start, each once: at their bound they go on with 0. A negative start comes to 0 from below.
class TempNumbers {
 public:
  /// `start` is above -`bound` and below it.
  TempNumbers(std::int32_t start, std::int32_t bound) : bound_(bound), next_(start), left_(bound) {}

  std::int32_t Number() const { return next_; }
  /// Goes to the next number; false when all were there.
  bool Step() {
    next_ = next_ + 1 == bound_ ? 0 : next_ + 1;
    return --left_ > 0;
  }
  /// Goes to 0, which makes the shortest name; false where that has been.
  bool SkipToShortest() {
    const std::int32_t steps = next_ > 0 ? bound_ - next_ : -next_;
    if (steps == 0 || steps >= left_) return false;
    left_ -= steps;
    next_ = 0;
    return true;
  }

 private:
  std::int32_t bound_;
  std::int32_t next_;
  std::int32_t left_;  // numbers that are still to come, the present one included
};

}  // namespace hsys
