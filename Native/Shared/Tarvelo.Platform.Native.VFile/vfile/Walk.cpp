#include "vfile/Walk.h"

namespace {

void Forward(BlkRdr& cursor, std::int32_t position) {
  while (cursor.ptr->len + cursor.base <= position && cursor.ptr->next != nullptr) {
    cursor.base += cursor.ptr->len;
    cursor.ptr = cursor.ptr->next;
  }
}

void StepBack(BlkRdr& cursor) {
  cursor.ptr = cursor.ptr->prev;
  cursor.base -= cursor.ptr->len;
}

void Backward(BlkRdr& cursor, std::int32_t position) {
  while (position < cursor.base && cursor.ptr->prev != nullptr) StepBack(cursor);
}

}  // namespace

void vfile::Walk(BlkRdr& cursor, BlkDesc* first, BlkDesc* last, std::int32_t length, std::int32_t position,
                 bool forChange) {
  const std::int32_t lastBase = length - last->len;
  if (position < cursor.base) {
    if (position < first->len || position < cursor.base / 2) {
      cursor.ptr = first;
      cursor.base = 0;
      Forward(cursor, position);
    } else {
      Backward(cursor, position);
    }
  } else if (position - cursor.base >= cursor.ptr->len) {
    if (position >= lastBase) {
      cursor.ptr = last;
      cursor.base = lastBase;
    } else if (position - cursor.base < (length - cursor.base) / 2) {
      Forward(cursor, position);
    } else {
      cursor.ptr = last;
      cursor.base = lastBase;
      Backward(cursor, position);
    }
  }
  const auto hasRoomBefore = [&] { return cursor.ptr->prev != nullptr && cursor.ptr->prev->len < BlkSize; };
  if (forChange && position == cursor.base && hasRoomBefore()) {
    do StepBack(cursor);
    while (cursor.ptr->len == 0 && hasRoomBefore());
  }
  cursor.ix = static_cast<std::int16_t>(position - cursor.base);
}
