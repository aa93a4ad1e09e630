/// @file
/// The assertions of virtual files, under their module word.
#pragma once

#include "host/Line.h"
#include "hsys/Require.h"

namespace vfile {

inline bool Require(bool holds, std::int32_t line = VFILE_LINE) { return hsys::Require(TSTR("VFile"), holds, line); }

inline bool Require(const TChar* proc, bool holds, const TChar* message) {
  return hsys::Require(TSTR("VFile"), proc, holds, message);
}

}  // namespace vfile
