/// @file
/// The seam to the operating system: every call to it goes through this header, under its Win32 or C runtime name.
///
/// `win32/` forwards them to the system, `posix/` stands in for them, in one small file for each group below. What both keep is said
/// here; what a host adds is said in its folder, and in docs/host.md for both side by side. Arguments that every caller leaves
/// null or zero (security attributes, template handles, high words) are left out. Numbers of constants and of errors are those of
/// Win32.
///
/// Rules of the seam:
/// - Nothing here throws. Nothing but the conversions of code pages, the drafts and the finds takes memory by `new`.
/// - A call that fails leaves its reason in the calling thread's last error, but for those that give an error number instead, and
///   `_wfullpath`. A call that succeeds leaves the last error alone, but for `CreateFileW`, and for `CopyFileW` and
///   `TlsGetValue`, which may set it to 0.
/// - Names are strings of units ended by a 0 unit. A null name is treated like an empty one.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/FindData.h"
#include "host/Handle.h"
#include "host/LossRecord.h"
#include "host/Unit.h"

namespace host {

// ---- Errors ---------------------------------------------------------------------------------------------------------

inline constexpr std::uint32_t ERROR_SUCCESS = 0;
inline constexpr std::uint32_t ERROR_INVALID_FUNCTION = 1;
inline constexpr std::uint32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr std::uint32_t ERROR_PATH_NOT_FOUND = 3;
inline constexpr std::uint32_t ERROR_TOO_MANY_OPEN_FILES = 4;
inline constexpr std::uint32_t ERROR_ACCESS_DENIED = 5;
inline constexpr std::uint32_t ERROR_INVALID_HANDLE = 6;
inline constexpr std::uint32_t ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr std::uint32_t ERROR_INVALID_ACCESS = 12;
inline constexpr std::uint32_t ERROR_OUTOFMEMORY = 14;
inline constexpr std::uint32_t ERROR_INVALID_DRIVE = 15;
inline constexpr std::uint32_t ERROR_NOT_SAME_DEVICE = 17;
inline constexpr std::uint32_t ERROR_WRITE_PROTECT = 19;
inline constexpr std::uint32_t ERROR_BAD_UNIT = 20;
inline constexpr std::uint32_t ERROR_CRC = 23;
inline constexpr std::uint32_t ERROR_GEN_FAILURE = 31;
inline constexpr std::uint32_t ERROR_SHARING_VIOLATION = 32;
inline constexpr std::uint32_t ERROR_LOCK_VIOLATION = 33;
inline constexpr std::uint32_t ERROR_SHARING_BUFFER_EXCEEDED = 36;
inline constexpr std::uint32_t ERROR_HANDLE_DISK_FULL = 39;
inline constexpr std::uint32_t ERROR_NOT_SUPPORTED = 50;
inline constexpr std::uint32_t ERROR_REM_NOT_LIST = 51;
inline constexpr std::uint32_t ERROR_DUP_NAME = 52;
inline constexpr std::uint32_t ERROR_BAD_NETPATH = 53;
inline constexpr std::uint32_t ERROR_NETWORK_BUSY = 54;
inline constexpr std::uint32_t ERROR_DEV_NOT_EXIST = 55;
inline constexpr std::uint32_t ERROR_NETWORK_ACCESS_DENIED = 65;
inline constexpr std::uint32_t ERROR_FILE_EXISTS = 80;
inline constexpr std::uint32_t ERROR_INVALID_PARAMETER = 87;
inline constexpr std::uint32_t ERROR_DISK_FULL = 112;
inline constexpr std::uint32_t ERROR_CALL_NOT_IMPLEMENTED = 120;
inline constexpr std::uint32_t ERROR_INVALID_NAME = 123;
inline constexpr std::uint32_t ERROR_NEGATIVE_SEEK = 131;
inline constexpr std::uint32_t ERROR_BAD_PATHNAME = 161;
inline constexpr std::uint32_t ERROR_ALREADY_EXISTS = 183;
inline constexpr std::uint32_t ERROR_FILENAME_EXCED_RANGE = 206;
inline constexpr std::uint32_t ERROR_DIRECTORY = 267;
inline constexpr std::uint32_t ERROR_FILE_INVALID = 1006;
inline constexpr std::uint32_t ERROR_IO_DEVICE = 1117;
inline constexpr std::uint32_t ERROR_CANT_RESOLVE_FILENAME = 1921;

/// The calling thread's last error.
std::uint32_t GetLastError();
/// Sets the calling thread's last error.
void SetLastError(std::uint32_t error);

// ---- Files: opening -------------------------------------------------------------------------------------------------

inline constexpr std::uint32_t GENERIC_READ = 0x80000000;
inline constexpr std::uint32_t GENERIC_WRITE = 0x40000000;

inline constexpr std::uint32_t CREATE_NEW = 1;
inline constexpr std::uint32_t CREATE_ALWAYS = 2;
inline constexpr std::uint32_t OPEN_EXISTING = 3;
inline constexpr std::uint32_t OPEN_ALWAYS = 4;

inline constexpr std::uint32_t FILE_ATTRIBUTE_READONLY = 0x1;
inline constexpr std::uint32_t FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr std::uint32_t FILE_ATTRIBUTE_ARCHIVE = 0x20;
inline constexpr std::uint32_t FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr std::uint32_t FILE_ATTRIBUTE_TEMPORARY = 0x100;
inline constexpr std::uint32_t INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;

inline constexpr std::uint32_t FILE_FLAG_DELETE_ON_CLOSE = 0x04000000;
inline constexpr std::uint32_t FILE_FLAG_SEQUENTIAL_SCAN = 0x08000000;
inline constexpr std::uint32_t FILE_FLAG_RANDOM_ACCESS = 0x10000000;

/// Opens or creates a file. `access` is made of the GENERIC bits, `share` of the FILE_SHARE bits, `disposition` is one of
/// the four above, `flags` is made of attributes and of the FILE_FLAG bits.
///
/// An open that does not fit the sharing of one that stands, in this process or another, fails with
/// ERROR_SHARING_VIOLATION. A refused open leaves the file as it was, and leaves none that it made. Of an open file others can
/// take away the name only as the sharing lets them.
///
/// With FILE_FLAG_DELETE_ON_CLOSE the file goes with its handle, however the process ends. ERROR_FILE_EXISTS, ERROR_ALREADY_EXISTS and
/// ERROR_SHARING_VIOLATION then say that the name is taken and another may help; any other error would be met by other names in that
/// directory as well.
///
/// On success the last error is ERROR_ALREADY_EXISTS where CREATE_ALWAYS or OPEN_ALWAYS took an existing file, else 0.
HANDLE CreateFileW(const TChar* name, std::uint32_t access, std::uint32_t share, std::uint32_t disposition,
                   std::uint32_t flags);
/// Closes the file, and with it what it kept others from.
bool CloseHandle(HANDLE file);

// ---- Files: transfer, position, size --------------------------------------------------------------------------------

inline constexpr std::uint32_t FILE_BEGIN = 0;
inline constexpr std::uint32_t FILE_CURRENT = 1;
inline constexpr std::uint32_t FILE_END = 2;
inline constexpr std::uint32_t INVALID_SET_FILE_POINTER = 0xFFFFFFFF;
inline constexpr std::uint32_t INVALID_FILE_SIZE = 0xFFFFFFFF;

/// Reads up to `count` bytes at the file's position into `buffer` and moves the position. Fewer bytes than asked, 0 too,
/// is no failure; of a file on a disk it means the end. The end of a pipe may be a failure. `*done` is set in every case:
/// to what got in, also by a failure.
bool ReadFile(HANDLE file, void* buffer, std::uint32_t count, std::uint32_t* done);
/// Writes `count` bytes at the file's position and moves it. Goes on until all is written or the system refuses; what
/// got out before a refusal is reported as a success with a smaller `*done`, so that the next call meets the reason.
bool WriteFile(HANDLE file, const void* buffer, std::uint32_t count, std::uint32_t* done);
/// Where in a file a transfer begins that does not look at the file's position, and so is not disturbed by others that share it; what
/// becomes of the position is open.
struct OVERLAPPED {
  std::uint32_t Offset;      ///< The low 32 bits.
  std::uint32_t OffsetHigh;  ///< The high 32 bits.
};
/// `ReadFile` from the place `at`.
bool ReadFile(HANDLE file, void* buffer, std::uint32_t count, std::uint32_t* done, const OVERLAPPED& at);
/// `WriteFile` from the place `at` on.
bool WriteFile(HANDLE file, const void* buffer, std::uint32_t count, std::uint32_t* done, const OVERLAPPED& at);
/// Moves the file's position by `distance` bytes from `origin` and gives the low 32 bits of the new one.
std::uint32_t SetFilePointer(HANDLE file, std::int32_t distance, std::uint32_t origin);
/// The low 32 bits of the file's size in bytes.
std::uint32_t GetFileSize(HANDLE file);
/// The file's size in bytes.
bool GetFileSizeEx(HANDLE file, std::int64_t* size);

inline constexpr std::uint32_t FILE_TYPE_UNKNOWN = 0;
inline constexpr std::uint32_t FILE_TYPE_DISK = 1;
/// What the handle leads to: FILE_TYPE_DISK for a file on a disk, which has a size and positions.
std::uint32_t GetFileType(HANDLE file);

/// Makes the position the end of the file.
bool SetEndOfFile(HANDLE file);
/// Has the system write its buffers for the file through to the device.
bool FlushFileBuffers(HANDLE file);

// ---- Files by name --------------------------------------------------------------------------------------------------

/// The attributes of a file or directory, or INVALID_FILE_ATTRIBUTES.
std::uint32_t GetFileAttributesW(const TChar* name);
/// Sets the attributes, of which this library changes FILE_ATTRIBUTE_READONLY of files alone.
bool SetFileAttributesW(const TChar* name, std::uint32_t attributes);
/// 0 if the file can be accessed in the mode, else -1. Mode: 0 exists, 2 may be written, 4 may be read, 6 both.
int _waccess(const TChar* name, int mode);
/// Copies a file with its attributes and the time of its last write. An existing target is ERROR_FILE_EXISTS with
/// `failIfExists`, else replaced. ERROR_SHARING_VIOLATION where the source or the target is open in a way that does not let it, and
/// for a file onto itself.
bool CopyFileW(const TChar* source, const TChar* target, bool failIfExists);
/// Renames a file or directory. A name that exists is ERROR_ALREADY_EXISTS, but the own name is a success. A file that is open is
/// ERROR_SHARING_VIOLATION; whether also where every open of it has FILE_SHARE_DELETE, is the host's.
bool MoveFileW(const TChar* oldName, const TChar* newName);
/// Removes a file. One that is open is ERROR_SHARING_VIOLATION, with FILE_SHARE_DELETE as for a rename.
bool DeleteFileW(const TChar* name);

/// A new content for a name, which gets it when the content is whole. Until then, and if the draft is given up, the name leads to what it
/// led to before.
///
/// Links of the name are followed. What is no file on a disk is written as it is. A file there is held, so that others can open it no
/// more than if it were open without sharing, and one that exists keeps its rights. Other names of it keep the old content.
class Draft {
 public:
  /// Begins one. What exists is ERROR_FILE_EXISTS without `overwrite`; with it, what cannot be opened for writing, alone, is
  /// refused, with the error of that.
  Draft(const TChar* name, bool overwrite);
  /// Gives it up, if it is not complete, and leaves nothing.
  ~Draft();
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;

  /// What to write to; the draft's own. `INVALID_HANDLE_VALUE`, with the reason in the last error, if none was begun.
  HANDLE File() const;

  /// Gives the name to what was written, once, and closes the file. With `onDisk` both are on the disk then. ERROR_SHARING_VIOLATION
  /// where another file has got the name meanwhile. After an error the old content stands, unless it was met in writing through
  /// what the name leads to now.
  bool Complete(bool onDisk);

 private:
  class State;
  State* state_;
};

// ---- Names ----------------------------------------------------------------------------------------------------------

/// The form of an existing name without abbreviations, into `buffer` of `size` units; gives its length, or if it does not fit the
/// size that it takes, or 0.
std::uint32_t GetLongPathNameW(const TChar* name, TChar* buffer, std::uint32_t size);
/// The absolute form of a name, null counting as empty, with its "." and ".." steps resolved as text, into `buffer` of `size`
/// units, which may be the name's own; null, with the buffer as it was, if it does not fit.
TChar* _wfullpath(TChar* buffer, const TChar* name, std::size_t size);
/// Joins the parts of a name, null counting as empty. Gives 0, or an error number with the buffer emptied.
int _wmakepath_s(TChar* buffer, std::size_t size, const TChar* drive, const TChar* dir, const TChar* name,
                 const TChar* ext);
/// Takes a name apart, which is not null. A null buffer with size 0 skips the part. Gives 0, or ERANGE with all buffers emptied
/// where a part does not fit.
int _wsplitpath_s(const TChar* path, TChar* drive, std::size_t driveSize, TChar* dir, std::size_t dirSize, TChar* name,
                  std::size_t nameSize, TChar* ext, std::size_t extSize);

// ---- Finding names --------------------------------------------------------------------------------------------------

/// Starts a search for names that match the pattern, which may hold "*" and "?" in its last step; fills in the first and gives
/// a handle, or -1 if there is none.
std::intptr_t _wfindfirst64i32(const TChar* pattern, _wfinddata64i32_t* data);
/// Fills in the next name and gives 0, or -1 if there is none left.
int _wfindnext64i32(std::intptr_t find, _wfinddata64i32_t* data);
/// Ends the search. Gives 0.
int _findclose(std::intptr_t find);

// ---- Environment ----------------------------------------------------------------------------------------------------

/// Copies the value of an environment variable, its terminator included, into `buffer` of `size` units; `*required` is
/// the size it takes, 0 if the variable is not set. Gives 0, or an error number if it did not fit.
int _wgetenv_s(std::size_t* required, TChar* buffer, std::size_t size, const TChar* name);
/// Puts the directory for temporary files that is left when nothing else names one into `buffer` of `size` units, and
/// gives its length, or 0 if it does not fit.
std::size_t GetLastResortTempDirectory(TChar* buffer, std::size_t size);

// ---- Threads --------------------------------------------------------------------------------------------------------

inline constexpr std::uint32_t TLS_OUT_OF_INDEXES = 0xFFFFFFFF;

/// Gives an index under which every thread has a pointer of its own, null at first, whatever an index given back had;
/// TLS_OUT_OF_INDEXES if none is left.
std::uint32_t TlsAlloc();
/// Gives the index back.
bool TlsFree(std::uint32_t index);
/// The calling thread's pointer under an index in use. Valid until the thread is gone, also in the steps that run at its end.
void* TlsGetValue(std::uint32_t index);
/// Sets it. False if there is no room for it. Whether it is so for an index that is not in use is the host's.
bool TlsSetValue(std::uint32_t index, void* value);

/// A lock among the threads of the process, recursive for its owner. Plain storage; lives between Initialize and Delete.
struct CRITICAL_SECTION {
  alignas(std::max_align_t) unsigned char storage[64];
};
void InitializeCriticalSection(CRITICAL_SECTION* section);
void EnterCriticalSection(CRITICAL_SECTION* section);
void LeaveCriticalSection(CRITICAL_SECTION* section);
void DeleteCriticalSection(CRITICAL_SECTION* section);

/// The system's id of the calling thread, never 0. Cheap: every operation on a file asks for it.
std::uint32_t GetCurrentThreadId();

// ---- Loading --------------------------------------------------------------------------------------------------------

inline constexpr std::uint32_t DLL_PROCESS_DETACH = 0;
inline constexpr std::uint32_t DLL_PROCESS_ATTACH = 1;
inline constexpr std::uint32_t DLL_THREAD_ATTACH = 2;
inline constexpr std::uint32_t DLL_THREAD_DETACH = 3;

/// What the loader calls, defined by the module that is being loaded: 1 for success, 0 for failure.
/// - DLL_PROCESS_ATTACH when the module is loaded, before any static object of the program.
/// - DLL_PROCESS_DETACH at unload or exit, on the thread that runs it, after the program's static objects are gone; not if
///   the attach failed. If other threads are still at work then, DLL_THREAD_DETACH comes in its place: nothing that they use is
///   taken away.
/// - DLL_THREAD_ATTACH at the start of a thread, where the host tells of it.
/// - DLL_THREAD_DETACH at the end of a thread that has called `NotifyThreadEnd`, or of any; not on the thread that runs the exit, and
///   not for threads that live on at unload or exit.
std::int32_t ModuleEntry(std::uint32_t reason);
/// Asks for DLL_THREAD_DETACH at the end of the calling thread. Asking again changes nothing.
void NotifyThreadEnd();

// ---- Clock ----------------------------------------------------------------------------------------------------------

/// A moment in local time.
struct SYSTEMTIME {
  std::uint16_t wYear;
  std::uint16_t wMonth;
  std::uint16_t wDayOfWeek;
  std::uint16_t wDay;
  std::uint16_t wHour;
  std::uint16_t wMinute;
  std::uint16_t wSecond;
  std::uint16_t wMilliseconds;
};

/// Milliseconds since the system started; wraps after 49.7 days.
std::uint32_t GetTickCount();
void GetLocalTime(SYSTEMTIME* time);
/// Sets the system's clock. A date or time that does not exist is refused with ERROR_INVALID_PARAMETER.
bool SetLocalTime(const SYSTEMTIME* time);

// ---- User -----------------------------------------------------------------------------------------------------------

inline constexpr std::uint32_t MB_ICONHAND = 0x10;
inline constexpr std::uint32_t MB_TASKMODAL = 0x2000;

/// Shows the caption and the text to the user, in the host's way.
void MessageBoxW(const TChar* text, const TChar* caption, std::uint32_t style);

// ---- Code pages -----------------------------------------------------------------------------------------------------

inline constexpr std::uint32_t CP_UTF8 = 65001;

/// The active ANSI code page: `CP_UTF8`, or another number, for which `CodePageConversion` stands.
std::uint32_t GetACP();

/// The conversion of one text from or to the active code page, which is not `CP_UTF8`, as its pieces come. Nothing fails on what
/// the text holds.
class CodePageConversion {
 public:
  /// `kToUnits`: bytes to units; what has no character becomes what the host has for it. `kToBytes`: units to bytes; what has none
  /// becomes "?".
  enum Direction { kToUnits, kToBytes };

  /// `losses`, unless null, is told what of a piece is replaced, counted in units from the first one that the piece gives or takes. The
  /// two halves of a pair are one character. Nothing else about the conversion depends on it.
  explicit CodePageConversion(Direction direction, LossRecord* losses = nullptr);
  ~CodePageConversion();
  CodePageConversion(const CodePageConversion&) = delete;
  CodePageConversion& operator=(const CodePageConversion&) = delete;

  /// Whether there is one; not if the heap is exhausted. No piece may come then.
  bool IsOpen() const { return handle_ != nullptr; }

  /// Converts `left` bytes of input at `in` to `out`, which has room for `room` bytes, at least 64, and moves all of them on. Both sides
  /// are counted in bytes, units too. True if what is left, less than a character, has to wait for the next piece; that is nothing
  /// where this piece is the `last`. False if the room is used up: call again with more.
  bool Convert(const char*& in, std::size_t& left, char*& out, std::size_t& room, bool last);

 private:
  Direction direction_;
  LossRecord* losses_;
  void* handle_;
};

// ---- Characters and numbers -----------------------------------------------------------------------------------------

/// Compares without regard to the case of ASCII letters, by unit: below, at or above 0. In a locale that the program has set the
/// host may fold more letters.
int _wcsicmp(const TChar* left, const TChar* right);

/// Whether the unit is a letter or a digit, of any script and in any locale. No surrogate is.
bool iswalnum(TChar unit);
/// Whether the unit is a decimal digit, of any script and in any locale, or a superscript 1, 2 or 3.
bool iswdigit(TChar unit);

/// The digits of `value` in `base` 2 to 36, in lower case, into `buffer` of `size` characters, terminator included.
/// Signed values show a minus sign in base 10 and their two's complement in others. Gives 0, or an error number with the
/// buffer emptied.
int _itoa_s(std::int32_t value, char* buffer, std::size_t size, int base);
int _ultoa_s(std::uint32_t value, char* buffer, std::size_t size, int base);
int _ltoa_s(std::int32_t value, char* buffer, std::size_t size, int base);
int _i64toa_s(std::int64_t value, char* buffer, std::size_t size, int base);
int _ui64toa_s(std::uint64_t value, char* buffer, std::size_t size, int base);

/// The same in units.
int _itow_s(std::int32_t value, TChar* buffer, std::size_t size, int base);
int _ultow_s(std::uint32_t value, TChar* buffer, std::size_t size, int base);
int _ltow_s(std::int32_t value, TChar* buffer, std::size_t size, int base);
int _i64tow_s(std::int64_t value, TChar* buffer, std::size_t size, int base);
int _ui64tow_s(std::uint64_t value, TChar* buffer, std::size_t size, int base);

}  // namespace host
