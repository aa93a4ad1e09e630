/// @file
/// The record that a search in a directory fills.
#pragma once

#include "host/Unit.h"

namespace host {

/// What a find has found. Of the host's record this library reads the name alone.
struct _wfinddata64i32_t {
  TChar name[260];  ///< The bare name, terminated. No name of the host is longer.
};

}  // namespace host
