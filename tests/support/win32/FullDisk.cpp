#include "support/FullDisk.h"

#include <algorithm>

#include "support/win32/Import.h"

namespace {

std::int64_t bound = 0;
decltype(__imp_WriteFile) systemWrite;

/// Where in the file the transfer begins.
std::int64_t PlaceOf(HANDLE file, const OVERLAPPED* at) {
  if (at != nullptr) return std::int64_t{at->OffsetHigh} << 32 | at->Offset;
  LARGE_INTEGER place = {};
  SetFilePointerEx(file, place, &place, FILE_CURRENT);
  return place.QuadPart;
}

BOOL WINAPI BoundedWrite(HANDLE file, LPCVOID bytes, DWORD count, LPDWORD done, LPOVERLAPPED at) {
  if (count > 0 && GetFileType(file) == FILE_TYPE_DISK) {
    const std::int64_t room = std::max<std::int64_t>(bound - PlaceOf(file, at), 0);
    if (room == 0) {
      *done = 0;
      SetLastError(ERROR_DISK_FULL);
      return FALSE;
    }
    count = static_cast<DWORD>(std::min<std::int64_t>(count, room));
  }
  return systemWrite(file, bytes, count, done, at);
}

}  // namespace

support::FullDisk::FullDisk(std::uint32_t bytes) {
  bound = bytes;
  systemWrite = ReplaceImport(__imp_WriteFile, &BoundedWrite);
}

support::FullDisk::~FullDisk() { ReplaceImport(__imp_WriteFile, systemWrite); }
