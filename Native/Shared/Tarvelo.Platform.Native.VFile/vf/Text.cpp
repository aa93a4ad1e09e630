#include "vf/Text.h"

#include <algorithm>

#include "tcharvfile/Inside.h"
#include "tcharvfile/UnitCount.h"
#include "vf/Ranges.h"
#include "vfile/Meter.h"

using vfile::Inside;

namespace vf {
namespace {

/// One change by the bytes of a view.
void Put(VFile& file, std::int32_t position, std::int32_t del, const void* bytes, std::size_t size) {
  if (Inside::AdmitSize(file, size)) file.ReplaceBuf(position, del, bytes, static_cast<std::int32_t>(size));
}

void Put(VFile& file, std::int32_t position, std::int32_t del, std::string_view bytes) {
  Put(file, position, del, bytes.data(), bytes.size());
}

void Put(VFile& file, std::int32_t position, std::int32_t del, TStringView units) {
  Put(file, position, del, units.data(), tcharvfile::SizeInBytes(units.size()));
}

/// `read(position, elements, count)` reads up to `count` elements of the `length` that there are.
template <typename String, typename Read>
String PartOf(std::int32_t length, std::int32_t position, std::int32_t count, Read read) {
  String part;
  if (position < 0 || position >= length || count <= 0) return part;
  count = std::min(count, length - position);
  part.resize(static_cast<std::size_t>(count));
  part.resize(static_cast<std::size_t>(read(position, part.data(), count)));
  return part;
}

/// Orders the pieces of a file of `length` elements against something of `otherLength`, of which `other(from, count)` gives as a view
/// as many as there are. `meter` is that of one of them, or null.
template <typename Pieces, typename Other>
std::strong_ordering CompareWith(const Pieces& pieces, std::int32_t length, std::size_t otherLength, Other other,
                                 vfile::Meter* meter) {
  constexpr std::int64_t kWidth = sizeof(typename Pieces::View::value_type);
  const auto shorter = static_cast<std::int64_t>(std::min(static_cast<std::size_t>(length), otherLength));
  vfile::Pass pass(meter, shorter * kWidth);
  std::size_t compared = 0;
  for (const auto piece : pieces) {
    const auto part = other(compared, piece.size());
    const int order = piece.substr(0, part.size()).compare(part);
    if (order != 0) return order <=> 0;
    if (part.size() < piece.size()) return std::strong_ordering::greater;
    compared += piece.size();
    if (!pass.Advance(static_cast<std::int64_t>(piece.size()) * kWidth)) return std::strong_ordering::greater;
  }
  // There is less than the length says only behind a halt that returned.
  if (compared < static_cast<std::size_t>(length)) return std::strong_ordering::greater;
  return compared <=> otherLength;
}

}  // namespace

void Insert(VFile& file, std::string_view bytes) { Put(file, file.GetPos(), 0, bytes); }
void Replace(VFile& file, std::string_view bytes) { Put(file, file.GetPos(), SameLen, bytes); }
void Append(VFile& file, std::string_view bytes) { Put(file, file.Length(), 0, bytes); }
void Assign(VFile& file, std::string_view bytes) { Put(file, 0, MaxLen, bytes); }

void Insert(TCharVFile& text, TStringView units) {
  VFile& file = Inside::FileOf(text);
  Put(file, file.GetPos(), 0, units);
}

void Replace(TCharVFile& text, TStringView units) {
  VFile& file = Inside::FileOf(text);
  Put(file, file.GetPos(), SameLen, units);
}

void Append(TCharVFile& text, TStringView units) {
  VFile& file = Inside::FileOf(text);
  Put(file, file.Length(), 0, units);
}

void Assign(TCharVFile& text, TStringView units) { Put(Inside::FileOf(text), 0, MaxLen, units); }

VFile FileFrom(std::string_view bytes) {
  VFile file;
  Assign(file, bytes);
  return file;
}

TCharVFile TextFrom(TStringView units) {
  TCharVFile text;
  Assign(text, units);
  return text;
}

std::string ToString(const VFile& file, std::int32_t position, std::int32_t count) {
  const auto read = [&](std::int32_t at, char* bytes, std::int32_t n) { return file.ReadAt(at, bytes, n); };
  return PartOf<std::string>(file.Length(), position, count, read);
}

TString ToTString(const TCharVFile& text, std::int32_t position, std::int32_t count) {
  const auto read = [&](std::int32_t at, TChar* units, std::int32_t n) { return text.ReadTCharsAt(at, units, n); };
  return PartOf<TString>(text.TCharLength(), position, count, read);
}

std::string Utf8Of(const TCharVFile& text) { return Utf8Of(ToTString(text)); }

std::strong_ordering Compare(const VFile& file, std::string_view bytes) {
  if (!Inside::OnOwnerThread(file)) return std::strong_ordering::greater;
  const auto other = [&](std::size_t from, std::size_t count) {
    return bytes.substr(std::min(from, bytes.size()), count);
  };
  return CompareWith(Pieces(file), file.Length(), bytes.size(), other, Inside::MeterOf(file));
}

std::strong_ordering Compare(const TCharVFile& text, TStringView units) {
  const VFile& file = Inside::FileOf(text);
  if (!Inside::OnOwnerThread(file)) return std::strong_ordering::greater;
  const auto other = [&](std::size_t from, std::size_t count) {
    return units.substr(std::min(from, units.size()), count);
  };
  return CompareWith(Pieces(text), text.TCharLength(), units.size(), other, Inside::MeterOf(file));
}

std::strong_ordering Compare(const TCharVFile& text, const TCharVFile& other) {
  const VFile& file = Inside::FileOf(text);
  const VFile& otherFile = Inside::FileOf(other);
  if (!Inside::OnOwnerThread(file) || !Inside::OnOwnerThread(otherFile)) return std::strong_ordering::greater;
  TChar units[BlkSize / sizeof(TChar)];
  const auto part = [&](std::size_t from, std::size_t count) {
    const std::int32_t got =
        other.ReadTCharsAt(static_cast<std::int32_t>(from), units, static_cast<std::int32_t>(count));
    return TStringView(units, static_cast<std::size_t>(got));
  };
  vfile::Meter* meter = Inside::MeterOf(file) != nullptr ? Inside::MeterOf(file) : Inside::MeterOf(otherFile);
  return CompareWith(Pieces(text), text.TCharLength(), static_cast<std::size_t>(other.TCharLength()), part, meter);
}

}  // namespace vf
