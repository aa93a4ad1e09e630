/// @file
/// The characters of a text, as code points.
///
///     TCharVFile text;
///     text = TSTR("na\u00EFve \U0001F600");
///     vf::CharacterReader reader(text);
///     std::int32_t beyond = 0;
///     for (char32_t character; reader.Next(character);) beyond += character > 0x7F ? 1 : 0;
///     return beyond == 2 ? resDone : resNotDone;
#pragma once

#include <cstdint>

#include "host/Export.h"
#include "host/Unit.h"
#include "tcharvfile/TCharVFile.h"

namespace vf {

/// Goes through a text character by character, forward and back. The text stays where it is, its position too.
///
/// A surrogate pair is one character. An unpaired surrogate is given as itself; so is a half of a pair when the reader stands between
/// the two: `Next` gives the low one, `Previous` the high one.
///
/// Units: positions are UTF-16 code units; below 0 they stand for the start, beyond the end for the end.
///
/// Owns: a copy of a few hundred units, which it has read ahead. The text must outlive it, and after a change of the text `SetPosition` comes
/// first; without it characters of before may still come, and in a checking build the next step halts. A copy goes on from the same
/// place on its own.
///
/// Thread, halts: as `TCharVFile::ReadTCharsAt`; behind a halt that returned it is at an end. Cost: some nanoseconds a step, and a walk
/// to the position every few hundred units.
class VFILE_API CharacterReader {
 public:
  /// Stands at `position`.
  explicit CharacterReader(const TCharVFile& text, std::int32_t position = 0);
  CharacterReader(const TCharVFile&&, std::int32_t = 0) = delete;

  /// The character at the position, which moves behind it. False at the end, with both as they were.
  bool Next(char32_t& character) {
    if (at_ == end_ || IsSurrogate(units_[at_])) return StepForward(character);
    character = units_[at_++];
    return true;
  }
  /// The character before the position, which moves to its start. False at the start, with both as they were.
  bool Previous(char32_t& character) {
    if (at_ == 0 || IsSurrogate(units_[at_ - 1])) return StepBackward(character);
    character = units_[--at_];
    return true;
  }
  std::int32_t Position() const { return base_ + at_; }  ///< Where it stands.
  /// Moves there, and looks at the text as it is now.
  void SetPosition(std::int32_t position);

 private:
  static constexpr std::int32_t kUnits = 512;

  static bool IsSurrogate(TChar unit) { return (unit & 0xF800) == 0xD800; }
  bool StepForward(char32_t& character);
  bool StepBackward(char32_t& character);
  VFILE_LOCAL bool IsCurrent() const;
  VFILE_LOCAL void Read(std::int32_t from);
  VFILE_LOCAL void Forget();

  const TCharVFile* text_;
  std::uint32_t changes_;  // of the text, when the reader was placed
  std::int32_t base_;      // the position of the first of the units
  std::int32_t at_ = 0;    // where it stands among them
  std::int32_t end_ = 0;   // how many there are
  TChar units_[kUnits];
};

/// Appends a character to a string, as one unit or two. A surrogate goes in as itself; what is no code point, above 10FFFF, as U+FFFD.
VFILE_API void AppendCharacter(TString& units, char32_t character);

}  // namespace vf
