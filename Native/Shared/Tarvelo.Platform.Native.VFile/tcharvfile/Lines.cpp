#include <exception>

#include "tcharvfile/TCharVFile.h"

namespace {

constexpr TChar kCr = 13;
constexpr TChar kLf = 10;

}  // namespace

std::int32_t TCharVFile::ReadLine(TChar* buffer, std::int32_t size) {
  if (buffer == nullptr || size < 1) {
    res = resCallError;
    return 0;
  }
  std::int32_t stored = 0;
  for (;;) {
    TChar unit = 0;
    ReadTChar(unit);
    if (eof || unit == kLf) break;
    if (unit == kCr) {
      const std::int32_t behindCr = pos;
      const std::int32_t standing = res;
      res = resDone;
      ReadTChar(unit);
      const bool refused = res != resDone;
      if (!refused && (eof || unit != kLf)) {
        SetPos(behindCr);
      } else if (!refused) {
        res = standing;
      }
      break;
    }
    if (stored < size - 1) buffer[stored++] = unit;
  }
  buffer[stored] = 0;
  return stored;
}

TString TCharVFile::ToString() {
  const std::int32_t count = TCharLength();
  if (count < 1) return {};
  TString text;
  try {
    text.resize(static_cast<std::size_t>(count));
  } catch (const std::exception&) {
    res = resHeapOverflow;
    return {};
  }
  SetPos(0);
  if (res == resDone) ReadTChars(text.data(), count);
  if (res != resDone) text.clear();
  return text;
}
