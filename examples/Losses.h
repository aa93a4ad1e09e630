// What a text file loses where it has bytes that are no characters, or gets characters that its form does not have. That is no
// failure of the library, but a program that writes files should tell.
#pragma once

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <filesystem>

#include "System.h"
#include "Texts.h"
#include "hfile/HFile.h"
#include "tcharvfile/TCharVFile.h"

/// What in the bytes of a file may stand for a character that was lost.
struct Replacements {
  std::int64_t questionMarks = 0;
  std::int64_t inUtf8 = 0;           ///< U+FFFD in UTF-8
  std::int64_t inUtf8BeforeNul = 0;  ///< and before the first 0 byte
  std::int64_t fromNulOn = 0;        ///< bytes from the first 0 byte on
};

/// Of a regular file, since others cannot be read twice.
inline Replacements ReplacementsIn(const TString& name) {
  Replacements found;
  HFile file;
  file.OpenSeqRead(name.c_str());
  unsigned char piece[1024];
  std::uint32_t lastThree = 0;
  while (!file.eof && file.res == resDone) {
    const std::int32_t got = file.ReadBytes(piece, sizeof piece);
    for (std::int32_t i = 0; i < got; ++i) {
      if (piece[i] == 0 || found.fromNulOn > 0) ++found.fromNulOn;
      if (piece[i] == '?') ++found.questionMarks;
      lastThree = (lastThree << 8 | piece[i]) & 0xFFFFFF;
      if (lastThree == 0xEFBFBD) ++found.inUtf8;
      if (found.fromNulOn == 0) found.inUtf8BeforeNul = found.inUtf8;
    }
  }
  Check(file.res, name);
  return found;
}

inline std::int64_t CountOf(TCharVFile& text, const TChar* units) {
  std::int64_t count = 0;
  for (std::int32_t at = 0; text.FindTChars(at, units, false, false);) ++count;
  return count;
}

inline void TellLoss(const TString& name, std::int64_t count, const char* what) {
  if (count > 0) std::fprintf(stderr, "%s: %" PRId64 " %s\n", NativeNameOf(name).c_str(), count, what);
}

/// Tells on standard error what of the file did not come into the text, which has just been loaded from it.
inline void TellLossOfLoading(TCharVFile& text, const TString& name, TCharVFile::Encoding form) {
  if (form == TCharVFile::encUtf16 || form == TCharVFile::encUtf16BE) return;
  if (!std::filesystem::is_regular_file(PathOf(name))) return;
  const Replacements before = ReplacementsIn(name);
  TellLoss(name, CountOf(text, TSTR("\uFFFD")) - before.inUtf8BeforeNul, "characters could not be kept");
  TellLoss(name, before.fromNulOn, "bytes from the first 0 byte on were left out");
}

/// Tells on standard error what of the text did not come into the file, to which it has just been saved, and which is, or will
/// be, the one of that name.
inline void TellLossOfSaving(TCharVFile& text, const TString& file, TCharVFile::Encoding form, const TString& name) {
  if (form == TCharVFile::encUtf16 || form == TCharVFile::encUtf16BE) return;
  if (!std::filesystem::is_regular_file(PathOf(file))) return;
  const Replacements after = ReplacementsIn(file);
  const std::int64_t lost = form == TCharVFile::encUtf8 ? after.inUtf8 - CountOf(text, TSTR("\uFFFD"))
                                                        : after.questionMarks - CountOf(text, TSTR("?"));
  TellLoss(name, lost, "characters could not be kept");
}
