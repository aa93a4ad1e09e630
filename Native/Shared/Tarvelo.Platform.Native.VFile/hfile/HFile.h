/// @file
/// The class HFile.

/// @class HFile
/// A file of the host: open and create, transfer, position; names, and files by name.
///
///     const int values[] = {1, 2, 3};
///     HFile file;
///     file.Create(TSTR("numbers"), false);  // replaces no file
///     file.WriteBytes(values, sizeof values);
///     return file.res;  // the first failure; a `Close` would assign its own result
///
/// The class is unbuffered: one transfer is one call to the host. All positions and lengths are signed 32-bit counts of
/// bytes, so it serves files of at most 2^31-1 bytes; of a longer file the length that it gives means nothing.
///
/// res: follows hsys/Res.h. Opening, `Close`, `SetPos`, `Reset`, `Truncate` and `Flush` assign it; transfers are blocked
/// by a failure that stands in it and write nothing but failures; `GetPos`, `Length` and `IsOpen` leave it alone.
///
/// Names: strings of units; a buffer for one has a size in units, terminator included, and what does not fit is cut. The
/// static operations on names serve names of up to 260 units, so a buffer of 261 holds each.
///
/// Thread: no lock and no check. An object belongs to one thread at a time; the static operations keep nothing between calls.
///
/// Halts: only the static operations on names, with `HaltA` under "HFile". If the halt returns, the operation does nothing and
/// gives false.
///
/// Sections of the class, each in the file of its name: opening (HFileOpen.cpp), transfer and position (HFileTransfer.cpp),
/// typed and text transfer (HFileText.cpp), names (HFileNames.cpp), files by name (HFileSystem.cpp), temporary files
/// (HFileTemp.cpp), results (HFileRes.cpp).
#pragma once

#include <climits>
#include <cstdint>

#include "host/Export.h"
#include "host/Handle.h"
#include "host/Unit.h"
#include "hsys/Res.h"

class HFile;
namespace hfile {
/// For the library alone: the bytes from the position of a regular file to its end, -1 where that cannot be told.
std::int64_t BytesLeft(const HFile& file);
/// For the library alone: takes the handle from the object, which then is closed.
HANDLE Release(HFile& file);
}  // namespace hfile

class VFILE_API HFile {
 public:
  /// A closed object.
  HFile();
  /// Takes over the open file `handle`, unchecked, and closes it in the end.
  explicit HFile(HANDLE handle);
  /// A pointer to characters is no handle; `Open` takes names.
  template <host::Character Char>
  explicit HFile(Char* handle) = delete;
  /// Closes the file if it is open.
  virtual ~HFile();

  HFile(const HFile&) = delete;
  HFile& operator=(const HFile&) = delete;

  /// @name Opening
  ///
  /// All give whether they succeeded. On an open object they are `resCallError` and leave the open file untouched; a refusal of
  /// the host is its error as a code, such as `resNotFound`, and leaves the object closed. All but `OpenSeqRead` are exclusive:
  /// nobody else can open the file meanwhile. `overwrite` replaces an existing file by an empty one; without it an existing file
  /// is `resAlreadyExists`.
  /// @{

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
  bool IsOpen() const;  ///< Whether a file is open.

  /// @}
  /// @name Transfer
  ///
  /// At the position, which moves on. A negative count, or a null buffer with a positive one, is `resCallError`; so is a closed
  /// object. A count of 0 does nothing at all.
  /// @{

  /// Reads up to `count` bytes and gives how many. Fewer than asked set `eof` and are no failure.
  std::int32_t ReadBytes(void* buffer, std::int32_t count);
  /// Writes `count` bytes. A host that takes fewer is `resDiskFull`.
  void WriteBytes(const void* buffer, std::int32_t count);
  /// Writes the byte `ch` `count` times, 1024 to a call. A count below 1 does nothing.
  void Write(char ch, std::int32_t count);
  void Write(signed char ch, std::int32_t count);    ///< The same.
  void Write(unsigned char ch, std::int32_t count);  ///< The same.

  /// @}
  /// @name Position and length
  ///
  /// On a closed object `resCallError` from the operations, 0 from the queries.
  /// @{

  /// The position in bytes; 0 also where the host cannot tell it.
  std::int32_t GetPos() const;
  /// Moves to `position`, or to the end if that lies before it; never lengthens the file. A negative position is
  /// `resCallError` and moves nothing. Where the host cannot tell the size it fails, as does `Truncate`. Clears `eof` in
  /// every case.
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

  /// @}
  /// @name Values
  ///
  /// Each is one `ReadBytes` or `WriteBytes`, with its rules. Values go as their bytes lie, little-endian; at the end of the file
  /// the rest of a value stays as it was. `long` goes with the type of its width.
  /// @{

  void ReadByte(unsigned char& value);  ///< Reads the value at the position.
  void ReadChar(signed char& ch);
  void ReadChar(char& ch);
  void ReadChar(unsigned char& ch);
  void ReadWord(short& value);
  void ReadWord(unsigned short& value);
  void ReadDWord(int& value);
  void ReadDWord(unsigned int& value);
  void ReadQWord(long long& value);
  void ReadQWord(unsigned long long& value);
#if LONG_MAX > INT_MAX
  void ReadQWord(long& value);
  void ReadQWord(unsigned long& value);
#else
  void ReadDWord(long& value);
  void ReadDWord(unsigned long& value);
#endif
  HFile& operator>>(signed char& ch);
  HFile& operator>>(char& ch);
  HFile& operator>>(unsigned char& ch);
  /// @}
  /// @{
  void WriteByte(unsigned char value);  ///< Writes the value at the position.
  void WriteChar(signed char ch);
  void WriteChar(char ch);
  void WriteChar(unsigned char ch);
  void WriteWord(short value);
  void WriteWord(unsigned short value);
  void WriteDWord(int value);
  void WriteDWord(unsigned int value);
  void WriteQWord(long long value);
  void WriteQWord(unsigned long long value);
#if LONG_MAX > INT_MAX
  void WriteQWord(long value);
  void WriteQWord(unsigned long value);
#else
  void WriteDWord(long value);
  void WriteDWord(unsigned long value);
#endif

  /// @}
  /// @name Text
  ///
  /// Text is 8-bit characters up to a NUL, which is not written, and must not be null.
  /// @{

  /// Writes the text, in one `WriteBytes`.
  void Write(const char* text);
  /// Writes CR LF, on every host.
  void WriteLn();
  /// Reads up to `count` bytes at `position` as a terminated string into `buffer` of `size` bytes, cut to fit; gives the bytes
  /// read, and moves behind them. A position or count past the end is clamped. A null buffer, a size below 1 or a negative
  /// number is `resCallError`. Nothing, and 0, while a failure stands in `res`.
  std::int32_t ReadTxt(char* buffer, std::int32_t size, std::int32_t position, std::int32_t count);
  /// Reads a line as a terminated string, without its end (CR, LF or CR LF), which is consumed. What does not fit is dropped.
  /// Gives the characters stored: 0 for an empty line, and at the end of the file, with `eof`. `res` as in `ReadTxt`. Cost: a
  /// call to the host for each byte; a `VFile` reads lines faster.
  std::int32_t ReadLine(char* buffer, std::int32_t size);
  /// @}
  /// @{
  /// Writes and gives the object. A character goes out as itself; a number as text in base `radix`, with a minus sign in
  /// base 10.
  HFile& operator<<(signed char ch);
  HFile& operator<<(char ch);
  HFile& operator<<(unsigned char ch);
  HFile& operator<<(const char* text);
  HFile& operator<<(short value);
  HFile& operator<<(unsigned short value);
  HFile& operator<<(int value);
  HFile& operator<<(unsigned int value);
  HFile& operator<<(long value);
  HFile& operator<<(unsigned long value);
  HFile& operator<<(long long value);
  HFile& operator<<(unsigned long long value);
  /// @}
  /// @{
  /// A truth or a wide character would go out as a number; cast it to what is meant.
  template <host::NoNumber Value>
  HFile& operator<<(Value value) = delete;

  /// @}
  /// @name Names
  ///
  /// As text: the disk is not asked.
  /// @{

  /// Whether the unit separates the steps of a name: backslash or slash.
  static bool IsDirSep(TChar unit);
  /// Adds a backslash to a name that is not empty and does not end in a separator, if it fits. Halts for a null buffer or a
  /// size of 0, as do both forms of `BuildName`, `GetFullName`, `GetTempDir` and `GetNextBackupExt`.
  static void CondAppendDirSep(TChar* buffer, std::uint32_t size);
  /// Puts `name` directly behind `path`; null counts as empty.
  static void BuildName(TChar* buffer, std::uint32_t size, const TChar* path, const TChar* name);
  /// Joins the parts that are neither null nor empty, with a colon behind the drive's letter, a backslash behind a directory
  /// that does not end in a separator, and a dot before an extension that does not begin with one. Empty if it does not fit.
  static void BuildName(TChar* buffer, std::uint32_t size, const TChar* drive, const TChar* dir, const TChar* fname,
                        const TChar* ext);
  /// Takes `path` apart into the drive (a letter and a colon), the directory up to its last separator, the name, and the
  /// extension from the last dot on. A part that is not wanted is null with size 0. If one does not fit, all come out empty.
  /// Halts if of a buffer and its size only one is null or 0, and for a null path.
  static void SplitName(TChar* drive, std::uint32_t driveSize, TChar* dir, std::uint32_t dirSize, TChar* fname,
                        std::uint32_t fnameSize, TChar* ext, std::uint32_t extSize, const TChar* path);
  /// Takes `path` apart into the directory, drive included, and the name, extension included. Halts if anything is null or 0.
  static void SplitName(TChar* dir, std::uint32_t dirSize, TChar* name, std::uint32_t nameSize, const TChar* path);
  /// The absolute form of `name` against the current directory, with its dot and dot-dot steps resolved as text. The given
  /// name, cut to fit, if that does not work or does not fit. Halts also for a null name.
  static void GetFullName(TChar* buffer, std::uint32_t size, const TChar* name);
  /// `EqualStrI` on the names as they stand: another form of the same name differs.
  static bool EqualName(const TChar* left, const TChar* right);
  /// Steps an extension, in place, through the series of backups: ".txt", ".~xt", ".~1t" to ".~9t", ".~10" to ".~99"; one
  /// without letters starts at ".~". False at the end of the series, with the extension left as it is. Whatever the size, the
  /// buffer must hold two units more than the extension.
  static bool GetNextBackupExt(TChar* ext, std::uint32_t size);

  /// @}
  /// @name Files by name
  ///
  /// The forms with `result` tell the outcome there as well: `resDone`, or the host's error as a code.
  /// @{

  /// Whether there is a file or directory of that name; false for one whose full name has more than 260 units. Halts for a null
  /// name.
  static bool Exists(const TChar* name);
  /// Whether it is a read-only file. False for a name that the host cannot find.
  static bool IsReadOnly(const TChar* name);
  /// Whether it is a directory. False for a name that the host cannot find.
  static bool IsDirectory(const TChar* name);
  /// Makes a file read-only, or no longer so; one that is as asked already is not touched. Gives whether it is so now.
  static bool SetReadOnly(const TChar* name, bool readOnly);
  /// Copies a file, with its read-only state and the time of its last change. Without `overwrite` an existing target is
  /// `resAlreadyExists`. Whether a copy that fails half-way leaves an old target as it was is the host's.
  static bool Copy(const TChar* source, const TChar* target, std::int32_t& result, bool overwrite);
  /// The same, without the code.
  static bool Copy(const TChar* source, const TChar* target, bool overwrite);
  /// Renames or moves a file or directory. An existing `newName` is `resAlreadyExists`, also one that came into being just
  /// now; the own name is a success. A file that is open is `resNoPermission`; where every open of it has `FILE_SHARE_DELETE`,
  /// that is the host's. A file moves to another file system or drive as well, a directory does not.
  static bool Rename(const TChar* oldName, const TChar* newName, std::int32_t& result);
  /// The same, without the code.
  static bool Rename(const TChar* oldName, const TChar* newName);
  /// Removes a file. A directory, a read-only file and one that is open are `resNoPermission`, the latter as for `Rename`.
  static bool Remove(const TChar* name, std::int32_t& result);
  /// The same, without the code.
  static bool Remove(const TChar* name);

  /// @}
  /// @name Temporary files
  /// @{

  /// The directory for temporary files, with a separator at its end: the value of "TMP", else that of "TEMP", each if it is a
  /// directory that can be used, else the host's last resort. A buffer of 261 units holds each.
  static void GetTempDir(TChar* buffer, std::uint32_t size);
  /// Creates a file of a name that nobody has, leaves it open in `file`, for writing from end to end if `seqWrite`, and gives
  /// its name: directory, prefix, a number of up to 8 digits, extension. Null stands for `GetTempDir`, "~hf" and ".tmp"; an
  /// empty `dir` is the current directory, an empty `ext` none, and its dot may be left out. Prefix and extension are cut to
  /// 63 units.
  ///
  /// False, with the reason in `file.res`, if the name does not fit `name` or is none for the host, and for every other failure
  /// but that of a name that somebody has: that is met by the next number, 100000000 times. Halts if `file` is open, for a null
  /// buffer and for a size of 0.
  static bool CreateTempFile(HFile& file, TChar* name, std::uint32_t size, const TChar* prefix, const TChar* ext,
                             const TChar* dir, bool seqWrite);

  /// @}
  /// @name Results
  /// @{

  /// Writes the English text of a result code into `buffer` of `size` units, terminator included, cut to fit. It differs
  /// from `GetTextResMsg` in the text of `resHeapOverflow`.
  static void GetResMsg(TChar* buffer, std::uint32_t size, std::int32_t code);

  std::int32_t res;    ///< Result of the operations so far, see above.
  bool eof;            ///< Whether the last read asked for more bytes than there were.
  std::int32_t radix;  ///< Base of numbers written as text, 10 at first.
                       /// @}

 private:
  friend std::int64_t hfile::BytesLeft(const HFile& file);
  friend HANDLE hfile::Release(HFile& file);

  void Init();
  bool OpenWith(const TChar* name, std::uint32_t access, std::uint32_t share, std::uint32_t disposition,
                std::uint32_t hint);
  static std::int32_t GetFileRes();

  HANDLE handle;  // owned; open exactly when it is not INVALID_HANDLE_VALUE
};

/// @relates HFile
/// The `res` of a file as a code of this library: itself, or `resNotDone` if it is out of range.
VFILE_API std::int32_t GetFileRes(const HFile& file);
