#include <cstring>
#include <memory>

#include "host/Host.h"
#include "tcharvfile/Encodings.h"
#include "tcharvfile/Room.h"
#include "tcharvfile/TCharVFile.h"
#include "tcharvfile/UnitCount.h"

const TCharVFile::Encoding TCharVFile::DefaultEncoding = encUtf16;

namespace {

constexpr std::int32_t kUtf16Mark = 2;
constexpr std::int32_t kUtf8Mark = 3;

/// Units on the way into a text; null where the heap has no room for them.
struct Converted {
  explicit Converted(std::size_t size) : units(tcharvfile::Room<TChar>(size)), count(size) {}

  std::unique_ptr<TChar[]> units;
  std::size_t count;
};

Converted FromUtf8(const char* bytes, std::size_t length) {
  Converted text(length);
  if (text.units != nullptr) text.count = tcharvfile::Utf8ToUnits(bytes, length, text.units.get());
  return text;
}

Converted FromAnsi(const char* bytes, std::size_t length) {
  if (host::GetACP() == host::CP_UTF8) return FromUtf8(bytes, length);
  Converted text(host::MultiByteToWideChar(bytes, length, nullptr, 0));
  if (text.units != nullptr) host::MultiByteToWideChar(bytes, length, text.units.get(), text.count);
  return text;
}

}  // namespace

void TCharVFile::LoadText(const TChar* fileName, Encoding& encoding, std::uint32_t shareMode) {
  encoding = DefaultEncoding;
  Load(fileName, shareMode);
  if (res != resDone) return;
  const Encoding marked = ReadMark();
  if (res != resDone) return;
  encoding = marked;
  switch (encoding) {
    case encUtf16:
      ReplaceBuf(0, kUtf16Mark, nullptr, 0);
      break;
    case encUtf16BE:
      SwapContent();
      break;
    case encUtf8:
      ConvertContent(kUtf8Mark, FromUtf8);
      break;
    case encAnsi:
      ConvertContent(0, FromAnsi);
      break;
  }
  if (res == resDone) SetPos(0);
}

void TCharVFile::LoadText(const TChar* fileName, std::uint32_t shareMode) {
  Encoding encoding;
  LoadText(fileName, encoding, shareMode);
}

void TCharVFile::LoadText(const TString& fileName, Encoding& encoding, std::uint32_t shareMode) {
  LoadText(fileName.c_str(), encoding, shareMode);
}

void TCharVFile::LoadText(const TString& fileName, std::uint32_t shareMode) { LoadText(fileName.c_str(), shareMode); }

/// Tells the form of the raw content by its first bytes. A missing byte reads as 0.
TCharVFile::Encoding TCharVFile::ReadMark() {
  unsigned char b1;
  unsigned char b2;
  unsigned char b3;
  MoveOn(0);
  ReadByte(b1);
  ReadByte(b2);
  if (b1 == 0xFF && b2 == 0xFE) return encUtf16;
  if (b1 == 0xFE && b2 == 0xFF) return encUtf16BE;
  if (b1 != 0xEF || b2 != 0xBB) return encAnsi;
  ReadByte(b3);
  return b3 == 0xBF ? encUtf8 : encAnsi;
}

/// Empties the object, which cannot be converted for want of memory.
void TCharVFile::GiveUpContent() {
  ReplaceBuf(0, MaxLen, nullptr, 0);
  res = resHeapOverflow;
}

/// Replaces the raw content, UTF-16 with its high byte first, behind its mark. A last odd byte is dropped.
void TCharVFile::SwapContent() {
  const std::int32_t count = (length - kUtf16Mark) / 2;
  const auto units = tcharvfile::Room<TChar>(static_cast<std::size_t>(count) + 1);
  if (units == nullptr) return GiveUpContent();
  MoveOn(kUtf16Mark);
  ReadTChars(units.get(), count);
  if (res != resDone) return;
  for (std::int32_t i = 0; i < count; ++i) tcharvfile::SwapTChar(units[static_cast<std::size_t>(i)]);
  VFile::ReplaceBuf(0, length, units.get(), tcharvfile::Twice(count));
}

/// Replaces the raw content behind a mark of `mark` bytes by its conversion. It ends at its first 0 byte.
template <typename Convert>
void TCharVFile::ConvertContent(std::int32_t mark, Convert convert) {
  const std::int32_t count = length - mark;
  const auto bytes = tcharvfile::Room<char>(static_cast<std::size_t>(count) + 1);
  if (bytes == nullptr) return GiveUpContent();
  MoveOn(mark);
  ReadBytes(bytes.get(), count);
  if (res != resDone) return;
  bytes[static_cast<std::size_t>(count)] = '\0';
  const Converted text = convert(bytes.get(), std::strlen(bytes.get()));
  if (text.units == nullptr) return GiveUpContent();
  if (text.count > static_cast<std::size_t>(tcharvfile::kMaxUnits)) {
    res = resTooLong;
    return;
  }
  VFile::ReplaceBuf(0, length, text.units.get(), tcharvfile::Twice(static_cast<std::int32_t>(text.count)));
}
