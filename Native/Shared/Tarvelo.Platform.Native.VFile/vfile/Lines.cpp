// Lines: the bytes of a block are scanned at once. `pos` and `eof` end as if each byte of the line had been read for itself.

#include <algorithm>

#include "vfile/LineEnds.h"
#include "vfile/VFile.h"

using vfile::FindEol;
using vfile::kCr;
using vfile::kLf;

namespace {

constexpr unsigned char kBlank = 32;

}  // namespace

bool VFile::AdmitLine(std::int32_t position, std::int32_t line) {
  if (!OnOwnerThread(line)) return false;
  if (position < 0) res = resCallError;
  return position >= 0;
}

bool VFile::AfterCRLF(std::int32_t position) {
  if (!OnOwnerThread()) return false;
  unsigned char byte;
  SetPos(position);
  ReadPrevByte(byte);
  if (byte != kLf) return false;
  ReadPrevByte(byte);
  return byte == kCr;
}

bool VFile::BeforeCRLF(std::int32_t position) {
  if (!OnOwnerThread()) return false;
  unsigned char byte;
  SetPos(position);
  ReadByte(byte);
  if (byte != kCr) return false;
  ReadByte(byte);
  return byte == kLf;
}

bool VFile::BetweenCRLF(std::int32_t position) {
  if (!OnOwnerThread() || position < 1) return false;
  return BeforeCRLF(position - 1);
}

std::int32_t VFile::LineStart(std::int32_t position) {
  if (!AdmitLine(position)) return 0;
  position = std::min(position, length);
  if (position == 0) return 0;
  unsigned char byte;
  SetPos(position);
  ReadPrevByte(byte);
  if (byte == kCr) {
    MoveOn(position);
    ReadByte(byte);
    if (res != resDone) return 0;
    if (byte != kLf) return position;
    // Inside a pair: the line is the one that ends with it.
    --position;
  }
  MoveOn(position);
  if (res != resDone) return 0;
  RunBuffer spare;
  for (;;) {
    const Run run = RunBackward(spare);
    if (run.count == 0) {
      eof = true;
      return 0;
    }
    const std::int32_t start = vfile::FindEolBack(run.bytes, run.count);
    Skip(start - run.count);
    if (start == 0) continue;
    Skip(-1);
    return pos + 1;
  }
}

void VFile::LineSize(std::int32_t position, std::int32_t& start, std::int32_t& size, std::int32_t& eolSize) {
  if (!AdmitLine(position)) return;
  res = resDone;
  const std::int32_t lineStart = LineStart(position);
  if (res != resDone || !MoveOn(lineStart)) return;
  const std::int32_t textSize = SkipToEol();
  if (res != resDone) return;
  const std::int32_t endSize = SkipEol();
  if (res != resDone) return;
  start = lineStart;
  size = textSize + endSize;
  eolSize = endSize;
}

/// Moves to the end of the line, or of the file; gives the bytes to there.
std::int32_t VFile::SkipToEol() {
  std::int32_t skipped = 0;
  RunBuffer spare;
  for (;;) {
    const Run run = RunForward(spare);
    if (run.count == 0) return skipped;
    const std::int32_t n = FindEol(run.bytes, run.count);
    skipped += n;
    Skip(n);
    if (n < run.count) return skipped;
  }
}

/// Moves behind the line end that is here, by reading up to what is none; gives its bytes, 0 at the end of the file.
std::int32_t VFile::SkipEol() {
  unsigned char byte;
  ReadByte(byte);
  if (eof) return 0;
  if (byte != kCr) return 1;
  ReadByte(byte);
  return byte == kLf ? 2 : 1;
}

std::int32_t VFile::LineEnd(std::int32_t position, bool withEol) {
  if (!AdmitLine(position)) return 0;
  std::int32_t start = 0;
  std::int32_t size = 0;
  std::int32_t eolSize = 0;
  LineSize(position, start, size, eolSize);
  return start + size - (withEol ? 0 : eolSize);
}

std::int32_t VFile::LineIndent(std::int32_t position) {
  if (!AdmitLine(position)) return 0;
  res = resDone;
  MoveOn(LineStart(position));
  std::int32_t indent = 0;
  RunBuffer spare;
  for (;;) {
    const Run run = RunForward(spare);
    if (run.count == 0) {
      eof = true;
      return res == resDone ? indent : 0;
    }
    std::int32_t n = 0;
    while (n < run.count && run.bytes[n] == kBlank) ++n;
    indent += n;
    Skip(n);
    if (n == run.count) continue;
    // The byte that ended the count has been read.
    Skip(1);
    return indent;
  }
}
