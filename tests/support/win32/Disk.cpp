#include "support/Disk.h"

#include "support/win32/Import.h"

namespace {

using support::FailingDisk;

decltype(__imp_ReadFile) systemRead;
decltype(__imp_WriteFile) systemWrite;

bool Allows(HANDLE file, FailingDisk::Kind kind, LPDWORD done, const OVERLAPPED* at) {
  if (FailingDisk::Allows(file, kind, at != nullptr)) return true;
  *done = 0;
  SetLastError(kind == FailingDisk::kReads ? ERROR_IO_DEVICE : ERROR_DISK_FULL);
  return false;
}

BOOL WINAPI Read(HANDLE file, LPVOID buffer, DWORD count, LPDWORD done, LPOVERLAPPED at) {
  return Allows(file, FailingDisk::kReads, done, at) ? systemRead(file, buffer, count, done, at) : FALSE;
}

BOOL WINAPI Write(HANDLE file, LPCVOID buffer, DWORD count, LPDWORD done, LPOVERLAPPED at) {
  return Allows(file, FailingDisk::kWrites, done, at) ? systemWrite(file, buffer, count, done, at) : FALSE;
}

[[maybe_unused]] const bool isReplaced = [] {
  systemRead = support::ReplaceImport(__imp_ReadFile, &Read);
  systemWrite = support::ReplaceImport(__imp_WriteFile, &Write);
  return true;
}();

}  // namespace
