/// @file
/// How much of a file is still to be read.
#pragma once

#include <cstdint>

#include "host/Handle.h"

class HFile;

namespace hfile {

/// The bytes from the position of a regular file to its end; -1 where that cannot be told, as of a pipe. An estimate: others
/// may change the file meanwhile.
std::int64_t BytesLeft(HANDLE file);
std::int64_t BytesLeft(const HFile& file);

}  // namespace hfile
