/// @file
/// A file of the host: open and create, transfer, position.
///
///     HFile file;
///     file.Create(TSTR("numbers"), true);
///     file.WriteBytes(values, sizeof values);
///     file.Close();
///
/// The class is unbuffered: one transfer is one call to the host. All positions and lengths are signed 32-bit counts of
/// bytes, so it serves files of at most 2^31-1 bytes; of a longer file the length that it gives means nothing.
///
/// res: follows hsys/Res.h. Opening, `Close`, `SetPos`, `Reset`, `Truncate` and `Flush` assign it; transfers are blocked
/// by a failure that stands in it and write nothing but failures; `GetPos`, `Length` and `IsOpen` leave it alone.
///
/// Thread: no lock and no check. An object belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "host/Export.h"
#include "host/Handle.h"
#include "host/Unit.h"
#include "hsys/Res.h"

class VFILE_API HFile {
 public:
  /// A closed object.
  HFile();
  /// Takes over the open file `handle`, unchecked, and closes it in the end.
  explicit HFile(HANDLE handle);
  /// Closes the file if it is open.
  virtual ~HFile();

  HFile(const HFile&) = delete;
  HFile& operator=(const HFile&) = delete;

  // Opening. All give whether they succeeded. On an open object they are `resCallError` and leave the open file untouched;
  // a refusal of the host is its error as a code, such as `resNotFound`, and leaves the object closed. All but
  // `OpenSeqRead` are exclusive: nobody else can open the file meanwhile. `overwrite` replaces an existing file by an empty
  // one; without it an existing file is `resAlreadyExists`.

  /// Opens an existing file for random reading and writing.
  bool Open(const TChar* name);
  /// Creates a file for random reading and writing.
  bool Create(const TChar* name, bool overwrite);
  /// `Open`; with `create` a missing file is made, empty.
  bool Lookup(const TChar* name, bool create);
  /// Opens an existing file for reading from end to end. Other readers may share it.
  bool OpenSeqRead(const TChar* name);
  /// Creates a file for writing from end to end.
  bool CreateSeqWrite(const TChar* name, bool overwrite);
  /// Closes the file. Closed already: `resCallError`.
  void Close();
  bool IsOpen() const;

  // Transfer at the position, which moves on. A negative count, or a null buffer with a positive one, is `resCallError`;
  // so is a closed object. A count of 0 does nothing at all.

  /// Reads up to `count` bytes and gives how many. Fewer than asked set `eof` and are no failure.
  std::int32_t ReadBytes(void* buffer, std::int32_t count);
  /// Writes `count` bytes. A host that takes fewer is `resDiskFull`.
  void WriteBytes(const void* buffer, std::int32_t count);
  /// Writes the byte `ch` `count` times, 1024 to a call. A count below 1 does nothing.
  void Write(char ch, std::int32_t count);

  // Position and length. On a closed object `resCallError` from the operations, 0 from the queries.

  /// The position in bytes; 0 also where the host cannot tell it.
  std::int32_t GetPos() const;
  /// Moves to `position`, or to the end if that lies before it; never lengthens the file. A negative position is
  /// `resCallError` and moves nothing. Clears `eof` in every case.
  void SetPos(std::int32_t position);
  /// Moves to `offset` bytes from the start (origin 0), the position (1) or the end (2). Any other origin is
  /// `resCallError`.
  void SetPos(std::int32_t offset, std::int32_t origin);
  /// `SetPos(0)`.
  void Reset();
  /// The size of the file in bytes; 0 also where the host cannot tell it.
  std::int32_t Length() const;
  /// Makes the position the end of the file.
  void Truncate();
  /// Has the host write its buffers for the file through to the device.
  void Flush();

  /// Writes the English text of a result code into `buffer` of `size` units, terminator included, cut to fit. It differs
  /// from `GetTextResMsg` in the text of `resHeapOverflow`.
  static void GetResMsg(TChar* buffer, std::uint32_t size, std::int32_t code);

  std::int32_t res;    ///< Result of the operations so far, see above.
  bool eof;            ///< Whether the last read asked for more bytes than there were.
  std::int32_t radix;  ///< Base of numbers written as text, 10 at first.

 private:
  void Init();
  bool OpenWith(const TChar* name, std::uint32_t access, std::uint32_t share, std::uint32_t disposition,
                std::uint32_t hint);
  static std::int32_t GetFileRes();

  HANDLE handle;  // owned; open exactly when it is not INVALID_HANDLE_VALUE
};

/// The `res` of a file as a code of this library: itself, or `resNotDone` if it is out of range.
VFILE_API std::int32_t GetFileRes(const HFile& file);
