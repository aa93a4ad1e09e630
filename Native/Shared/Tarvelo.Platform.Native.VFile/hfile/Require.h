/// @file
/// The assertions of files of the host, under their module word.
#pragma once

#include "host/Line.h"
#include "hsys/Require.h"

namespace hfile {

inline bool Require(bool holds, std::int32_t line = VFILE_LINE) { return hsys::Require(TSTR("HFile"), holds, line); }

}  // namespace hfile
