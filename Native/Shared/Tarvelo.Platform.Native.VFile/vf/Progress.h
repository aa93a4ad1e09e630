/// @file
/// How far long operations are, and an end to them.
///
///     VFile file;
///     const vf::Progress progress(file, [](std::int64_t done, std::int64_t total) {
///       std::fprintf(stderr, "\r%3d %%", static_cast<int>(total > 0 ? done * 100 / total : 0));
///       return true;  // false ends the operation
///     });
///     file.Load(TSTR("big.log"), FILE_SHARE_READ);
///     return file.res;
///
/// While a `Progress` lives, its procedure is called from the long operations of its file, on their thread, at most once for each mebibyte
/// or 20 ms: with the bytes done, and those of the whole operation, or -1 where nothing tells these, as for a pipe. What is done
/// before that is never told, so the procedure may not be called at all, and the last call may come before the end.
///
///     OPERATION                              BYTES                  ENDED
///     Load, ReadFile, ReplaceFile and all    of the host's file     the file is unchanged, after `Load` empty
///       that reads a file of the host
///     LoadText                               of the file, twice:    the text is empty, or holds the raw bytes, as after
///                                            UTF-16 with its low    any failure there
///                                            byte first ends at
///                                            the half
///     Save, WriteFile, WriteToFile,          of the content; twice  what was written stays; vf/Saving.h leaves nothing
///       SaveText, vf/Saving.h                from 0 on where more
///                                            than 2^31-1 bytes may
///                                            come out
///     Find, FindBack, and those of a text    from its place to      not found; `pos` is where the search stood
///                                            the end of the search
///     ReplaceGlobal, and that of a text      of the old content     what was replaced stays
///     copies: =, Insert of a file, and so on, of the source, or of   the target is unchanged
///       and of large buffers                 the buffer
///     comparison of files or with a string   compared; of the side  files are not equal, and their order is open
///                                            that has a `Progress`
///
/// A search that was ended does not tell a match that it had just come upon. `HFile::Copy` is one call of the host, which tells nothing.
///
/// An ended operation leaves `resNotDone` in the file, a comparison too. The procedure must not use the file but to look: `Length` and
/// `GetPos` tell where things stand. What it throws ends the operation likewise and comes out of it.
///
/// Cost: without one, a look at a pointer for each block; with one, a look at the clock.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "host/Export.h"
#include "tcharvfile/TCharVFile.h"

namespace vfile {
class Meter;
}

namespace vf {

/// Tells of the operations of one file, which outlives it. One for a file at a time: a second one takes its place until it ends,
/// whichever ends first.
class VFILE_API Progress {
 public:
  /// Whether to go on.
  using Procedure = std::function<bool(std::int64_t done, std::int64_t total)>;

  /// @{
  /// The procedure is not empty.
  Progress(VFile& file, Procedure procedure);
  Progress(TCharVFile& text, Procedure procedure);
  /// @}
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Whether the procedure ended the last of those operations, be it too short to call it.
  bool IsCancelled() const;

 private:
  VFile& file_;
  std::unique_ptr<vfile::Meter> meter_;
};

}  // namespace vf
