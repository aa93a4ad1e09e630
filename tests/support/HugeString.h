/// @file
/// A string longer than any count, of a few pages that lie in the address space again and again.
#pragma once

#include <cstddef>

#include "host/Unit.h"

namespace support {

/// Whether the address space has room for it.
inline constexpr bool kHasHugeStrings = sizeof(void*) > 4;

/// A run of the byte "x" that ends in zeroes; any part up to its end is a string.
class HugeString {
 public:
  static constexpr std::size_t kNoCount = std::size_t{1} << 31;
  /// Cut to 32 bits this is 1.
  static constexpr std::size_t kCutToOne = 2 * kNoCount + 1;

  HugeString();
  ~HugeString();
  HugeString(const HugeString&) = delete;
  HugeString& operator=(const HugeString&) = delete;

  /// The string of so many bytes, at most `kCutToOne`.
  const char* Bytes(std::size_t count) const { return bytes_ + kRun - count; }
  /// The string of units that takes `size` bytes, an even number.
  const TChar* Units(std::size_t size) const { return reinterpret_cast<const TChar*>(Bytes(size)); }

 private:
  static constexpr std::size_t kPiece = std::size_t{16} << 20;
  static constexpr std::size_t kRun = 2 * kNoCount + kPiece;
  static constexpr std::size_t kSize = kRun + 4096;

  char* bytes_ = nullptr;
};

}  // namespace support
