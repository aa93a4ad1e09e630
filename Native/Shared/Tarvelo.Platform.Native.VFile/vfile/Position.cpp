#include <algorithm>

#include "hsys/WrapAdd.h"
#include "vfile/InBlock.h"
#include "vfile/VFile.h"

void VFile::SetPos(std::int32_t position) {
  if (!OnOwnerThread()) return;
  if (position < 0) {
    res = resCallError;
    return;
  }
  res = resDone;
  MoveOn(position);
}

/// `SetPos` in the middle of an operation: a refusal that stands in `res` stays there. Gives whether it moved.
bool VFile::MoveOn(std::int32_t position) {
  position = std::min(position, length);
  if (MoveInBlock(position)) return true;
  BlkRdr target = cur;
  Walk(target, position, false);
  if (!MoveTo(target)) return false;
  pos = position;
  eof = false;
  return true;
}

void VFile::SetPos(std::int32_t offset, std::int32_t origin) {
  switch (origin) {
    case 0:
      return SetPos(offset);
    case 1:
      return SetPos(hsys::WrapAdd(pos, offset));
    case 2:
      return SetPos(hsys::WrapAdd(length, offset));
    default:
      res = resCallError;
  }
}

void VFile::Reset() { SetPos(0); }

std::int32_t VFile::GetPos() const { return pos; }

std::int32_t VFile::Length() const { return length; }

bool VFile::Eof() const { return pos >= length; }

bool VFile::Bof() const { return pos <= 0; }
