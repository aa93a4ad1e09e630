/// @file
/// What the fuzz targets share: a check that throws, and so ends a target, hexadecimal numbers in readable inputs, a scratch directory.
#pragma once

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

/// The target: runs one input. A fault ends the process.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

namespace fuzz {

inline void Check(bool holds, int line = __builtin_LINE(), const char* file = __builtin_FILE()) {
  if (!holds) throw std::logic_error(std::string(file) + ":" + std::to_string(line) + ": the check does not hold");
}

/// The number of `digits` hexadecimal digits at `at`, or -1.
inline int HexAt(const std::string& text, std::size_t at, std::size_t digits) {
  int value = -1;
  if (text.size() < at + digits) return -1;
  const char* end = text.data() + at + digits;
  return std::from_chars(text.data() + at, end, value, 16).ptr == end && value >= 0 ? value : -1;
}

/// Where files are made. Becomes the current directory.
class Scratch {
 public:
  Scratch() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vfile-fuzz-XXXXXX").string();
    Check(mkdtemp(pattern.data()) != nullptr);
    std::filesystem::current_path(pattern);
    path = std::filesystem::current_path();
  }
  ~Scratch() { std::filesystem::remove_all(path); }

  std::filesystem::path path;
};

}  // namespace fuzz
