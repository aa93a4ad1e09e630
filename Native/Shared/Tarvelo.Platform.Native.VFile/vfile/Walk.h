/// @file
/// How a position is found in a chain.
#pragma once

#include "vfile/Blocks.h"

namespace vfile {

/// Moves `cursor`, valid for the chain from `first` to `last` of `length` bytes, to `position`, 0 to `length`. Reads
/// descriptors only, from the first block, the cursor or the last block, whichever is nearest.
///
/// A position between two blocks becomes the start of the later one; the end of the file is the end of `last`. With
/// `forChange` it becomes the end of the earlier one if that has room, so that bytes that go in fill it.
void Walk(BlkRdr& cursor, BlkDesc* first, BlkDesc* last, std::int32_t length, std::int32_t position, bool forChange);

}  // namespace vfile
