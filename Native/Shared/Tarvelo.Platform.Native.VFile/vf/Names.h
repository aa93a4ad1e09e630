/// @file
/// Names, texts and results between UTF-8 and the library's units.
///
///     const vf::Name name("big.log");  // UTF-8; a std::filesystem::path does as well
///     VFile file;
///     file.Load(name, FILE_SHARE_READ);
///     if (file.res != resDone) std::fprintf(stderr, "%s: %s\n", name.Utf8().c_str(), vf::MessageOf(file.res).c_str());
///     return file.res;
///
/// Everything here owns what it gives. A heap without room is `std::bad_alloc`. Thread: any.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "host/Export.h"
#include "host/Unit.h"
#include "hsys/Res.h"

namespace vf {

/// Units that belong to somebody else, counted.
using TStringView = std::basic_string_view<TChar>;

/// What stands for bytes: a view, a string, a literal or a pointer to a terminated text.
template <typename Text>
concept ByteText = std::convertible_to<const Text&, std::string_view> && !std::same_as<Text, std::nullptr_t>;

/// UTF-8 as units. Each maximal ill-formed subsequence becomes one U+FFFD.
VFILE_API TString UnitsOf(std::string_view utf8);
/// Units as UTF-8. An unpaired surrogate becomes EF BF BD.
VFILE_API std::string Utf8Of(TStringView units);

/// The name of a file, as units that end at the first U+0000. What the library calls a name, a `const TChar*`, this becomes by itself; the
/// pointer is good as long as the object and its content.
///
/// Where the system's names are bytes, a byte that is no UTF-8 or is a backslash, no separator to that system, stands as U+DC00 plus the
/// byte, so that every name goes there and back; a `TString` or `const TChar*` is taken as it is, and a backslash in it separates.
class VFILE_API Name {
 public:
  Name() = default;  ///< The empty name.
  /// @{
  /// The name that this is.
  Name(const std::filesystem::path& path);  // NOLINT(google-explicit-constructor): a name is what is meant
  /// In UTF-8.
  template <ByteText Text>
  Name(const Text& utf8) : Name(FromUtf8(), utf8) {}                          // NOLINT(google-explicit-constructor)
  Name(TStringView units) : units_(units.substr(0, units.find(TChar{0}))) {}  // NOLINT(google-explicit-constructor)
  Name(const TString& units) : Name(TStringView(units)) {}                    // NOLINT(google-explicit-constructor)
  Name(const TChar* units) : units_(units == nullptr ? TString() : units) {}  // NOLINT(google-explicit-constructor)
  Name(std::nullptr_t) = delete;
  /// @}

  /// @{
  /// The units, which end in a 0 where they are a pointer.
  operator const TChar*() const { return units_.c_str(); }  // NOLINT(google-explicit-constructor)
  explicit operator bool() const = delete;                  ///< The pointer is never null; look at `Units().empty()`.
  const TString& Units() const { return units_; }
  /// @}
  /// In UTF-8; where the system's names are bytes, these.
  std::string Utf8() const;
  std::filesystem::path Path() const;                                          ///< For the standard library's calls.
  bool operator==(const Name& other) const { return units_ == other.units_; }  ///< Unit by unit.
  std::strong_ordering operator<=>(const Name& other) const { return units_ <=> other.units_; }  ///< By units.

 private:
  struct FromUtf8 {};
  Name(FromUtf8, std::string_view utf8);

  TString units_;
};

/// The English text of a result code, see hsys/Res.h.
VFILE_API std::string MessageOf(std::int32_t res);

/// A result that is not `resDone`, as an exception. `what()` is the name in UTF-8, if there is one, and the text.
class Error : public std::runtime_error {
 public:
  /// @{
  /// Of a result, and of what it was met with.
  explicit Error(std::int32_t res) : std::runtime_error(MessageOf(res)), res_(res) {}
  Error(std::int32_t res, const Name& name) : std::runtime_error(name.Utf8() + ": " + MessageOf(res)), res_(res) {}
  /// @}

  std::int32_t Res() const { return res_; }  ///< The result.

 private:
  std::int32_t res_;
};

/// @{
/// Throws an `Error` unless `res` is `resDone`. Nothing else of the library throws of itself.
inline void Check(std::int32_t res) {
  if (res != resDone) throw Error(res);
}
inline void Check(std::int32_t res, const Name& name) {
  if (res != resDone) throw Error(res, name);
}
/// @}
/// @{
/// The same of what stands in the `res` of a file, which is then `resDone`, so that who catches the `Error` may go on with the file.
template <typename File>
requires requires(File& file) { file.res; }
void Check(File& file) { Check(std::exchange(file.res, resDone)); }
template <typename File>
requires requires(File& file) { file.res; }
void Check(File& file, const Name& name) { Check(std::exchange(file.res, resDone), name); }
/// @}

}  // namespace vf
