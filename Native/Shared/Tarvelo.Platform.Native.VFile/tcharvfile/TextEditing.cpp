#include <string>

#include "tcharvfile/TCharVFile.h"
#include "tcharvfile/UnitCount.h"

using tcharvfile::SizeInBytes;
using tcharvfile::TCharsToBytes;
using tcharvfile::Twice;

namespace {

std::size_t LengthOf(const TChar* text) { return std::char_traits<TChar>::length(text); }

}  // namespace

/// Puts a caller's units in at a byte position, through the slot.
void TCharVFile::InsertAt(std::int32_t position, const TChar* units, std::int32_t count) {
  ReplaceBuf(position, 0, units, Twice(count));
}

/// The same of a string of `count` units.
void TCharVFile::InsertTStrAt(std::int32_t position, const TChar* text, std::size_t count) {
  const std::size_t size = SizeInBytes(count);
  if (AdmitSize(size)) ReplaceBuf(position, 0, text, static_cast<std::int32_t>(size));
}

/// Makes a string of `count` units the whole content, by `VFile`'s own change.
void TCharVFile::AssignTStr(const TChar* text, std::size_t count) {
  const std::size_t size = SizeInBytes(count);
  if (AdmitSize(size)) VFile::ReplaceBuf(0, length, text, static_cast<std::int32_t>(size));
}

// ---- Insert ----

void TCharVFile::InsertTChar(TChar unit) { InsertAt(pos, &unit, 1); }
void TCharVFile::InsertTChar(TChar unit, std::int32_t count) {
  while (count-- > 0) InsertTChar(unit);
}
void TCharVFile::InsertTChars(const TChar* units, std::int32_t count) { InsertAt(pos, units, count); }
void TCharVFile::InsertTChars(const TString& units, std::int32_t count) { InsertAt(pos, units.data(), count); }
void TCharVFile::InsertTStr(const TChar* text) { InsertTStrAt(pos, text, LengthOf(text)); }
void TCharVFile::InsertTStr(const TString& text) { InsertTStrAt(pos, text.data(), text.size()); }
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
void TCharVFile::AppendTStr(const TChar* text) { InsertTStrAt(length, text, LengthOf(text)); }
void TCharVFile::AppendTStr(const TString& text) { InsertTStrAt(length, text.data(), text.size()); }
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
  AssignTStr(text, LengthOf(text));
  return *this;
}

TCharVFile& TCharVFile::operator=(const TString& text) {
  AssignTStr(text.data(), text.size());
  return *this;
}

// A text may be its own source.
TCharVFile& TCharVFile::operator=(const TCharVFile& source) {  // NOLINT(bugprone-unhandled-self-assignment)
  VFile::ReplaceTxt(0, length, source, 0, MaxLen);
  return *this;
}
