/// @file
/// Text files, and what did not come through their conversion.
///
///     TCharVFile text;
///     TCharVFile::Encoding encoding;
///     vf::Losses lost = vf::LoadText(text, "notes.txt", encoding, FILE_SHARE_READ);
///     if (text.res != resDone) return text.res;
///     if (!lost) lost = vf::SaveText(text, "notes.ansi", false, TCharVFile::encAnsi, false);
///     if (lost) std::fprintf(stderr, "lost from unit %d on\n", static_cast<int>(lost.first));
///     return lost ? resNotDone : text.res;
///
/// No loss is a failure: `res` says nothing of it. Halts, thread: as `TCharVFile::LoadText` and `SaveText`.
#pragma once

#include <cstdint>

#include "host/Export.h"
#include "tcharvfile/TCharVFile.h"
#include "vf/Names.h"

namespace vf {

/// What did not come through a conversion.
struct Losses {
  /// Characters. Loading: ill-formed sequences, and bytes without a character, that became U+FFFD or what the system has for them. Saving:
  /// characters that became EF BF BD, "?" or, on Windows, what the system takes for their best fit; a surrogate pair is one.
  std::int64_t replaced = 0;
  /// Bytes. Loading: all from the first 0 byte on, or a last odd one. Saving: a last odd one.
  std::int64_t leftOut = 0;
  /// The position in the text, in units, of the first character that was replaced. What was left out counts at the end of the text. -1 if
  /// nothing was lost.
  std::int64_t first = -1;

  /// Whether anything was lost.
  explicit operator bool() const { return first >= 0; }
};

/// `TCharVFile::LoadText` by that name, in every outcome, and what of the file did not come into the text. A U+FFFD that the file has is no
/// loss.
///
/// After a failure it is what had been replaced until then, whatever has become of the text.
VFILE_API Losses LoadText(TCharVFile& text, const Name& name, TCharVFile::Encoding& encoding, std::uint32_t shareMode);
/// `TCharVFile::SaveText` to that name, in every outcome, and what of the text did not come into the file. A U+FFFD or "?" that the text has
/// is no loss.
///
/// After a failure it is what had been replaced until then, which may be behind what stands in the file.
VFILE_API Losses SaveText(TCharVFile& text, const Name& name, bool overwrite, TCharVFile::Encoding encoding,
                          bool withBom);

}  // namespace vf
