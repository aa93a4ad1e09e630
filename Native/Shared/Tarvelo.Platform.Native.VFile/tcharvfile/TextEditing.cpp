#include <string>

#include "tcharvfile/TCharVFile.h"
#include "tcharvfile/UnitCount.h"

using tcharvfile::TCharsToBytes;
using tcharvfile::Twice;

namespace {

std::int32_t LengthOf(const TChar* text) { return static_cast<std::int32_t>(std::char_traits<TChar>::length(text)); }
std::int32_t LengthOf(const TString& text) { return static_cast<std::int32_t>(text.size()); }

}  // namespace

/// Puts a caller's units in at a byte position, through the slot.
void TCharVFile::InsertAt(std::int32_t position, const TChar* units, std::int32_t count) {
  ReplaceBuf(position, 0, units, Twice(count));
}

// ---- Insert ----

void TCharVFile::InsertTChar(TChar unit) { InsertAt(pos, &unit, 1); }
void TCharVFile::InsertTChar(TChar unit, std::int32_t count) {
  while (count-- > 0) InsertTChar(unit);
}
void TCharVFile::InsertTChars(const TChar* units, std::int32_t count) { InsertAt(pos, units, count); }
void TCharVFile::InsertTChars(const TString& units, std::int32_t count) { InsertAt(pos, units.data(), count); }
void TCharVFile::InsertTStr(const TChar* text) { InsertAt(pos, text, LengthOf(text)); }
void TCharVFile::InsertTStr(const TString& text) { InsertAt(pos, text.data(), LengthOf(text)); }
void TCharVFile::InsertTChars(const TCharVFile& source, std::int32_t start, std::int32_t len) {
  ReplaceTxt(pos, 0, source, TCharsToBytes(start), TCharsToBytes(len));
}

// ---- Append ----

void TCharVFile::AppendTChar(TChar unit) { InsertAt(length, &unit, 1); }
void TCharVFile::AppendTChar(TChar unit, std::int32_t count) {
  while (count-- > 0) AppendTChar(unit);
}
void TCharVFile::AppendTChars(const TChar* units, std::int32_t count) { InsertAt(length, units, count); }
void TCharVFile::AppendTChars(const TString& units, std::int32_t count) { InsertAt(length, units.data(), count); }
void TCharVFile::AppendTStr(const TChar* text) { InsertAt(length, text, LengthOf(text)); }
void TCharVFile::AppendTStr(const TString& text) { InsertAt(length, text.data(), LengthOf(text)); }
void TCharVFile::AppendTChars(const TCharVFile& source, std::int32_t start, std::int32_t len) {
  ReplaceTxt(length, 0, source, TCharsToBytes(start), TCharsToBytes(len));
}

// ---- Delete and replace ----

void TCharVFile::DeleteTChars(std::int32_t start, std::int32_t count) {
  ReplaceBuf(TCharsToBytes(start), TCharsToBytes(count), nullptr, 0);
}
void TCharVFile::TruncateTChars() { ReplaceBuf(pos, MaxLen, nullptr, 0); }
void TCharVFile::ReplaceTChar(std::int32_t position, TChar unit) {
  VFile::ReplaceBuf(TCharsToBytes(position), 2, &unit, 2);
}

// ---- Assignment ----

TCharVFile& TCharVFile::operator=(TChar unit) {
  VFile::ReplaceBuf(0, length, &unit, 2);
  return *this;
}

TCharVFile& TCharVFile::operator=(const TChar* text) {
  VFile::ReplaceBuf(0, length, text, Twice(LengthOf(text)));
  return *this;
}

TCharVFile& TCharVFile::operator=(const TString& text) {
  VFile::ReplaceBuf(0, length, text.data(), Twice(LengthOf(text)));
  return *this;
}

// A text may be its own source.
TCharVFile& TCharVFile::operator=(const TCharVFile& source) {  // NOLINT(bugprone-unhandled-self-assignment)
  VFile::ReplaceTxt(0, length, source, 0, MaxLen);
  return *this;
}
