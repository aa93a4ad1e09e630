/// @file
/// Where temporary files go when nobody has said it.
#pragma once

#include "host/Unit.h"
#include "hsys/HostNames.h"

namespace hsys {

/// Whether `name`, null counting as empty, is a directory in which files can be made and found, of at most 260 units.
bool IsUsableDirectory(const TChar* name);

/// Puts the temporary directory into `buffer` of `kNameSize` units: the value of "TMP", else that of "TEMP", each if it is
/// usable, else the host's last resort.
void FindTempDirectory(TChar (&buffer)[kNameSize]);

}  // namespace hsys
