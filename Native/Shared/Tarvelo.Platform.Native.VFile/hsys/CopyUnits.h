/// @file
/// Private heap copies of strings of units.
#pragma once

#include <algorithm>
#include <new>
#include <string>

#include "host/Unit.h"

namespace hsys {

/// A copy of `text`, terminator included, that the caller frees with `delete[]`; null if the heap is exhausted.
inline TChar* CopyUnits(const TChar* text) {
  const std::size_t size = std::char_traits<TChar>::length(text) + 1;
  auto* copy = new (std::nothrow) TChar[size];
  if (copy != nullptr) std::copy_n(text, size, copy);
  return copy;
}

}  // namespace hsys
