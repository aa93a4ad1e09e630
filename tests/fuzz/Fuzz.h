/// @file
/// What the fuzz targets share: a check that throws, and so ends a target, escapes in readable inputs, a scratch directory.
#pragma once

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

#include "host/Unit.h"

/// The target: runs one input. A fault ends the process.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

namespace fuzz {

inline void Check(bool holds, int line = __builtin_LINE(), const char* file = __builtin_FILE()) {
  if (!holds) throw std::logic_error(std::string(file) + ":" + std::to_string(line) + ": the check does not hold");
}

/// The bytes of a text as units; `escape` with so many hexadecimal digits stands for one.
inline TString Unescaped(const std::string& text, char escape, std::size_t digits) {
  TString units;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char* number = text.data() + at + 1;
    std::uint16_t unit = 0;
    if (text[at] == escape && text.size() - at > digits &&
        std::from_chars(number, number + digits, unit, 16).ptr == number + digits) {
      at += digits;
    } else {
      unit = static_cast<unsigned char>(text[at]);
    }
    units += static_cast<TChar>(unit);
  }
  return units;
}

/// Where files are made. Becomes the current directory.
class Scratch {
 public:
  Scratch() {
    std::random_device random;
    do path = std::filesystem::temp_directory_path() / ("vfile-fuzz-" + std::to_string(random()));
    while (!std::filesystem::create_directory(path));
    std::filesystem::current_path(path);
    path = std::filesystem::current_path();
  }
  ~Scratch() {
    std::filesystem::current_path(path.parent_path());
    std::filesystem::remove_all(path);
  }

  std::filesystem::path path;
};

}  // namespace fuzz
