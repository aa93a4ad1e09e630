#include <algorithm>
#include <cctype>
#include <cstring>

#include "hsys/WrapAdd.h"
#include "vfile/Meter.h"
#include "vfile/SearchText.h"
#include "vfile/VFile.h"

namespace {

std::int32_t LengthOf(const char* text) { return vfile::SearchLength(std::strlen(text)); }

bool IsWordByte(unsigned char byte) { return std::isalnum(byte) != 0; }

}  // namespace

/// A search of bytes: what it looks for does not change from one match to the next.
class VFile::ByteSearch : public vfile::SearchText<vfile::SearchedBytes> {
 public:
  ByteSearch(const char* text, std::int32_t size, Direction direction, bool ignoreCase)
      : SearchText(reinterpret_cast<const unsigned char*>(text), size, direction, ignoreCase) {}
};

bool VFile::Find(std::int32_t& position, const char* text, bool ignoreCase, bool wholeWord) {
  if (!OnOwnerThread()) return false;
  if (position < 0) {
    res = resCallError;
    return false;
  }
  const std::int32_t n = LengthOf(text);
  if (n == 0) return true;
  ByteSearch search(text, n, ByteSearch::kForward, ignoreCase);
  vfile::Pass pass(meter, length - std::min(position, length));
  return FindNext(search, pass, position, n, wholeWord);
}

bool VFile::FindNext(ByteSearch& search, vfile::Pass& pass, std::int32_t& position, std::int32_t n, bool wholeWord) {
  SetPos(position);
  do {
    if (!ScanForward(search, pass, position) || res != resDone) return false;
  } while (wholeWord && (IsWordByteBehind(position) || IsWordByteBefore(position - n)));
  return res == resDone;
}

bool VFile::FindBack(std::int32_t& position, const char* text, bool ignoreCase, bool wholeWord) {
  if (!OnOwnerThread()) return false;
  if (position < 0) {
    res = resCallError;
    return false;
  }
  const std::int32_t n = LengthOf(text);
  if (n == 0) return true;
  ByteSearch search(text, n, ByteSearch::kBackward, ignoreCase);
  vfile::Pass pass(meter, std::min(position, length));
  SetPos(position);
  do {
    if (!ScanBackward(search, pass, position) || res != resDone) return false;
  } while (wholeWord && (IsWordByteBefore(position) || IsWordByteBehind(position + n)));
  return res == resDone;
}

std::int32_t VFile::ReplaceGlobal(const char* oldText, const char* newText, bool ignoreCase, bool wholeWord) {
  if (!OnOwnerThread()) return 0;
  const std::int32_t n = LengthOf(oldText);
  const std::size_t m = std::strlen(newText);
  if (n == 0) {
    res = resCallError;
    return 0;
  }
  ByteSearch search(oldText, n, ByteSearch::kForward, ignoreCase);
  vfile::Pass pass(meter, length);
  std::int32_t count = 0;
  for (std::int32_t at = 0; FindNext(search, pass, at, n, wholeWord); ++count) {
    if (AdmitSize(m)) ReplaceBuf(at - n, n, newText, static_cast<std::int32_t>(m));
    if (res != resDone) break;
    // Behind the new text, which is not searched again.
    at = pos;
  }
  return count;
}

// The bytes next to a match. An end of the file reads as 0, which is no word byte, and so does what is refused: the search looks
// at `res`.

bool VFile::IsWordByteBehind(std::int32_t position) {
  unsigned char byte;
  MoveOn(position);
  ReadByte(byte);
  return IsWordByte(byte);
}

bool VFile::IsWordByteBefore(std::int32_t position) {
  unsigned char byte;
  MoveOn(position);
  ReadPrevByte(byte);
  return IsWordByte(byte);
}

// The two scans. Each goes through the file once, block by block. Found or not, one byte more than the match has been read
// in the end, or the end of the file been met, and `position` counts the bytes.

bool VFile::ScanForward(ByteSearch& search, vfile::Pass& pass, std::int32_t& position) {
  search.Restart();
  RunBuffer spare;
  MoveOn(position);
  for (;;) {
    const Run run = RunForward(spare);
    if (run.count == 0) {
      eof = true;
      position = hsys::WrapAdd(position, 1);
      return false;
    }
    const std::int32_t taken = search.FeedForward(run.bytes, run.count);
    const std::int32_t used = taken < 0 ? run.count : taken;
    Skip(used);
    position += used;
    if (!pass.Advance(used)) return false;
    if (taken < 0) continue;
    unsigned char behind;
    ReadByte(behind);
    return true;
  }
}

bool VFile::ScanBackward(ByteSearch& search, vfile::Pass& pass, std::int32_t& position) {
  search.Restart();
  RunBuffer spare;
  position = std::min(position, length);
  MoveOn(position);
  for (;;) {
    const Run run = RunBackward(spare);
    if (run.count == 0) {
      eof = true;
      position = -1;
      return false;
    }
    const std::int32_t taken = search.FeedBackward(run.bytes, run.count);
    const std::int32_t used = taken < 0 ? run.count : taken;
    Skip(-used);
    position -= used;
    if (!pass.Advance(used)) return false;
    if (taken < 0) continue;
    unsigned char before;
    ReadPrevByte(before);
    return true;
  }
}
