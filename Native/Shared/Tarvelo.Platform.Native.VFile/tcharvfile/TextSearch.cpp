#include <algorithm>
#include <string>

#include "host/Host.h"
#include "hsys/WrapAdd.h"
#include "tcharvfile/TCharVFile.h"
#include "tcharvfile/UnitCount.h"
#include "vfile/Meter.h"
#include "vfile/SearchText.h"

using tcharvfile::TCharsToBytes;

namespace {

std::size_t LengthOf(const TChar* text) { return std::char_traits<TChar>::length(text); }

bool IsWordUnit(TChar unit) { return host::iswalnum(unit); }

}  // namespace

/// A search of units: what it looks for does not change from one match to the next.
class TCharVFile::UnitSearch : public vfile::SearchText<vfile::SearchedUnits> {
 public:
  using SearchText::SearchText;
};

bool TCharVFile::FindTChars(std::int32_t& position, const TChar* text, bool ignoreCase, bool wholeWord) {
  if (position < 0) {
    res = resCallError;
    return false;
  }
  const std::int32_t n = vfile::SearchLength(LengthOf(text));
  if (n == 0) return true;
  UnitSearch search(text, n, UnitSearch::kForward, ignoreCase);
  vfile::Pass pass(meter, length - std::min(TCharsToBytes(position), length));
  return FindNext(search, pass, position, n, wholeWord);
}

bool TCharVFile::FindNext(UnitSearch& search, vfile::Pass& pass, std::int32_t& position, std::int32_t n,
                          bool wholeWord) {
  SetPos(TCharsToBytes(position));
  do {
    if (!ScanForward(search, pass, position) || res != resDone) return false;
  } while (wholeWord && (IsWordUnitBehind(position) || IsWordUnitBefore(position - n)));
  return res == resDone;
}

bool TCharVFile::FindTChars(std::int32_t& position, const TString& text, bool ignoreCase, bool wholeWord) {
  return FindTChars(position, text.c_str(), ignoreCase, wholeWord);
}

bool TCharVFile::FindBackTChars(std::int32_t& position, const TChar* text, bool ignoreCase, bool wholeWord) {
  if (position < 0) {
    res = resCallError;
    return false;
  }
  const std::int32_t n = vfile::SearchLength(LengthOf(text));
  if (n == 0) return true;
  UnitSearch search(text, n, UnitSearch::kBackward, ignoreCase);
  vfile::Pass pass(meter, std::min(TCharsToBytes(position), length));
  SetPos(TCharsToBytes(position));
  do {
    if (!ScanBackward(search, pass, position) || res != resDone) return false;
  } while (wholeWord && (IsWordUnitBefore(position) || IsWordUnitBehind(position + n)));
  return res == resDone;
}

bool TCharVFile::FindBackTChars(std::int32_t& position, const TString& text, bool ignoreCase, bool wholeWord) {
  return FindBackTChars(position, text.c_str(), ignoreCase, wholeWord);
}

std::int32_t TCharVFile::ReplaceGlobalTChars(const TChar* oldText, const TChar* newText, bool ignoreCase,
                                             bool wholeWord) {
  const std::int32_t n = vfile::SearchLength(LengthOf(oldText));
  const std::size_t size = tcharvfile::SizeInBytes(LengthOf(newText));
  if (n == 0) {
    res = resCallError;
    return 0;
  }
  UnitSearch search(oldText, n, UnitSearch::kForward, ignoreCase);
  vfile::Pass pass(meter, length);
  std::int32_t count = 0;
  for (std::int32_t at = 0; FindNext(search, pass, at, n, wholeWord); ++count) {
    if (AdmitSize(size)) {
      VFile::ReplaceBuf(TCharsToBytes(at - n), TCharsToBytes(n), newText, static_cast<std::int32_t>(size));
    }
    if (res != resDone) break;
    // Behind the new text, which is not searched again.
    at = GetTCharPos();
  }
  return count;
}

// The units next to a match. An end of the text reads as 0, which is no word unit, and so does what is refused: the search looks
// at `res`.

bool TCharVFile::IsWordUnitBehind(std::int32_t position) {
  TChar unit = 0;
  MoveOn(TCharsToBytes(position));
  ReadTChar(unit);
  return !eof && IsWordUnit(unit);
}

bool TCharVFile::IsWordUnitBefore(std::int32_t position) {
  TChar unit;
  MoveOn(TCharsToBytes(position));
  ReadPrevTChar(unit);
  return IsWordUnit(unit);
}

// The two scans. Each goes through the text once, block by block; the unit that a block border cuts is put together from its
// two bytes. Found or not, one unit more than the match has been read in the end, or the end of the text been met, and
// `position` counts the units.

bool TCharVFile::ScanForward(UnitSearch& search, vfile::Pass& pass, std::int32_t& position) {
  search.Restart();
  RunBuffer spare;
  unsigned char cut[2];
  bool isCut = false;
  MoveOn(TCharsToBytes(position));
  for (;;) {
    Run run = RunForward(spare);
    if (run.count == 0) {
      eof = true;
      position = hsys::WrapAdd(position, 1);
      return false;
    }
    if (isCut || run.count == 1) {
      cut[isCut ? 1 : 0] = run.bytes[0];
      Skip(1);
      isCut = !isCut;
      if (isCut) continue;
      run = {cut, 0};
    }
    // The unit in `cut` has been skipped already.
    const std::int32_t units = run.bytes == cut ? 1 : run.count / 2;
    const std::int32_t taken = search.FeedForward(run.bytes, units);
    const std::int32_t used = taken < 0 ? units : taken;
    if (run.bytes != cut) Skip(2 * used);
    position += used;
    if (!pass.Advance(2 * used)) return false;
    if (taken < 0) continue;
    TChar behind;
    ReadTChar(behind);
    return true;
  }
}

bool TCharVFile::ScanBackward(UnitSearch& search, vfile::Pass& pass, std::int32_t& position) {
  search.Restart();
  RunBuffer spare;
  unsigned char cut[2];
  bool isCut = false;
  position = std::min(position, TCharLength());
  MoveOn(TCharsToBytes(position));
  for (;;) {
    Run run = RunBackward(spare);
    if (run.count == 0) {
      eof = true;
      position = -1;
      return false;
    }
    if (isCut || run.count == 1) {
      cut[isCut ? 0 : 1] = run.bytes[run.count - 1];
      Skip(-1);
      isCut = !isCut;
      if (isCut) continue;
      run = {cut, 0};
    }
    const std::int32_t units = run.bytes == cut ? 1 : run.count / 2;
    const unsigned char* bytes = run.bytes == cut ? cut : run.bytes + run.count - 2 * units;
    const std::int32_t taken = search.FeedBackward(bytes, units);
    const std::int32_t used = taken < 0 ? units : taken;
    if (run.bytes != cut) Skip(-2 * used);
    position -= used;
    if (!pass.Advance(2 * used)) return false;
    if (taken < 0) continue;
    TChar before;
    ReadPrevTChar(before);
    return true;
  }
}
