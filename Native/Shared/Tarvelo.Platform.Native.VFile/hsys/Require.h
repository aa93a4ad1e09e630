/// @file
/// The library's assertion, in the form that stays harmless behind a halt that returned.
#pragma once

#include <cstdint>

#include "host/Line.h"
#include "hsys/Halt.h"

namespace hsys {

/// Halts with `HaltA` under the module's word and the caller's source line unless `holds`, which it gives back:
/// `if (!Require(module, condition)) return;`.
inline bool Require(const TChar* module, bool holds, std::int32_t line = VFILE_LINE) {
  if (!holds) [[unlikely]]
    HaltA(module, line);
  return holds;
}

/// The same for a named invariant of the procedure `proc`.
inline bool Require(const TChar* module, const TChar* proc, bool holds, const TChar* message) {
  if (!holds) [[unlikely]]
    Halt(module, proc, message);
  return holds;
}

}  // namespace hsys
