// Public converters between the forms of a text, over the whole text in memory.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "Contents.h"

/// Bytes that nobody has cleared before they are written.
struct Converted {
  std::unique_ptr<char[]> bytes;
  std::size_t count;
};

/// Text in the form of `kind`, without its mark, to UTF-16 with low byte first, or back.
enum class Direction { kToUnits, kFromUnits };

Converted ConvertByIconv(std::string_view text, ContentKind kind, Direction direction);
Converted ConvertByIcu(std::string_view text, ContentKind kind, Direction direction);
