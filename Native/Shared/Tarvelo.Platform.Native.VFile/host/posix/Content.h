/// @file
/// The content of a file, from one descriptor to another.
#pragma once

#include <sys/stat.h>

namespace host::posix {

/// Copies what `source`, of that status, holds from its start to `target`, at whose start it lies: by the system as far as it
/// does that, and what it does not, for whatever reason, piece by piece. Where both are regular, a hole stays one. False with
/// the reason in the last error.
bool CopyContent(int source, const struct stat& status, int target);

}  // namespace host::posix
