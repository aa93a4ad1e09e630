/// @file
/// Names of the host as text: how long they are here, and what separates their steps.
#pragma once

#include <cstdint>
#include <string>

#include "host/Unit.h"

namespace hsys {

/// Size of a buffer for a name of the host, in units, terminator included.
inline constexpr std::uint32_t kNameSize = 261;

/// Whether the unit separates the steps of a name.
constexpr bool IsDirSep(TChar unit) { return unit == '\\' || unit == '/'; }

/// Adds a separator to a name in a buffer of `size` units that is not empty and does not end in one, if it fits.
inline void CondAppendDirSep(TChar* name, std::uint32_t size) {
  const std::size_t length = std::char_traits<TChar>::length(name);
  if (length == 0 || IsDirSep(name[length - 1]) || length + 1 >= size) return;
  name[length] = '\\';
  name[length + 1] = 0;
}

}  // namespace hsys
