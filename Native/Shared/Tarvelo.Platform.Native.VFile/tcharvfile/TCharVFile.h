/// @file
/// The class TCharVFile.

/// @class TCharVFile
/// A virtual file as UTF-16 text.
///
///     TCharVFile text;
///     TCharVFile::Encoding encoding;
///     text.LoadText(TSTR("notes.txt"), encoding, FILE_SHARE_READ);
///     if (text.res == resDone) text.ReplaceGlobalTChars(TSTR("teh"), TSTR("the"), false, true);
///     if (text.res == resDone) text.SaveText(TSTR("revised.txt"), false, encoding, true);
///     return text.res;
///
/// The content is the bytes of a `VFile` read as 16-bit units, low byte first, without a byte-order mark. The class has no
/// data of its own and keeps to everything that vfile/VFile.h says of `res`, `eof`, threads and limits; what clears `res` there
/// clears it here under its name for units, and so do `LoadText`, `SaveText` and `ToString`. What differs is the counting.
///
/// Units: positions, lengths and counts are UTF-16 code units. A character outside the Basic Multilingual Plane is two of
/// them, and nothing here knows that they belong together. A text holds at most 0x3FFFFFFF units. A position or length that
/// would pass that stands for the end of the text. An object of odd byte length has a last byte that no unit operation counts.
///
/// Strings: a pointer to units ends in a 0 unit; a `TString` counts by its length, U+0000 included, except as a file name and
/// as a text to be searched for, where it ends at its first U+0000.
///
/// Dispatch: a change is a call of a primitive of `VFile`. In the tables below, "slot" says that it goes through the virtual
/// slot, so that a derived class's override sees it, and "own" that it is `VFile`'s own.
///
/// Sections of the class, each in the file of its name: position and reading (Units.cpp), editing (TextEditing.cpp), operators
/// (TextOperators.cpp), search (TextSearch.cpp), loading (LoadText.cpp), saving (SaveText.cpp), lines and export (Lines.cpp).
#pragma once

#include "vfile/VFile.h"

namespace host {
struct LossRecord;
}

class VFILE_API TCharVFile : protected VFile {
 public:
  /// The forms of a text file.
  enum Encoding : std::int32_t {
    encAnsi = 0,     ///< the active ANSI code page; no mark
    encUtf16 = 1,    ///< UTF-16, low byte first; mark FF FE
    encUtf16BE = 2,  ///< UTF-16, high byte first; mark FE FF
    encUtf8 = 3,     ///< UTF-8; mark EF BB BF
  };
  /// `encUtf16`, the form that needs no conversion.
  static const Encoding DefaultEncoding;

  TCharVFile();  ///< An empty text.
  /// A copy of `len` units of `source` from `first` on.
  TCharVFile(const TCharVFile& source, std::int32_t first = 0, std::int32_t len = MaxLen);
  /// As that of `VFile`.
  TCharVFile(TCharVFile&& source);  // NOLINT(performance-noexcept-move-constructor): it may halt
  ~TCharVFile() noexcept(false) override;

  using VFile::Bof;
  using VFile::Eof;
  using VFile::eof;
  using VFile::ExclFlag;
  using VFile::FlagOn;
  using VFile::Flush;
  using VFile::GetCacheSize;
  using VFile::GetFlags;
  using VFile::GetMaxCacheSize;
  using VFile::GetTempDir;
  using VFile::InclFlag;
  using VFile::radix;
  using VFile::ReleaseCache;
  using VFile::res;
  using VFile::Reset;
  using VFile::SetFlag;
  using VFile::SetFlags;
  using VFile::SetMaxCacheSize;
  using VFile::SetTempDir;
  using VFile::ToggleFlag;
  using VFile::Type;

  /// @name Position
  /// @{

  std::int32_t GetTCharPos() const;         ///< The position in units.
  std::int32_t TCharLength() const;         ///< The whole units of the text.
  void SetTCharPos(std::int32_t position);  ///< Moves to `position`.
  /// Moves to `offset` units from the start (origin 0), the position (1) or the end (2).
  void SetTCharPos(std::int32_t offset, std::int32_t origin);

  /// @}
  /// @name Reading
  /// @{

  /// The next unit. At the end it stays as it was; of a single last byte its low half is set. Both set `eof`.
  void ReadTChar(TChar& unit);
  /// The unit that ends at the position, which moves back; 0 and `eof` at the start.
  void ReadPrevTChar(TChar& unit);
  /// Up to `count` units; gives how many whole ones were read.
  std::int32_t ReadTChars(TChar* units, std::int32_t count);
  /// Up to `count` units at `position`, whole ones alone; gives how many. Otherwise as `VFile::ReadAt`.
  std::int32_t ReadTCharsAt(std::int32_t position, TChar* units, std::int32_t count) const;
  /// Reads a line into `buffer` of `size` units as a terminated string, without its end (CR, LF or CR LF), which is consumed.
  /// What does not fit is dropped. Gives the units stored; 0 with `eof` where there was no line left. A null buffer or a size
  /// below 1 is `resCallError`.
  std::int32_t ReadLine(TChar* buffer, std::int32_t size);
  /// The whole text, in process memory; the position ends behind it. A string that the heap has no room for is `resHeapOverflow` and comes out
  /// empty, with the position as it was. A text without units comes out empty and leaves everything alone, `res` too.
  TString ToString();

  /// @}
  /// @name Editing
  ///
  ///     MEMBER                          PRIMITIVE   WHERE         TAKES OUT  DISPATCH
  ///     Insert...                       ReplaceBuf  the position  nothing    slot
  ///     Append...                       ReplaceBuf  the end       nothing    slot
  ///     ... of another text             ReplaceTxt  likewise      nothing    slot
  ///     DeleteTChars, TruncateTChars    ReplaceBuf  as said       as said    slot
  ///     ReplaceTChar                    ReplaceBuf  as said       a unit     own
  ///     operator=                       ReplaceBuf, ReplaceTxt    all        own
  ///
  /// The position ends behind the new units. Counts of a caller's units must be real: they are not clamped, and above 0x3FFFFFFF
  /// they are `resCallError`.
  /// @{

  void InsertTChar(TChar unit);                      ///< Inserts at the position.
  void InsertTChar(TChar unit, std::int32_t count);  ///< The same, as `count` changes of a unit each.
  void InsertTChars(const TChar* units, std::int32_t count);
  void InsertTChars(const TString& units, std::int32_t count);
  void InsertTStr(const TChar* text);
  void InsertTStr(const TString& text);
  void InsertTChars(const TCharVFile& source, std::int32_t first, std::int32_t len);
  /// @}
  /// @{
  void AppendTChar(TChar unit);  ///< Appends.
  void AppendTChar(TChar unit, std::int32_t count);
  void AppendTChars(const TChar* units, std::int32_t count);
  void AppendTChars(const TString& units, std::int32_t count);
  void AppendTStr(const TChar* text);
  void AppendTStr(const TString& text);
  void AppendTChars(const TCharVFile& source, std::int32_t first, std::int32_t len);
  /// @}
  /// @{
  void DeleteTChars(std::int32_t start, std::int32_t count);  ///< Takes out `count` units from `start` on.
  void TruncateTChars();                                      ///< Takes out all from the position to the end.
  void ReplaceTChar(std::int32_t position, TChar unit);       ///< Replaces a unit; at the end it appends.
  /// @}
  /// @{
  TCharVFile& operator=(TChar unit);  ///< Makes it the whole content.
  TCharVFile& operator=(const TChar* text);
  TCharVFile& operator=(const TString& text);
  TCharVFile& operator=(const TCharVFile& source);
  /// @}
  /// @{
  void Exchange(TCharVFile& other);  ///< As that of `VFile`.
  template <std::derived_from<TCharVFile> Text>
  friend void swap(Text& left, Text& right) {
    left.Exchange(right);
  }
  /// @}
  /// @{
  /// Inserts at the position, through the slot, whatever `vfInsert` says. A number goes in as text in base `radix`, as in `VFile`.
  TCharVFile& operator<<(TChar unit);
  TCharVFile& operator<<(const TChar* text);
  TCharVFile& operator<<(const TString& text);
  TCharVFile& operator<<(const TCharVFile& source);
  TCharVFile& operator<<(short value);
  TCharVFile& operator<<(unsigned short value);
  TCharVFile& operator<<(int value);
  TCharVFile& operator<<(unsigned int value);
  TCharVFile& operator<<(long value);
  TCharVFile& operator<<(unsigned long value);
  TCharVFile& operator<<(long long value);
  TCharVFile& operator<<(unsigned long long value);
  /// @}
  /// @{
  /// A truth or a character that is no unit would go in as a number; cast it to what is meant.
  TCharVFile& operator<<(signed char) = delete;
  TCharVFile& operator<<(char) = delete;
  TCharVFile& operator<<(unsigned char) = delete;
  template <host::NoNumber Value>
  TCharVFile& operator<<(Value value) = delete;

  /// @}
  /// @name Search
  ///
  /// As in `VFile`, by units. `ignoreCase` folds the ASCII letters alone; `wholeWord` wants no `iswalnum` unit next to the match. A call that ends before it
  /// moves (a negative `pos`, an empty text) does not look at the thread.
  /// @{

  /// Finds the first match that begins at `position` or behind it. Found: `position` becomes the position behind it.
  bool FindTChars(std::int32_t& position, const TChar* text, bool ignoreCase, bool wholeWord);
  bool FindTChars(std::int32_t& position, const TString& text, bool ignoreCase, bool wholeWord);
  /// @}
  /// @{
  /// Finds the last match that ends at `position` or before it. Found: `position` becomes its start.
  bool FindBackTChars(std::int32_t& position, const TChar* text, bool ignoreCase, bool wholeWord);
  bool FindBackTChars(std::int32_t& position, const TString& text, bool ignoreCase, bool wholeWord);
  /// @}
  /// @{
  /// Replaces every match in the text by a change of `VFile`'s own; gives the number replaced. An empty `oldText` is
  /// `resCallError`.
  std::int32_t ReplaceGlobalTChars(const TChar* oldText, const TChar* newText, bool ignoreCase, bool wholeWord);

  /// @}
  /// @name Text files
  /// @{

  /// Replaces the content by that of a text file, as UTF-16 without its mark, and moves to its start, whatever stands in `res`.
  ///
  /// The form is told by the mark alone; a file without one is taken as ANSI. `encoding` becomes the form, or `encUtf16` if the
  /// file could not be read. UTF-8 and ANSI end at the first 0 byte; ill-formed bytes become U+FFFD and are no failure. Line ends
  /// stay as they are. `shareMode`, made of the FILE_SHARE bits, is what others may do with the file meanwhile.
  ///
  /// res: that of the open or read, with an empty text; of a refused change, with the text as it was; `resHeapOverflow`, with an
  /// empty text, where the file is ANSI and the heap has no room for the converter of the code page; of the change by the converted
  /// text, with the raw bytes as content: `resTooLong` where the thread's space cannot hold these and the text at once.
  ///
  /// Memory: a few pieces of 1024 bytes, and the descriptors of the blocks, of which the raw bytes have their own in every form but UTF-16
  /// with its low byte first.
  void LoadText(const TChar* fileName, Encoding& encoding, std::uint32_t shareMode);
  void LoadText(const TChar* fileName, std::uint32_t shareMode);
  void LoadText(const TString& fileName, Encoding& encoding, std::uint32_t shareMode);
  void LoadText(const TString& fileName, std::uint32_t shareMode);
  /// @}
  /// @{
  /// Writes the text to a file of that name, whatever stands in `res`, with a mark if `withBom` asks for one and the form has one.
  /// Any value but the three UTF forms is ANSI. `overwrite` replaces an existing file; without it that is `resAlreadyExists`.
  ///
  /// A unit that is no character of the form is written as its replacement: EF BF BD in UTF-8, "?" in ANSI. U+0000 is written as it
  /// is. A last odd byte is written by `encUtf16` alone. A failure leaves what was written: nothing where the heap has no room for
  /// the converter of the ANSI code page, which is `resHeapOverflow`, and the mark alone where the converted text would pass 2^31-1
  /// bytes, which is `resTooLong`.
  ///
  /// Memory: a few pieces of 1024 bytes, in every form.
  void SaveText(const TChar* fileName, bool overwrite, Encoding encoding, bool withBom);
  void SaveText(const TString& fileName, bool overwrite, Encoding encoding, bool withBom);
  /// @}

 private:
  class VFILE_LOCAL UnitSearch;
  friend class vfile::Inside;

  void InsertAt(std::int32_t position, const TChar* units, std::int32_t count);
  VFILE_LOCAL void InsertTStrAt(std::int32_t position, const TChar* text, std::size_t count);
  VFILE_LOCAL void AssignTStr(const TChar* text, std::size_t count);

  // LoadText.cpp
  VFILE_LOCAL void LoadText(const TChar* fileName, Encoding& encoding, std::uint32_t shareMode,
                            host::LossRecord* losses);
  Encoding ReadMark();
  VFILE_LOCAL void SwapContent(host::LossRecord* losses);
  template <typename Conversion>
  VFILE_LOCAL void ConvertContent(std::int32_t mark, host::LossRecord* losses);

  // SaveText.cpp
  VFILE_LOCAL void SaveText(const TChar* fileName, bool overwrite, Encoding encoding, bool withBom,
                            host::LossRecord* losses);
  VFILE_LOCAL void WriteText(HFile& file, Encoding encoding, bool withBom, host::LossRecord* losses = nullptr);

  // TextSearch.cpp
  bool IsWordUnitBehind(std::int32_t position);
  bool IsWordUnitBefore(std::int32_t position);
  bool FindNext(UnitSearch& search, vfile::Pass& pass, std::int32_t& position, std::int32_t n, bool wholeWord);
  bool ScanForward(UnitSearch& search, vfile::Pass& pass, std::int32_t& position);
  bool ScanBackward(UnitSearch& search, vfile::Pass& pass, std::int32_t& position);
};
