/// @file
/// Bytes and units by view: in, out and compared, counted, 0 included.
///
///     const std::string name = "world";
///     VFile file = vf::FileFrom("hello ");
///     file << name << '!';
///     vf::Append(file, std::string_view("\0\n", 2));
///     return file == std::string_view("hello world!\0\n", 14) && vf::ToString(file, 6, 5) == name ? resDone : resNotDone;
///
/// A byte file takes whatever a `std::string_view` takes: strings, views, literals, pointers to a terminated text. A text takes the same in
/// units. Numbers, truths, null and characters of another width do not compile; a single character goes by the file's own operations.
/// `<<`, `==` and `<=>` serve strings and views alone: literals and pointers stay with the file's own operators.
///
/// Changes are one change each, by the virtual `ReplaceBuf`, and follow `res` as the classes' own do; a view of 2^31 bytes or more is
/// `resTooLong`. The position then stands behind the new bytes. Nothing is copied but into the file. Thread, halts: as for the class.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/Export.h"
#include "host/Unit.h"
#include "tcharvfile/TCharVFile.h"
#include "vf/Names.h"

namespace vf {

/// What stands for units, likewise.
template <typename Text>
concept UnitText = std::convertible_to<const Text&, TStringView> && !std::same_as<Text, std::nullptr_t>;

/// @{
/// What has a view and is no pointer or array.
template <typename Text>
concept ByteString = ByteText<Text> && !std::convertible_to<const Text&, const char*>;
template <typename Text>
concept UnitString = UnitText<Text> && !std::convertible_to<const Text&, const TChar*>;
/// @}

/// What could stand for a null pointer.
template <typename Value>
concept NoText = std::integral<Value> || std::same_as<Value, std::nullptr_t>;

// ---- Into a file ----

/// @{
/// Puts the bytes in: at the position, nothing going out; at the position, over as many; at the end; as the whole content.
VFILE_API void Insert(VFile& file, std::string_view bytes);
VFILE_API void Replace(VFile& file, std::string_view bytes);
VFILE_API void Append(VFile& file, std::string_view bytes);
VFILE_API void Assign(VFile& file, std::string_view bytes);
/// @}
/// @{
/// The same of units and a text.
VFILE_API void Insert(TCharVFile& text, TStringView units);
VFILE_API void Replace(TCharVFile& text, TStringView units);
VFILE_API void Append(TCharVFile& text, TStringView units);
VFILE_API void Assign(TCharVFile& text, TStringView units);
/// @}
/// @{
// It would pass for a null pointer, and so for a text.
template <typename File, NoText Value>
void Insert(File& file, Value) = delete;
template <typename File, NoText Value>
void Replace(File& file, Value) = delete;
template <typename File, NoText Value>
void Append(File& file, Value) = delete;
template <typename File, NoText Value>
void Assign(File& file, Value) = delete;
template <typename File, NoText Value>
std::strong_ordering Compare(const File& file, Value) = delete;
template <NoText Value>
VFile FileFrom(Value) = delete;
template <NoText Value>
TCharVFile TextFrom(Value) = delete;
/// @}
/// @{
// A text takes units: `vf::UnitsOf` makes them of UTF-8.
template <ByteText Bytes>
void Insert(TCharVFile& text, const Bytes&) = delete;
template <ByteText Bytes>
void Replace(TCharVFile& text, const Bytes&) = delete;
template <ByteText Bytes>
void Append(TCharVFile& text, const Bytes&) = delete;
template <ByteText Bytes>
void Assign(TCharVFile& text, const Bytes&) = delete;
/// @}

/// @{
/// A new file with that content, and the position behind it; a failure stands in its `res`.
VFILE_API VFile FileFrom(std::string_view bytes);
VFILE_API TCharVFile TextFrom(TStringView units);
/// @}

// ---- Out of it ----

/// @{
/// `count` bytes or units from `position` on, as many as are there, as a string that the caller owns; the file is not moved. A heap without
/// room is `std::bad_alloc`.
VFILE_API std::string ToString(const VFile& file, std::int32_t position = 0, std::int32_t count = MaxLen);
VFILE_API TString ToTString(const TCharVFile& text, std::int32_t position = 0, std::int32_t count = MaxLen);
std::string ToString(const TCharVFile& text, std::int32_t position = 0, std::int32_t count = MaxLen) = delete;
/// @}
/// All of a text as UTF-8, likewise.
VFILE_API std::string Utf8Of(const TCharVFile& text);

// ---- Comparison ----

/// @{
/// Orders by bytes as unsigned values, or by units; the first difference decides, and a beginning of the other is less than it. Reads up
/// to that difference and moves nothing; behind a halt that returned, and where a vf/Progress.h ended it, it is `greater`.
VFILE_API std::strong_ordering Compare(const VFile& file, std::string_view bytes);
VFILE_API std::strong_ordering Compare(const TCharVFile& text, TStringView units);
VFILE_API std::strong_ordering Compare(const TCharVFile& text, const TCharVFile& other);
/// @}

}  // namespace vf

// The operators stand where a file's own are looked for.

/// @{
/// Writes as the `Write` family does, or inserts into a text, as their `<<` do.
template <vf::ByteString Bytes>
VFile& operator<<(VFile& file, const Bytes& bytes) {
  file.FlagOn(vfInsert) ? vf::Insert(file, bytes) : vf::Replace(file, bytes);
  return file;
}
template <vf::UnitString Units>
requires(!std::same_as<Units, TString>) TCharVFile& operator<<(TCharVFile& text, const Units& units) {
  vf::Insert(text, units);
  return text;
}
/// @}
/// @{
/// Whether the contents are equal, and `vf::Compare`.
template <vf::ByteString Bytes>
bool operator==(const VFile& file, const Bytes& bytes) {
  const std::string_view view = bytes;
  return view.size() == static_cast<std::size_t>(file.Length()) && std::is_eq(vf::Compare(file, view));
}
template <vf::ByteString Bytes>
std::strong_ordering operator<=>(const VFile& file, const Bytes& bytes) {
  return vf::Compare(file, bytes);
}
template <vf::UnitText Units>
bool operator==(const TCharVFile& text, const Units& units) {
  const vf::TStringView view = units;
  return view.size() == static_cast<std::size_t>(text.TCharLength()) && std::is_eq(vf::Compare(text, view));
}
template <vf::UnitText Units>
std::strong_ordering operator<=>(const TCharVFile& text, const Units& units) {
  return vf::Compare(text, vf::TStringView(units));
}
/// @}
