// How a position is found in the chain: the rows of the walk decide the outcome, and walk short ways. For a long way the index
// finds the block.

#include <new>

#include "vfile/PositionIndex.h"
#include "vfile/VFile.h"

namespace {

/// Blocks that a walk passes before it asks the index.
constexpr std::int32_t kShortWay = 48;
/// The least blocks for which there is an index.
constexpr std::int32_t kLeastIndexed = 4 * kShortWay;

/// Walks forward to the block of the position, past up to `way` blocks; false where that is too far.
bool Forward(BlkRdr& cursor, std::int32_t position, std::int32_t way) {
  if ((position - cursor.base) / BlkSize > way) return false;
  for (; cursor.ptr->len + cursor.base <= position && cursor.ptr->next != nullptr; --way) {
    if (way == 0) return false;
    cursor.base += cursor.ptr->len;
    cursor.ptr = cursor.ptr->next;
  }
  return true;
}

void StepBack(BlkRdr& cursor) {
  cursor.ptr = cursor.ptr->prev;
  cursor.base -= cursor.ptr->len;
}

bool Backward(BlkRdr& cursor, std::int32_t position, std::int32_t way) {
  if ((cursor.base - position) / BlkSize > way) return false;
  for (; position < cursor.base && cursor.ptr->prev != nullptr; --way) {
    if (way == 0) return false;
    StepBack(cursor);
  }
  return true;
}

}  // namespace

/// Moves `cursor`, valid for the chain, to `position`, 0 to `length`. Reads descriptors only, from the first block, the cursor or
/// the last block, whichever is nearest.
///
/// A position between two blocks becomes the start of the later one; the end of the file is the end of `last`. With `forChange` it
/// becomes the end of the earlier one if that has room, so that bytes that go in fill it.
void VFile::Walk(BlkRdr& cursor, std::int32_t position, bool forChange) const {
  const std::int32_t lastBase = length - last->len;
  bool found = true;
  if (position < cursor.base) {
    if (position < first->len || position < cursor.base / 2) {
      cursor.ptr = first;
      cursor.base = 0;
      found = Forward(cursor, position, kShortWay);
    } else {
      found = Backward(cursor, position, kShortWay);
    }
  } else if (position - cursor.base >= cursor.ptr->len) {
    if (position >= lastBase) {
      cursor.ptr = last;
      cursor.base = lastBase;
    } else if (position - cursor.base < (length - cursor.base) / 2) {
      found = Forward(cursor, position, kShortWay);
    } else {
      cursor.ptr = last;
      cursor.base = lastBase;
      found = Backward(cursor, position, kShortWay);
    }
  }
  if (!found) FindFar(cursor, position);
  const auto hasRoomBefore = [&] { return cursor.ptr->prev != nullptr && cursor.ptr->prev->len < BlkSize; };
  if (forChange && position == cursor.base && hasRoomBefore()) {
    do StepBack(cursor);
    while (cursor.ptr->len == 0 && hasRoomBefore());
  }
  cursor.ix = static_cast<std::int16_t>(position - cursor.base);
}

/// Moves to the block of a position that is no short way from the cursor, by the index, which it makes if there is none. Without
/// memory for one it walks on.
void VFile::FindFar(BlkRdr& cursor, std::int32_t position) const {
  if (index == nullptr && blockCount >= kLeastIndexed) {
    index = new (std::nothrow) vfile::PositionIndex;
    if (index != nullptr && !index->Build(first, blockCount)) DropIndex();
    if (index != nullptr) index->settledLen = cur.ptr->len;
  }
  if (index != nullptr) {
    SettleCurLen();
    index->Find(cursor, position);
  } else {
    Forward(cursor, position, blockCount);
    Backward(cursor, position, blockCount);
  }
}

/// Tells the index the length of the current block, if that has changed.
void VFile::SettleCurLen() const {
  if (index->settledLen == cur.ptr->len) return;
  index->SetLen(index->Locate(cur.base), cur.ptr->len);
  index->settledLen = cur.ptr->len;
}

void VFile::DropIndex() const {
  delete index;
  index = nullptr;
}

/// Drops an index that is not worth its room.
void VFile::CheckIndex() {
  if (index != nullptr && (blockCount < kLeastIndexed / 2 || index->IsSparse(blockCount))) DropIndex();
}
