/// @file
/// A disk that is full, for tests.
#pragma once

#include <cstdint>

namespace support {

/// While it lives, no file of the process can grow past `bytes`: a write is cut there, and one that begins there gets 112. One at a
/// time.
class FullDisk {
 public:
  explicit FullDisk(std::uint32_t bytes);
  ~FullDisk();
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
};

}  // namespace support
