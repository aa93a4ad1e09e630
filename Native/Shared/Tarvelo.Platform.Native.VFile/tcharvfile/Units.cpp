#include <algorithm>
#include <utility>

#include "tcharvfile/TCharVFile.h"
#include "tcharvfile/UnitCount.h"

using tcharvfile::TCharsToBytes;

TCharVFile::TCharVFile() = default;

TCharVFile::TCharVFile(const TCharVFile& source, std::int32_t start, std::int32_t len)
    : VFile(source, TCharsToBytes(start), TCharsToBytes(len)) {}

TCharVFile::TCharVFile(TCharVFile&& source) : VFile(std::move(source)) {}

TCharVFile::~TCharVFile() noexcept(false) = default;

std::int32_t TCharVFile::GetTCharPos() const { return pos >> 1; }

std::int32_t TCharVFile::TCharLength() const { return length >> 1; }

void TCharVFile::SetTCharPos(std::int32_t position) { SetPos(TCharsToBytes(position)); }

void TCharVFile::SetTCharPos(std::int32_t offset, std::int32_t origin) { SetPos(TCharsToBytes(offset), origin); }

void TCharVFile::ReadTChar(TChar& unit) { ReadBytes(&unit, sizeof unit); }

void TCharVFile::ReadPrevTChar(TChar& unit) {
  unsigned char high;
  unsigned char low;
  ReadPrevByte(high);
  ReadPrevByte(low);
  unit = static_cast<TChar>(high << 8 | low);
}

std::int32_t TCharVFile::ReadTChars(TChar* units, std::int32_t count) {
  return ReadBytes(units, TCharsToBytes(count)) >> 1;
}

std::int32_t TCharVFile::ReadTCharsAt(std::int32_t position, TChar* units, std::int32_t count) const {
  if (position < 0 || position >= TCharLength()) return 0;
  count = std::min(count, TCharLength() - position);
  return ReadAt(TCharsToBytes(position), units, TCharsToBytes(count)) >> 1;
}

void TCharVFile::Exchange(TCharVFile& other) { VFile::Exchange(other); }
