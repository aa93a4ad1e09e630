#include "host/win32/Windows.h"

namespace host {
namespace {

::OVERLAPPED PlaceOf(const OVERLAPPED& at) {
  ::OVERLAPPED place = {};
  place.Offset = at.Offset;
  place.OffsetHigh = at.OffsetHigh;
  return place;
}

}  // namespace

bool ReadFile(HANDLE file, void* buffer, std::uint32_t count, std::uint32_t* done) {
  DWORD got = 0;
  const bool read = ::ReadFile(file, buffer, count, &got, nullptr) != FALSE;
  *done = got;
  return read;
}

bool ReadFile(HANDLE file, void* buffer, std::uint32_t count, std::uint32_t* done, const OVERLAPPED& at) {
  const DWORD before = ::GetLastError();
  ::OVERLAPPED place = PlaceOf(at);
  DWORD got = 0;
  bool read = ::ReadFile(file, buffer, count, &got, &place) != FALSE;
  // With a place the end of the file is an error to the system.
  if (!read && ::GetLastError() == ERROR_HANDLE_EOF) {
    ::SetLastError(before);
    read = true;
  }
  *done = got;
  return read;
}

bool WriteFile(HANDLE file, const void* buffer, std::uint32_t count, std::uint32_t* done) {
  DWORD put = 0;
  const bool written = ::WriteFile(file, buffer, count, &put, nullptr) != FALSE;
  *done = put;
  return written;
}

bool WriteFile(HANDLE file, const void* buffer, std::uint32_t count, std::uint32_t* done, const OVERLAPPED& at) {
  ::OVERLAPPED place = PlaceOf(at);
  DWORD put = 0;
  const bool written = ::WriteFile(file, buffer, count, &put, &place) != FALSE;
  *done = put;
  return written;
}

std::uint32_t SetFilePointer(HANDLE file, std::int32_t distance, std::uint32_t origin) {
  return ::SetFilePointer(file, distance, nullptr, origin);
}

std::uint32_t GetFileSize(HANDLE file) { return ::GetFileSize(file, nullptr); }

bool GetFileSizeEx(HANDLE file, std::int64_t* size) {
  LARGE_INTEGER bytes;
  if (!::GetFileSizeEx(file, &bytes)) return false;
  *size = bytes.QuadPart;
  return true;
}

std::uint32_t GetFileType(HANDLE file) { return ::GetFileType(file); }

bool SetEndOfFile(HANDLE file) { return ::SetEndOfFile(file) != FALSE; }

bool FlushFileBuffers(HANDLE file) { return ::FlushFileBuffers(file) != FALSE; }

}  // namespace host
