/// @file
/// The assertions of files of the host, under their module word.
#pragma once

#include "hsys/Require.h"

namespace hfile {

inline bool Require(bool holds, std::int32_t line = __builtin_LINE()) {
  return hsys::Require(TSTR("HFile"), holds, line);
}

}  // namespace hfile
