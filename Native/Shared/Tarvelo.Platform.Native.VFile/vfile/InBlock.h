/// @file
/// The short ways of an operation that stays in the block where the cursor is. Each has the outcome of the walk.
#pragma once

#include <algorithm>

#include "vfile/VFile.h"

/// Moves to `position`, 0 to `length`, if that is in the current block.
inline bool VFile::MoveInBlock(std::int32_t position) {
  const std::int32_t ix = position - cur.base;
  if (ix < 0 || (ix >= cur.ptr->len && cur.ptr != last)) return false;
  cur.ix = static_cast<std::int16_t>(ix);
  pos = position;
  eof = false;
  return true;
}

/// Whether the walk to a change at `position` ends in the current block, told by what lies close by.
inline bool VFile::StaysForChange(std::int32_t position) const {
  const std::int32_t ix = position - cur.base;
  const BlkDesc& block = *cur.ptr;
  if (ix == 0) return block.len > 0 && (block.prev == nullptr || block.prev->len >= BlkSize);
  return ix > 0 && (ix < block.len || (ix == block.len && (cur.ptr == last || block.len < BlkSize)));
}

/// Whether the change at `cursor` stays inside its block.
inline bool VFile::FitsInBlock(const BlkRdr& cursor, std::int32_t del, std::int32_t count) {
  return del <= cursor.ptr->len - cursor.ix && count <= BlkSize - (cursor.ptr->len - del);
}

/// The buffer gets newer than its page from the cursor on.
inline void VFile::MarkDirty() {
  dirtyFrom = bufDirty ? std::min(dirtyFrom, cur.ix) : cur.ix;
  bufDirty = true;
}
