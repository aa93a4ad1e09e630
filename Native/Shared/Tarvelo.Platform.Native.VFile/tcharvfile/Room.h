/// @file
/// Room for a text in process memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace tcharvfile {

/// Room for `count` elements, or null where the heap has none.
template <typename Element>
std::unique_ptr<Element[]> Room(std::size_t count) {
  // More would be the standard exception, where addresses have 32 bits.
  if (count > std::size_t{PTRDIFF_MAX} / sizeof(Element)) return nullptr;
  return std::unique_ptr<Element[]>(new (std::nothrow) Element[count]);
}

}  // namespace tcharvfile
