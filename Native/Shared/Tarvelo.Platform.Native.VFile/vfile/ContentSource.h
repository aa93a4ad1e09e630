/// @file
/// What becomes the whole content of a file, a piece at a time.
#pragma once

#include <cstdint>

namespace vfile {

class ContentSource {
 public:
  ContentSource(const ContentSource&) = delete;
  ContentSource& operator=(const ContentSource&) = delete;

  /// Puts the next `BlkSize` bytes into `bytes`, or at the end fewer, and gives how many; -1 if they cannot be had, for a reason that
  /// stands in the file's `res`. May read the file, whose content is still the old one, by its position.
  virtual std::int32_t Next(unsigned char* bytes) = 0;

 protected:
  ContentSource() = default;
  ~ContentSource() = default;
};

}  // namespace vfile
