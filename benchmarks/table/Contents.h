// The files that the contestants work on: texts made of common words, alike in every run.
#pragma once

#include <cstdint>
#include <string>

enum class ContentKind {
  kText,       ///< ASCII, in lines of 80 bytes with their LF; z is the rarest letter, the space the commonest byte
  kMarked,     ///< the same with the mark at a place in each `kMarkDistance` bytes
  kAsciiUtf8,  ///< the same as `kText` behind the mark of UTF-8
  kUnits,      ///< the same as UTF-16, low byte first, with its mark
  kUtf8,       ///< with its mark; lines of 79 characters, every twelfth word of another script, on average
  kUtf16,      ///< the same, low byte first
  kUtf16Be,    ///< the same, high byte first
};

constexpr char kMark[] = "ERROR";
constexpr std::int64_t kMarkDistance = 4096;

/// Makes a file in the directory, unless it is there, and gives its name. It has exactly `size` bytes.
std::string ContentFile(const std::string& directory, ContentKind kind, std::int64_t size);
