/// @file
/// The class VFile.

/// @class VFile
/// An editable byte file of up to 2^31-1 bytes that lives outside process memory.
///
///     VFile text;
///     text.Load(TSTR("big.log"), FILE_SHARE_READ);
///     if (text.res != resDone) return text.res;  // what follows would clear it
///     text.ReplaceGlobal("colour", "color", false, true);
///     text.WriteFile(TSTR("revised.log"), false);  // does nothing after a failure, and replaces no file
///     return text.res;
///
/// A file is read and written like a file of the host, at a position, but bytes go in and out anywhere at a cost that
/// hardly grows with its length. Its bytes lie in blocks of up to 1024 bytes, each in a page of the thread's `VMem`. The heap holds
/// a descriptor of 24 bytes for each block, after the first far move an index of about 12 bytes for each, and for the thread the
/// bounded page cache with 256 KB of tables.
///
/// Units: positions, lengths and counts are bytes, 32-bit signed. A position past the end counts as the end, and a count
/// past the end as what is there; neither is a failure. A negative one is `resCallError`. A string that is too long for a
/// count, of 2^31 bytes or more, is `resTooLong`.
///
/// res: hsys/Res.h tells the rule. Operations return nothing; look at `res` after a run of them that keep it, and before one
/// that clears it: a `Save` behind a failed `Load` writes what is there.
/// - Kept, and nothing done while it is not `resDone`: changes, flag changes, `WriteFile`, `WriteToFile`, `ReadFile` and
///   `ReadFromFile`. `a >> b` so looks at that of `b`.
/// - Cleared: by `SetPos` to a valid position and `Reset`; by what begins with such a move: `ReadTxt`, `Save`, `Load`, the
///   searches, `ReplaceGlobal` and the line functions; by `Read` and `ReadLine` at a CR that no LF follows; by `a >> b` that
///   moved, for `a`. Their own failure then stands in it. Such a call that is refused (`resCallError`), or ends before it moves
///   as its description says, does not clear it.
/// - Neither looked at nor cleared: all other reads, queries, `Flush`, comparison.
///
/// eof: whether the last read ran against an end of the file. Not the same as `Eof()`, which compares the position with the
/// length: reading the last byte leaves `eof` false.
///
/// Thread: a file belongs to the thread that constructed it and must be destroyed before that ends. Changes, `SetPos`, flag
/// changes, `Flush`, transfers and searches halt on another thread (`HaltA` under "VFile") and then do nothing; reads and
/// queries do not look. All files of a thread share its `VMem`.
///
/// Halts: besides the thread check, only for a broken invariant, and where the virtual memory fails: a full disk under the
/// swap file halts under "VMem". Behind that every file of the thread is sound, with its old or its new content. If the halt
/// returned, the operation has stopped there, with `resHeapOverflow`.
///
/// Sections of the class, each in the file of its name: life and settings (VFile.cpp), position (Position.cpp), reading
/// (Reading.cpp), the five primitives of change (Replace.cpp), editing (Editing.cpp), operators (Operators.cpp), flags and
/// hooks (Flags.cpp), search (Search.cpp), lines (Lines.cpp), transfer (Transfer.cpp); the relational operators stand in
/// vfile/Comparison.h. Inside: the chain (Chain.cpp), the walk (Walk.cpp) and its index (PositionIndex.cpp), the scratch buffer
/// (Scratch.cpp), the engine of change (Change.cpp), const reading (ConstReading.cpp), the values of the thread
/// (ThreadValues.cpp).
#pragma once

#include <climits>
#include <concepts>
#include <cstddef>
#include <cstdint>

#include "hfile/HFile.h"
#include "host/Export.h"
#include "host/Handle.h"
#include "host/Line.h"
#include "host/Unit.h"
#include "hsys/Res.h"
#include "vfile/Blocks.h"
#include "vfile/Comparison.h"

// A system's header may have made this a macro for a function of its own, under which the member would be another one. Code that
// has such a header behind this one repeats the line.
#undef ReplaceFile

class BlkPool;
class VMem;
namespace vfile {
class Comparison;
class ContentSource;
class Inside;
class Meter;
class Pass;
class PositionIndex;
}  // namespace vfile

class VFILE_API VFile {
 public:
  /// @name Life
  /// @{

  /// An empty file. The thread's first makes its `VMem`; it costs a page only when bytes come in. Halts if the heap is
  /// exhausted.
  VFile();
  /// @}
  /// @{
  /// An empty file, then the content as one change. The position then is behind it; a failure stands in `res`.
  VFile(signed char ch, std::int32_t count);
  VFile(char ch, std::int32_t count);
  VFile(unsigned char ch, std::int32_t count);
  explicit VFile(const char* text);
  VFile(HANDLE file, std::int32_t count);
  VFile(HFile& file, std::int32_t count);
  /// @}
  /// @{
  /// The bytes of a range of `source`; its flags and position are not taken over.
  VFile(const VFile& source, std::int32_t pos = 0, std::int32_t count = MaxLen);
  /// Takes over all that `source` is, in constant time: content, position, flags, `Type`, `res`, `eof` and `radix`. The source is
  /// then an empty file as a new one, of its own `Type`. No hook is asked or told. Halts if the heap is exhausted, or on another
  /// thread, with the source as it was.
  VFile(VFile&& source);  // NOLINT(performance-noexcept-move-constructor): it may halt
  /// Gives the blocks back to the thread. Halts on another thread, and so may throw where the installed halt procedure does.
  virtual ~VFile() noexcept(false);

  /// @}
  /// @name The five primitives of change
  ///
  /// Every change of a file, by whatever operation, is a call of one of these through its virtual slot: take out `del` bytes
  /// at `pos` and put in `count` bytes of a source. They do, in this order:
  ///
  ///   1. check the thread; return if `res` is not `resDone`;
  ///   2. refuse a negative argument, a null buffer with a count, a closed source: `resCallError`;
  ///   3. refuse a locked file (`resContextError`), then a read-only one (`resReadOnly`);
  ///   4. clamp `pos` to the length and `del` to what is there; a result past 2^31-1 bytes, or one for whose blocks the thread's
  ///      space has no room, is `resTooLong`;
  ///   5. ask `PreChange`, change, tell `PostChange`;
  ///   6. `SetPos` behind the new bytes.
  ///
  /// A change of nothing by nothing does 1 to 4 and 6. `del` may be `SameLen`: as many as go in; or `MaxLen`: all to the end.
  /// A failure leaves the file unchanged; the position is unchanged up to step 4 and that of the change behind it. An
  /// exhausted heap is `resHeapOverflow`, and so is a halt of the virtual memory that returned. Where one throws, the file has
  /// its old or its new content, and is sound.
  /// @{

  /// From memory.
  virtual void ReplaceBuf(std::int32_t pos, std::int32_t del, const void* buffer, std::int32_t count);
  /// The byte `ch` `count` times, as changes of up to 1024 bytes each, of which the first takes out `del`. A failure of a
  /// later one leaves the earlier ones done.
  virtual void ReplaceCh(std::int32_t pos, std::int32_t del, char ch, std::int32_t count);
  /// From `sourcePos` of a file of the same thread, also of this one, which is read as it stood before the change. `count` is
  /// clamped to the source.
  virtual void ReplaceTxt(std::int32_t pos, std::int32_t del, const VFile& source, std::int32_t sourcePos,
                          std::int32_t count);
  /// From an open file of the host, at its position, which moves on, also if the change fails. `MaxLen` reads to its end; any
  /// other count that it cannot fill is `resNotDone`. A failure of the host is its error as a code.
  virtual void ReplaceFile(std::int32_t pos, std::int32_t del, HFile& source, std::int32_t count);
  /// The same from a handle.
  virtual void ReplaceFile(std::int32_t pos, std::int32_t del, HANDLE source, std::int32_t count);

  /// @}
  /// @name Assignment
  /// @{

  // The assignment that every derived class has hides these, which is no mistake there.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
  /// Makes it the whole content, by one change.
  virtual VFile& operator=(const VFile& source);
  virtual VFile& operator=(const char* text);
  virtual VFile& operator=(signed char ch);
  virtual VFile& operator=(char ch);
  virtual VFile& operator=(unsigned char ch);
#pragma GCC diagnostic pop
  /// Exchanges the contents of two files of a thread in constant time; a file with itself is left alone. Flags, `Type` and `radix` stay
  /// where they are. To each file it is one change that replaces all: not done while a failure stands in the `res` of one of
  /// them, if one is locked or read-only, or if the `PreChange` of one refuses; that reason then stands in the `res` of both, unless
  /// another does. Each position ends behind the content. The primitives are not called.
  void Exchange(VFile& other);
  /// What `using std::swap; swap(a, b)` and `std::ranges::swap` call, for derived classes too. `std::swap`, named in full, moves and
  /// copies: the left file loses its flags, be it read-only or locked.
  template <std::derived_from<VFile> File>
  friend void swap(File& left, File& right) {
    left.Exchange(right);
  }

  /// @}
  /// @name Diagnosis
  /// @{

  /// In a checking build halts under "VFile" with the rule of the chain that does not hold; else empty.
  virtual void CheckInvariants() const;
  virtual void Show(const char* text) const;  ///< Empty.
  virtual void Dump() const;                  ///< Empty.

  /// @}
  /// @name Settings of the thread
  ///
  /// They act on the thread's `VMem` if it has a file, else on what its next one will start from; a setting outlives the
  /// files. Thread: the calling one.
  /// @{

  static void ReleaseCache();             ///< Writes all changed pages to the swap file and empties the cache.
  static std::int16_t GetCacheSize();     ///< Kilobytes that the cache takes now.
  static std::int16_t GetMaxCacheSize();  ///< The bound of the cache in kilobytes.
  /// Bounds the cache in kilobytes; 70 at first. A constant that does not fit does not compile, or gets the compiler's warning.
  static void SetMaxCacheSize(std::int16_t kilobytes);
  VFILE_REFUSE_CONSTANT(kilobytes != static_cast<std::int16_t>(kilobytes), static void SetMaxCacheSize(int kilobytes))
  /// The directory for the swap file, or null. Valid until it is set again or the thread's last file goes.
  static const TChar* GetTempDir();
  /// Sets it, for the next swap file that is made; a copy is kept, null or empty clears it. Must not be given what
  /// `GetTempDir` gave.
  static void SetTempDir(const TChar* dir);
  /// @}
  /// @{
  /// For the library's entry point alone. Halts with `HaltA` under "VFile" if called out of order; always true.
  static bool TLS_InitializeProcess();
  static bool TLS_UninitializeProcess();
  static bool TLS_InitializeThread();
  static bool TLS_UninitializeThread();

  /// @}
  /// @name Position
  /// @{

  /// Moves to `position`. Clears `res` and `eof`; a negative position is `resCallError` and moves nothing.
  void SetPos(std::int32_t position);
  /// Moves to `offset` bytes from the start (origin 0), the position (1) or the end (2). Any other origin is `resCallError`.
  void SetPos(std::int32_t offset, std::int32_t origin);
  void Reset();                 ///< `SetPos(0)`.
  std::int32_t GetPos() const;  ///< The position in bytes.
  std::int32_t Length() const;  ///< The bytes of the file.
  bool Eof() const;             ///< Whether the position is at the end.
  bool Bof() const;             ///< Whether the position is at the start.

  /// @}
  /// @name Reading
  ///
  /// At the position, which moves on.
  /// @{

  /// The next byte; 0 and `eof` at the end.
  void ReadByte(unsigned char& byte);
  void ReadChar(signed char& ch);
  void ReadChar(char& ch);
  void ReadChar(unsigned char& ch);
  /// @}
  /// @{
  /// The byte before the position, which moves back; 0 and `eof` at the start.
  void ReadPrevByte(unsigned char& byte);
  void ReadPrevChar(signed char& ch);
  void ReadPrevChar(char& ch);
  void ReadPrevChar(unsigned char& ch);
  /// @}
  /// @{
  /// Up to `count` bytes; gives how many. Fewer than asked set `eof`.
  std::int32_t ReadBytes(void* buffer, std::int32_t count);
  /// @}
  /// @{
  /// The value as its bytes lie, little-endian. At the end of the file the rest of it stays as it was. `long` goes with the type of
  /// its width.
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
  /// @}
  /// @{
  /// One character of text, with CR and CR LF given as LF. Gives the bytes consumed: 0 at the end.
  std::int32_t Read(unsigned char& ch);
  std::int32_t Read(signed char& ch);
  std::int32_t Read(char& ch);
  /// @}
  /// @{
  /// Reads `count` bytes at `position` as a terminated string into `buffer` of `size` bytes, cut to fit; gives the bytes
  /// read. A null buffer or a size below 1 is `resCallError`, as it is in `ReadLine`.
  std::int32_t ReadTxt(char* buffer, std::int32_t size, std::int32_t position, std::int32_t count);
  /// Reads a line as a terminated string, without its end (CR, LF or CR LF), which is consumed. What does not fit is dropped.
  /// Gives the characters stored.
  std::int32_t ReadLine(char* buffer, std::int32_t size);

  /// Reads up to `count` bytes at `position`, as many as are there, and gives how many. Moves nothing, sets neither `res` nor `eof`, and
  /// may be called in a hook, where it reads what stands at that moment. 0 for a negative argument, a null buffer, and behind a
  /// halt that returned.
  std::int32_t ReadAt(std::int32_t position, void* buffer, std::int32_t count) const;

  /// @}
  /// @name Editing
  ///
  /// Five verbs by ten sources; each member is one call of a primitive.
  ///
  ///     VERB     WHERE         TAKES OUT
  ///     Insert   the position  nothing
  ///     Replace  the position  what the source says
  ///     Write    the position  nothing with `vfInsert`, else as Replace
  ///     Append   the end       nothing
  ///     Prepend  the start     nothing
  ///
  ///     SOURCE                    PRIMITIVE    COUNT        REPLACE TAKES OUT
  ///     Byte, Word, DWord, QWord  ReplaceBuf   1, 2, 4, 8   as many
  ///     Bytes                     ReplaceBuf   count        as many
  ///     char, count               ReplaceCh    count        as many
  ///     string                    ReplaceBuf   its length   as many as go in
  ///     VFile, pos, count         ReplaceTxt   count        as many as go in
  ///     HANDLE, count             ReplaceFile  count        as many as go in
  ///     HFile, count              ReplaceFile  count        as many as go in
  ///
  /// Values go in as their bytes, little-endian. The position ends behind the new bytes.
  /// @{

  /// Puts the source in at the position, as the table says.
  void InsertByte(unsigned char value);
  void InsertBytes(const void* buffer, std::int32_t count);
  void InsertWord(short value);
  void InsertWord(unsigned short value);
  void InsertDWord(int value);
  void InsertDWord(unsigned int value);
  void InsertQWord(long long value);
  void InsertQWord(unsigned long long value);
  void Insert(signed char ch, std::int32_t count);
  void Insert(char ch, std::int32_t count);
  void Insert(unsigned char ch, std::int32_t count);
  void Insert(const char* text);
  void Insert(const VFile& source, std::int32_t pos, std::int32_t count);
  void InsertFromFile(HANDLE file, std::int32_t count);
  void Insert(HFile& file, std::int32_t count);
  /// @}
  /// @{
  /// Puts the source in at the position, over what is there.
  void ReplaceByte(unsigned char value);
  void ReplaceBytes(const void* buffer, std::int32_t count);
  void ReplaceWord(short value);
  void ReplaceWord(unsigned short value);
  void ReplaceDWord(int value);
  void ReplaceDWord(unsigned int value);
  void ReplaceQWord(long long value);
  void ReplaceQWord(unsigned long long value);
  void Replace(signed char ch, std::int32_t count);
  void Replace(char ch, std::int32_t count);
  void Replace(unsigned char ch, std::int32_t count);
  void Replace(const char* text);
  void Replace(const VFile& source, std::int32_t pos, std::int32_t count);
  void ReplaceFromFile(HANDLE file, std::int32_t count);
  void Replace(HFile& file, std::int32_t count);
  /// @}
  /// @{
  /// Inserts or replaces at the position, as `vfInsert` says.
  void WriteByte(unsigned char value);
  void WriteBytes(const void* buffer, std::int32_t count);
  void WriteWord(short value);
  void WriteWord(unsigned short value);
  void WriteDWord(int value);
  void WriteDWord(unsigned int value);
  void WriteQWord(long long value);
  void WriteQWord(unsigned long long value);
  void Write(signed char ch, std::int32_t count);
  void Write(char ch, std::int32_t count);
  void Write(unsigned char ch, std::int32_t count);
  void Write(const char* text);
  void Write(const VFile& source, std::int32_t pos, std::int32_t count);
  void WriteFromFile(HANDLE file, std::int32_t count);
  void Write(HFile& file, std::int32_t count);
  /// @}
  /// @{
  /// Puts the source in at the end.
  void AppendByte(unsigned char value);
  void AppendBytes(const void* buffer, std::int32_t count);
  void AppendWord(short value);
  void AppendWord(unsigned short value);
  void AppendDWord(int value);
  void AppendDWord(unsigned int value);
  void AppendQWord(long long value);
  void AppendQWord(unsigned long long value);
  void Append(signed char ch, std::int32_t count);
  void Append(char ch, std::int32_t count);
  void Append(unsigned char ch, std::int32_t count);
  void Append(const char* text);
  void Append(const VFile& source, std::int32_t pos, std::int32_t count);
  void AppendFromFile(HANDLE file, std::int32_t count);
  void Append(HFile& file, std::int32_t count);
  /// @}
  /// @{
  /// Puts the source in at the start.
  void PrependByte(unsigned char value);
  void PrependBytes(const void* buffer, std::int32_t count);
  void PrependWord(short value);
  void PrependWord(unsigned short value);
  void PrependDWord(int value);
  void PrependDWord(unsigned int value);
  void PrependQWord(long long value);
  void PrependQWord(unsigned long long value);
  void Prepend(signed char ch, std::int32_t count);
  void Prepend(char ch, std::int32_t count);
  void Prepend(unsigned char ch, std::int32_t count);
  void Prepend(const char* text);
  void Prepend(const VFile& source, std::int32_t pos, std::int32_t count);
  void PrependFromFile(HANDLE file, std::int32_t count);
  void Prepend(HFile& file, std::int32_t count);
  /// @}
  /// @{
  // `long` goes with the type of its width.
#if LONG_MAX > INT_MAX
  /// The verb's other forms, for `long`.
  void InsertQWord(long value);
  void InsertQWord(unsigned long value);
  void ReplaceQWord(long value);
  void ReplaceQWord(unsigned long value);
  void WriteQWord(long value);
  void WriteQWord(unsigned long value);
  void AppendQWord(long value);
  void AppendQWord(unsigned long value);
  void PrependQWord(long value);
  void PrependQWord(unsigned long value);
#else
  /// The verb's other forms, for `long`.
  void InsertDWord(long value);
  void InsertDWord(unsigned long value);
  void ReplaceDWord(long value);
  void ReplaceDWord(unsigned long value);
  void WriteDWord(long value);
  void WriteDWord(unsigned long value);
  void AppendDWord(long value);
  void AppendDWord(unsigned long value);
  void PrependDWord(long value);
  void PrependDWord(unsigned long value);
#endif
  /// @}
  /// @{
  void ReadFromFile(HANDLE file, std::int32_t count);  ///< `WriteFromFile` by its other name.
  void ReadFromFile(HFile& file, std::int32_t count);  ///< `Write(file, count)` by its other name.

  /// Takes out `count` bytes at `pos`. The position ends there.
  void Delete(std::int32_t pos, std::int32_t count);
  /// Takes out all from the position to the end.
  void Truncate();

  /// @}
  /// @name Operators
  ///
  /// Each gives the object, so that a chain of them stops having effect at its first failure.
  /// @{

  VFile& operator>>(signed char& ch);  ///< `ReadByte`.
  VFile& operator>>(char& ch);
  VFile& operator>>(unsigned char& ch);
  /// @}
  /// @{
  /// Makes the bytes from the position to the end the content of `target`, and moves there. A failure of the target becomes
  /// this object's, which then does not move.
  VFile& operator>>(VFile& target);
  /// @}
  /// @{
  /// Writes, as the Write family does. A number goes in as text in base `radix`, digits and lower-case letters, with a minus
  /// sign in base 10 alone; in other bases a negative one shows as its two's complement. A base outside 2 to 36 writes nothing.
  VFile& operator<<(signed char ch);
  VFile& operator<<(char ch);
  VFile& operator<<(unsigned char ch);
  VFile& operator<<(const char* text);
  VFile& operator<<(const VFile& source);
  VFile& operator<<(short value);
  VFile& operator<<(unsigned short value);
  VFile& operator<<(int value);
  VFile& operator<<(unsigned int value);
  VFile& operator<<(long value);
  VFile& operator<<(unsigned long value);
  VFile& operator<<(long long value);
  VFile& operator<<(unsigned long long value);
  /// @}
  /// @{
  VFile& operator+=(signed char ch);  ///< Appends.
  VFile& operator+=(char ch);
  VFile& operator+=(unsigned char ch);
  VFile& operator+=(const char* text);
  VFile& operator+=(const VFile& source);

  /// @}
  /// @name What does not compile
  ///
  /// A pointer to characters would pass for a handle; write what it points to, or open the file of that name. A truth or a
  /// wide character would go out as a number; cast it to what is meant.
  /// @{

  template <host::Character Char>
  VFile(Char* file, std::int32_t count) = delete;
  template <host::Character Char>
  void ReplaceFile(std::int32_t pos, std::int32_t del, Char* source, std::int32_t count) = delete;
  template <host::Character Char>
  void InsertFromFile(Char* file, std::int32_t count) = delete;
  template <host::Character Char>
  void ReplaceFromFile(Char* file, std::int32_t count) = delete;
  template <host::Character Char>
  void WriteFromFile(Char* file, std::int32_t count) = delete;
  template <host::Character Char>
  void AppendFromFile(Char* file, std::int32_t count) = delete;
  template <host::Character Char>
  void PrependFromFile(Char* file, std::int32_t count) = delete;
  template <host::Character Char>
  void ReadFromFile(Char* file, std::int32_t count) = delete;
  template <host::Character Char>
  void WriteToFile(Char* file, std::int32_t count) = delete;
  template <host::NoNumber Value>
  VFile& operator<<(Value value) = delete;

  /// @}
  /// @name Flags
  /// @{

  std::int32_t GetFlags() const;         ///< The flag word.
  bool FlagOn(std::int32_t mask) const;  ///< Whether any bit of the mask is on.
  /// Inverts the bits of the mask that a user can change, 0x1 to 0x100, and calls `PostChangeFlag` for each, the lowest first.
  /// A locked file refuses with `resContextError`.
  void ToggleFlag(std::int32_t mask);
  void SetFlags(std::int32_t flagWord);      ///< Makes the user's bits those of the word.
  void SetFlag(std::int32_t mask, bool on);  ///< Turns the bits of the mask on or off.
  void InclFlag(std::int32_t mask);          ///< Turns them on.
  void ExclFlag(std::int32_t mask);          ///< Turns them off.
  std::int32_t Type() const;                 ///< 0, unless a derived class has set it.

  /// @}
  /// @name Search
  ///
  /// Finds the bytes of a terminated string, not empty, without memory on the heap and in time linear in the bytes read:
  /// places where three of its bytes are right are compared, and what a block border cuts goes by Knuth, Morris and Pratt's
  /// method with the shift computed from the text at each mismatch. `ignoreCase` compares by `toupper`; `wholeWord` wants no `isalnum`
  /// byte next to the match, and goes on behind a match that has one. A search moves the position and `eof` and clears `res`.
  /// An empty text is found at once, where it is asked for, and nothing moves; a negative `pos` is `resCallError`.
  /// @{

  /// Finds the first match that begins at `pos` or behind it. Found: `pos` becomes the position behind it.
  bool Find(std::int32_t& pos, const char* text, bool ignoreCase, bool wholeWord);
  /// Finds the last match that ends at `pos` or before it. Found: `pos` becomes its start.
  bool FindBack(std::int32_t& pos, const char* text, bool ignoreCase, bool wholeWord);
  /// Replaces every match in the file, from its start, not looking into new text again; gives the number replaced. A refused
  /// replacement ends it, with the reason in `res`; what was done stays. An empty `oldText` is `resCallError`.
  std::int32_t ReplaceGlobal(const char* oldText, const char* newText, bool ignoreCase, bool wholeWord);

  /// @}
  /// @name Lines
  ///
  /// A line ends in CR LF, a lone CR or a lone LF, mixed at will; the last one may have no end. Behind a line end at the end of
  /// the file stands one more line, empty. The place between a CR and its LF belongs to the line that they end. `position` may
  /// be anywhere in the line. These operations move the position to no defined place and clear `res`, but for the two that say
  /// so; a negative `position` is `resCallError`, and past the end it counts as the end. Cost: that of reading the line;
  /// nothing is kept between calls.
  /// @{

  bool AfterCRLF(std::int32_t position);   ///< Whether the two bytes before `position` are CR LF.
  bool BeforeCRLF(std::int32_t position);  ///< Whether the two bytes from `position` on are CR LF.
  /// Whether `position` stands between CR and LF. Below 1 it is false, with position, `eof` and `res` left alone.
  bool BetweenCRLF(std::int32_t position);
  /// The position of the first byte of the line; 0 on failure. At the start of the file it does not look, and leaves position,
  /// `eof` and `res` alone.
  std::int32_t LineStart(std::int32_t position);
  /// The line in bytes: its `start`, its `size` with the line end, and the `eolSize` of that, 0 to 2. On failure they stay as
  /// they were.
  void LineSize(std::int32_t position, std::int32_t& start, std::int32_t& size, std::int32_t& eolSize);
  /// The position of the line end, or with `withEol` behind it, where the next line starts; 0 on failure.
  std::int32_t LineEnd(std::int32_t position, bool withEol);
  /// The number of leading blanks of the line, the byte 32 alone; 0 on failure.
  std::int32_t LineIndent(std::int32_t position);

  /// @}
  /// @name Transfer with files of the host
  ///
  /// Plain bytes, in calls of up to 1024.
  /// @{

  /// Brings the page of the current block up to date and frees the scratch buffer. Leaves `res` and the position alone.
  void Flush();
  /// Writes the whole content to a file of that name, whatever stands in `res`. `overwrite` replaces an existing file; without
  /// it that is `resAlreadyExists`. A failure half-way leaves what was written; that of a save of vf/Saving.h leaves the old file.
  void Save(const TChar* name, bool overwrite);
  /// The same, but nothing if a failure stands in `res`.
  void WriteFile(const TChar* name, bool overwrite);
  /// Writes up to `count` bytes from the position to an open file, which stays the caller's. A disk that takes fewer is
  /// `resDiskFull`.
  void WriteToFile(HANDLE file, std::int32_t count);
  void WriteToFile(HFile& file, std::int32_t count);  ///< The same.
  /// Replaces the content by that of a file and moves to its start, whatever stands in `res`. `shareMode`, made of the
  /// FILE_SHARE bits, is what others may do with it meanwhile. The old content is gone also if the file cannot be read.
  void Load(const TChar* name, std::uint32_t shareMode);
  /// Writes the content of a file at the position, as the Write family does.
  void ReadFile(const TChar* name, std::uint32_t shareMode);

  /// @}
  /// @name State
  /// @{

  std::int32_t res;    ///< Result of the operations so far, see above.
  bool eof;            ///< Whether the last read ran against an end, see above.
  std::int32_t radix;  ///< Base of numbers written as text, 10 at first.
                       /// @}

 protected:
  /// @name Hooks for derived classes
  /// @{

  /// Comes before each change, with its final arguments: `del` bytes go out at `pos` and `ins` come in. Any result but
  /// `resDone` goes into `res` and stops it. Must not change the file. The base class allows all.
  virtual std::int32_t PreChange(std::int32_t pos, std::int32_t del, std::int32_t ins) const;
  /// Comes after each change. The base class sets `vfModified` where `vfMarkModified` asks for it.
  virtual void PostChange(std::int32_t pos, std::int32_t del, std::int32_t ins);
  /// Comes after each change of a flag bit. The base class does nothing.
  virtual void PostChangeFlag(std::int32_t flag, bool on);

  /// Bytes of the current block that a scan may look at.
  struct Run {
    const unsigned char* bytes;  ///< The first of them.
    std::int32_t count;          ///< How many there are.
  };
  /// A scan's own copy of a block, used where the heap has no room for the scratch buffer.
  struct RunBuffer {
    unsigned char bytes[BlkSize];  ///< The block.
  };
  /// The bytes from the position to the end of its block, after stepping to the next block if there are none; none at all
  /// at the end of the file. Good until the file is touched; `Skip` consumes them.
  Run RunForward(RunBuffer& spare);
  /// The bytes before the position in its block, likewise.
  Run RunBackward(RunBuffer& spare);
  /// `SetPos` to a valid position in the middle of an operation: leaves `res` alone, where a page that was refused may stand.
  /// Gives whether it moved.
  bool MoveOn(std::int32_t position);
  /// Moves by `count` bytes, negative for backward, inside the block of the last run. Clears `eof`.
  void Skip(std::int32_t count);
  /// Whether `size` bytes are a count. If not, a change that could begin otherwise is `resTooLong`. For the library's own classes.
  VFILE_LOCAL bool AdmitSize(std::size_t size);
  /// Makes what the source gives the whole content, by one change that takes no more memory than its blocks. A failure, `resTooLong`
  /// among them, leaves the old content. For the library's own classes.
  VFILE_LOCAL void ReplaceContent(vfile::ContentSource& source);

  /// @}
  /// @name The data model. Derived classes read it; only this class writes it.
  ///
  ///       first                    cur.ptr              last
  ///         |                         |                   |
  ///       [ 1024 ] <-> [ 17 ] <-> [ 1 ..ix.. len ] <-> [ 300 ]      each block: one page of `vm`, `len` bytes in use
  ///                                   |
  ///                                  buf     copy of the block's bytes, possibly newer than its page
  ///
  ///     C1  The chain of `blockCount` blocks is doubly linked, and ends in null at both ends.
  ///     C2  The `len` of all blocks add up to `length`.
  ///     C3  `cur.ptr` is a block of the chain, `cur.base` the sum of `len` before it, 0 <= `cur.ix` <= its `len`, and
  ///         `cur.base` + `cur.ix` = `pos`. A position between blocks has two forms; every operation takes both.
  ///     C4  An empty file is one block with `len` 0, with or without a page.
  ///     C5  A file that is not empty has no empty block.
  ///     C6  `len` is at most `BlkSize`, and a block with bytes has a page of its own.
  ///     C7  Lengths are not balanced: blocks are joined only where a change puts a new chain in, and nothing compacts them.
  ///     C8  `bufDirty` implies `bufValid`, which implies `buf`. Both speak of `cur.ptr` alone; the page of every other block is
  ///         up to date. `len` is always current.
  /// @{

  std::int32_t pos;                     ///< position, 0 to `length`
  std::int32_t length;                  ///< bytes of the file
  std::int32_t flags;                   ///< flag word
  std::int32_t type;                    ///< given by `Type`
  VMem* vm;                             ///< the thread's
  BlkPool* pool;                        ///< the thread's
  BlkDesc* first;                       ///< first block, never null in a live object
  BlkDesc* last;                        ///< last block, likewise
  BlkRdr cur;                           ///< the object's cursor
  unsigned char* buf;                   ///< owned scratch buffer of `BlkSize` bytes, or null
  bool bufValid;                        ///< `buf` holds the bytes of `cur.ptr`
  bool bufDirty;                        ///< and they are newer than its page
  std::uint32_t threadId;               ///< the constructing thread; 0 after the destructor
  std::int32_t blockCount;              ///< blocks of the chain
  mutable vfile::PositionIndex* index;  ///< owned; of a file that has made a far move, else null
  const BlkDesc* held;                  ///< the block whose page agrees with `buf` while `bufValid` is off, or null
  std::int16_t dirtyFrom;               ///< while `bufDirty`: index of the first byte that can differ from the page
  std::uint32_t changes;                ///< counts changes of the content, round the end of the numbers
  vfile::Meter* meter;                  ///< of whoever wants to know how far long operations are, or null
                                        /// @}

 private:
  class VFILE_LOCAL NewChain;
  class VFILE_LOCAL BufferSource;
  class VFILE_LOCAL FileSource;
  class VFILE_LOCAL ByteSearch;
  friend class vfile::Comparison;
  friend class vfile::Inside;

  bool OnOwnerThread(std::int32_t line = VFILE_LINE) const;

  // VFile.cpp
  void Init();
  VFILE_LOCAL void ExchangeAll(VFile& other);
  VFILE_LOCAL void ExchangeChain(VFile& other);
  void AttachThread();
  void DetachThread();

  // Chain.cpp
  BlkDesc* NewBlkPtr(BlkDesc* prev, BlkDesc* next, std::int16_t len);
  void DisposeBlkPtr(BlkDesc*& p);
  void DisposeBlkPtrList(BlkDesc*& head);
  void AllocBuf(std::int32_t& addr, std::int16_t size);
  void Unlink(BlkDesc* p);
  void UnlinkBehind(const BlkDesc* kept);
  void UnlinkCur();
  void ShortenBehind(std::int32_t len);
  void LinkBehind(NewChain& chain);

  // InBlock.h
  bool MoveWithin(std::int32_t ix);
  bool MoveInBlock(std::int32_t position);
  bool StaysForChange(std::int32_t position) const;
  static bool FitsInBlock(const BlkRdr& cursor, std::int32_t del, std::int32_t count);
  void MarkDirty();

  // Walk.cpp
  void Walk(BlkRdr& cursor, std::int32_t position, bool forChange) const;
  void FindFar(BlkRdr& cursor, std::int32_t position) const;
  void SettleCurLen() const;
  void DropIndex() const;
  void CheckIndex();

  // Reading.cpp
  template <typename Value>
  VFILE_LOCAL void ReadValue(Value& value);
  bool SkipLf();

  // Scratch.cpp
  bool Refuse();
  bool MakeBuf();
  bool LoadBuf();
  bool CopyUnbuffered(std::int32_t ix, void* bytes, std::int32_t count);
  bool WriteBack();
  bool MoveTo(const BlkRdr& target);
  bool StepForward();
  bool StepBackward();
  const unsigned char* BlockBytes(RunBuffer& spare);

  // ConstReading.cpp
  void SetPosC(BlkRdr& rd, std::int32_t position) const;
  bool ReadByteC(BlkRdr& rd, unsigned char& byte) const;
  bool ReadBytesC(BlkRdr& rd, void* buffer, std::int32_t count) const;
  bool StepC(BlkRdr& rd, const TChar* proc) const;
  bool CopyC(const BlkRdr& rd, void* buffer, std::int16_t count) const;

  // Change.cpp
  void InitChange(std::int32_t position);
  bool DoChange(std::int32_t del, const void* bytes, std::int32_t n, NewChain& chain, std::int32_t ins);
  bool SaveTail(std::int32_t from, NewChain& chain);
  bool CutBehind(std::int32_t count, NewChain& chain, BlkDesc*& kept, std::int32_t& keptLen);
  bool JoinBehind(NewChain& chain, BlkDesc*& kept);
  void CheckCurLen();
  bool ScansEol() const { return type > 0 && FlagOn(vfEolScan) && !FlagOn(vfNoEolScan); }
  void CheckEOL(const void* bytes, std::int32_t count);

  // Replace.cpp
  bool Admit(bool argumentsValid);
  bool Clamp(std::int32_t& position, std::int32_t& del, std::int32_t count);
  bool Prepare(std::int32_t position, std::int32_t del, std::int32_t count);
  bool Allow(std::int32_t position, std::int32_t del, std::int32_t ins);
  bool SpaceHolds(std::int32_t position, std::int32_t del, std::int32_t count, bool ownBlocks);
  template <typename Source>
  VFILE_LOCAL bool CopyFrom(Source& source, void* target, std::int32_t count);
  template <typename Source>
  VFILE_LOCAL void ChangeFrom(Source& source, std::int32_t position, std::int32_t del, std::int32_t count);
  template <typename Source>
  VFILE_LOCAL bool ChangeInBlock(Source& source, std::int32_t position, std::int32_t del, std::int32_t count);
  template <typename Source>
  VFILE_LOCAL bool ChangeByChain(Source& source, std::int32_t position, std::int32_t del, std::int32_t count);
  template <typename BytesLeft, typename ReadPiece>
  VFILE_LOCAL void ReplaceByReading(std::int32_t position, std::int32_t del, bool open, std::int32_t count,
                                    BytesLeft bytesLeft, ReadPiece readPiece);
  void Finish(std::int32_t position);

  // Editing.cpp
  std::int32_t WriteDel(std::int32_t overwrite) const;
  VFILE_LOCAL void ReplaceStr(std::int32_t position, std::int32_t del, const char* text);

  // Search.cpp
  bool IsWordByteBehind(std::int32_t position);
  bool IsWordByteBefore(std::int32_t position);
  bool FindNext(ByteSearch& search, vfile::Pass& pass, std::int32_t& position, std::int32_t n, bool wholeWord);
  bool ScanForward(ByteSearch& search, vfile::Pass& pass, std::int32_t& position);
  bool ScanBackward(ByteSearch& search, vfile::Pass& pass, std::int32_t& position);

  // Lines.cpp
  bool AdmitLine(std::int32_t position, std::int32_t line = VFILE_LINE);
  std::int32_t SkipToEol();
  std::int32_t SkipEol();

  // Transfer.cpp
  template <typename WritePiece>
  VFILE_LOCAL void WriteByPieces(bool open, std::int32_t count, WritePiece writePiece);
};
