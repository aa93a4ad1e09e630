/// @file
/// Saves that give a name a content only when it is whole.
///
///     TCharVFile text;
///     TCharVFile::Encoding encoding;
///     text.LoadText(TSTR("notes.txt"), encoding, FILE_SHARE_READ);
///     if (text.res == resDone) text.ReplaceGlobalTChars(TSTR("teh"), TSTR("the"), false, true);
///     vf::SaveTextComplete(text, "notes.txt", encoding, true, {.overwrite = true, .onDisk = true});
///     return text.res;  // whatever it is, notes.txt has the old text or the new one
///
/// `VFile::Save` writes into the file that it replaces, so that a full disk, or the end of the process, leaves part of the new content and
/// nothing of the old one. These write beside it. Until the content is whole the name leads to the old file, and after a
/// failure still; nothing else is left. That holds for an end of the process at any moment, but for what docs/host.md says of
/// the other name. It holds for the end of the system with `onDisk`.
///
/// What the name leads to at the end is another file, so:
/// - The directory must let names be made and taken away. The disk needs room for both contents.
/// - Owner, group, mode and access list are those of the old file, of the native host its attributes and streams as well. Where a
///   process may not give a file that owner and group, the save is `resNoPermission`. What else the host knows of a file
///   (docs/host.md) goes with the old one.
/// - Other names of the old file (hard links), and whoever has it open by other means than this library, keep the old content.
///
/// A link is followed: the file at its end is replaced, the link stays. A device or a pipe is no file that could be replaced, and is
/// written as `Save` writes it.
///
/// res: nothing is done while a failure stands in it, as by `WriteFile`. Codes are those of `Save` for the same cause: `resAlreadyExists`
/// for an existing name without `overwrite`, `resNoPermission` for a file that is read-only, is a directory or is open, `resDiskFull`,
/// and so on. `resNoPermission` also where another file got the name meanwhile. The position ends as `WriteFile` and `SaveText` leave
/// it. Thread, halts: as the transfers of `VFile`; a halt that throws leaves the old content as well.
#pragma once

#include "host/Export.h"
#include "tcharvfile/TCharVFile.h"
#include "vf/Losses.h"
#include "vf/Names.h"

namespace vf {

/// How a complete save treats the name.
struct Saving {
  bool overwrite = false;  ///< Whether an existing file is replaced.
  /// Whether the save returns only when the disk has content and name. A failure of the name alone is told in `res`, with the new
  /// content in place.
  bool onDisk = false;
};

/// Saves the whole content.
VFILE_API void SaveComplete(VFile& file, const Name& name, Saving how = {});
void SaveComplete(TCharVFile& text, const Name& name, Saving how = {}) = delete;  ///< A text has a form.

/// Saves the text in a form, see `TCharVFile::SaveText`, and gives what of it did not come into the file, as `vf::SaveText` does.
VFILE_API Losses SaveTextComplete(TCharVFile& text, const Name& name, TCharVFile::Encoding encoding, bool withBom,
                                  Saving how = {});

}  // namespace vf
