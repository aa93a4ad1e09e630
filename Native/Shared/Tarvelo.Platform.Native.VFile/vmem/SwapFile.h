/// @file
/// The making of a swap file.
#pragma once

#include "host/Handle.h"
#include "host/Unit.h"

namespace vmem {

/// Makes a new file of its own in `dir`, if that is a usable directory, else in the temporary directory. Puts its full
/// name into `name` of `capacity` units and gives the handle, which the caller owns; INVALID_HANDLE_VALUE if none of
/// 100000 names could be made. Halts with `HaltA` under "VMem" for a null `name` or a capacity of 0.
HANDLE CreateSwapFile(TChar* name, std::uint32_t capacity, const TChar* dir);

}  // namespace vmem
