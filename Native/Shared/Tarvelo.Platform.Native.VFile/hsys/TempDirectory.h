/// @file
/// Where temporary files go when nobody has said it.
#pragma once

#include <cstddef>

#include "host/Unit.h"

namespace hsys {

/// Size of a buffer for a name of the host, in units, terminator included.
inline constexpr std::size_t kNameSize = 261;

/// Whether `name`, null counting as empty, is a directory in which files can be made and found, of at most 260 units.
bool IsUsableDirectory(const TChar* name);

/// Puts the temporary directory into `buffer` of `kNameSize` units: the value of "TMP", else that of "TEMP", each if it is
/// usable, else the host's last resort.
void FindTempDirectory(TChar (&buffer)[kNameSize]);

}  // namespace hsys
