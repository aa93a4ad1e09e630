/// @file
/// The text of a result code, shared by the two public tables.
#pragma once

#include <cstdint>

#include "host/Unit.h"

namespace hsys {

/// The text of `code`; a code out of range has a text as well.
const TChar* ResText(std::int32_t code);

}  // namespace hsys
